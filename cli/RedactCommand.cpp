#include "cli/Commands.h"

#include "cli/EachSource.h"
#include "cli/Output.h"
#include "cli/PageSearch.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <set>

namespace murkwell::cli {
namespace {

using std::filesystem::path;

path destinationFor(const DocumentIO::Document& document, const RedactArguments& arguments) {
    if (arguments.output) {
        return *arguments.output;
    }
    const path proposed = DocumentIO::defaultOutputURL(document);
    return arguments.outputFolder ? *arguments.outputFolder / proposed.filename() : proposed;
}

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

// One run over several sources, which must not write two of them to one file.
class RedactRun {
public:
    RedactRun(const RedactArguments& given, const Engines& used)
        : arguments(given), engines(used) {}

    Failure redact(const path& source) {
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
        const Targets targets = targetsFor(*model.document());
        for (const auto& target : {targets.savedDocument, targets.exported}) {
            if (target && !mayWrite(*target)) {
                return alreadyThere(*target);
            }
        }
        // What was found lies under the boxes that were given.
        search(model, arguments.search, arguments.style);
        if (!addBoxes(model, arguments)) {
            return boxTooSmall(source);
        }
        if (auto failure = write(headless, targets)) {
            return failure;
        }
        report(source, targets, model.totalRedactionCount());
        return std::nullopt;
    }

private:
    struct Targets {
        std::optional<path> savedDocument;
        std::optional<path> exported;
    };

    [[nodiscard]] Targets targetsFor(const DocumentIO::Document& document) const {
        Targets targets{arguments.savedDocument, std::nullopt};
        if (arguments.exports()) {
            targets.exported = destinationFor(document, arguments);
        }
        return targets;
    }

    [[nodiscard]] bool mayWrite(const path& target) const {
        std::error_code ignored;
        if (!exists(target, ignored) || !is_regular_file(target, ignored)) {
            return true; // what is no file is refused or written to as such
        }
        return arguments.force && !written.contains(weakly_canonical(target));
    }

    Failure write(HeadlessModel& headless, const Targets& targets) {
        RedactModel& model = headless.model;
        if (targets.savedDocument) {
            headless.panels.location = targets.savedDocument;
            model.saveSessionAs();
            if (model.errorMessage()) {
                return model.errorMessage();
            }
        }
        if (targets.exported) {
            headless.panels.location = targets.exported;
            model.exportDocument();
            if (model.errorMessage()) {
                return model.errorMessage();
            }
            written.insert(weakly_canonical(*targets.exported));
        }
        return std::nullopt;
    }

    void report(const path& source, const Targets& targets, std::size_t count) const {
        if (!arguments.json) {
            return;
        }
        nlohmann::ordered_json line{{"file", source.string()}};
        if (targets.savedDocument) {
            line["saved"] = targets.savedDocument->string();
        }
        if (targets.exported) {
            line["output"] = targets.exported->string();
        }
        line["redactions"] = count;
        printJson(line);
    }

    const RedactArguments& arguments;
    const Engines& engines;
    std::set<path> written;
};

} // namespace

bool redact(const RedactArguments& arguments, const Engines& engines) {
    RedactRun run(arguments, engines);
    return forEachSource(arguments.sources,
                         [&](const std::filesystem::path& source) { return run.redact(source); });
}

} // namespace murkwell::cli
