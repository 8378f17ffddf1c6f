#include "cli/Commands.h"

#include "cli/EachSource.h"
#include "cli/Output.h"
#include "cli/PageSearch.h"
#include "cli/Targets.h"

#include <algorithm>
#include <nlohmann/json.hpp>

namespace murkwell::cli {
namespace {

using std::filesystem::path;

int highestPage(const RedactArguments& arguments) {
    int highest = arguments.search.page.value_or(1);
    for (const BoxArgument& box : arguments.boxes) {
        highest = std::max(highest, box.page);
    }
    return highest;
}

// False when a box is too small to be added.
bool addBoxes(RedactModel& model, const RedactArguments& arguments) {
    return std::ranges::all_of(arguments.boxes, [&](const BoxArgument& box) {
        model.goToPage(box.page - 1);
        model.tool = box.style.value_or(arguments.style);
        return model.addRedaction(box.rect).has_value();
    });
}

class RedactRun {
public:
    RedactRun(const RedactArguments& given, const Engines& used)
        : arguments(given), engines(used) {}

    Failure redact(const path& source, const Targets& targets) {
        HeadlessModel headless(engines);
        RedactModel& model = headless.model;
        if (auto failure = headless.open(source)) {
            return failure;
        }
        const int highest = highestPage(arguments);
        if (pagesIn(*model.document(), highest).empty()) {
            return noSuchPage(source, highest, model.document()->pages.size());
        }
        // Before the search, which takes its time.
        if (arguments.exports() && !targets.exported) {
            return noKindToWrite(source);
        }
        for (const auto& target : {targets.savedDocument, targets.exported}) {
            if (target && !mayWrite(*target)) {
                return alreadyThere(*target);
            }
        }
        if (auto obstacle = obstacleTo(arguments.search, source, engines.recognition)) {
            return obstacle;
        }
        // What was found lies under the boxes that were given.
        if (auto failure =
                search(model, arguments.search, arguments.style, source, engines.recognition)) {
            return failure;
        }
        if (!addBoxes(model, arguments)) {
            return boxTooSmall(source);
        }
        if (auto failure = write(headless, source, targets)) {
            return failure;
        }
        return report(source, targets, model.totalRedactionCount());
    }

private:
    [[nodiscard]] bool mayWrite(const path& target) const {
        return arguments.force || !replacesFile(target);
    }

    [[nodiscard]] Failure write(HeadlessModel& headless, const path& source,
                                const Targets& targets) const {
        RedactModel& model = headless.model;
        if (targets.savedDocument) {
            headless.panels.answer = Destination(*targets.savedDocument, arguments.force);
            model.saveSessionAs();
            if (model.errorMessage()) {
                return model.errorMessage();
            }
        }
        if (targets.exported) {
            headless.panels.answer = Destination(*targets.exported, arguments.force);
            model.exportDocument();
            if (model.errorMessage()) {
                return model.totalRedactionCount() > 0 ? model.errorMessage()
                                                       : ofFile(source, *model.errorMessage());
            }
        }
        return std::nullopt;
    }

    [[nodiscard]] Failure report(const path& source, const Targets& targets,
                                 std::size_t count) const {
        if (!arguments.json) {
            return std::nullopt;
        }
        nlohmann::ordered_json line{{"file", source.string()}};
        if (targets.savedDocument) {
            line["saved"] = targets.savedDocument->string();
        }
        if (targets.exported) {
            line["output"] = targets.exported->string();
        }
        line["redactions"] = count;
        return printJson(line);
    }

    const RedactArguments& arguments;
    const Engines& engines;
};

} // namespace

bool redact(const RedactArguments& arguments, const Engines& engines) {
    const auto targets = targetsOf(arguments);
    const auto obstacles = clashes(arguments.sources, targets);
    std::ranges::for_each(obstacles, printFailure);
    if (!obstacles.empty()) {
        return false;
    }
    if (readsText(arguments.search)) {
        warnOfMissingReader(engines.recognition);
    }
    RedactRun run(arguments, engines);
    auto next = targets.begin();
    return forEachSource(arguments.sources,
                         [&](const path& source) { return run.redact(source, *next++); });
}

} // namespace murkwell::cli
