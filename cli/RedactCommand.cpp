#include "cli/Commands.h"

#include "cli/Output.h"
#include "core/RandomSource.h"
#include "io/FileName.h"

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

// The boxes as the pages' lists. None when a box names a page that is not there.
std::optional<std::vector<std::vector<Redaction>>>
redactionsFor(const DocumentIO::Document& document, const RedactArguments& arguments,
              RandomSource& random) {
    std::vector<std::vector<Redaction>> byPage(document.pages.size());
    for (const BoxArgument& box : arguments.boxes) {
        const auto index = static_cast<std::size_t>(box.page - 1);
        if (index >= byPage.size()) {
            return std::nullopt;
        }
        byPage[index].push_back(
            {Uuid::random(random), box.rect, box.style.value_or(arguments.style), false});
    }
    return byPage;
}

std::string noSuchPage(const path& source, const RedactArguments& arguments,
                       std::size_t pageCount) {
    const int highest = std::ranges::max(arguments.boxes, {}, &BoxArgument::page).page;
    return "“" + lastPathComponent(source) + "” has no page " + std::to_string(highest) +
           " for its box; its last page is " + std::to_string(pageCount) + ".";
}

// One run over several sources, which must not write two of them to one file.
class RedactRun {
public:
    RedactRun(const RedactArguments& given, const DocumentIO::Engines& used)
        : arguments(given), engines(used) {}

    // A message when the file could not be done, else an empty one.
    std::string redact(const path& source) {
        const auto document = DocumentIO::load(source, engines);
        if (!document) {
            return couldNotOpen(source);
        }
        const auto redactions = redactionsFor(*document, arguments, engines.random);
        if (!redactions) {
            return noSuchPage(source, arguments, document->pages.size());
        }
        const path destination = destinationFor(*document, arguments);
        if (!mayWrite(destination)) {
            return couldNotWrite(destination) +
                   " It is there already; --force replaces it, but not with two sources.";
        }
        if (!DocumentIO::write(*document, *redactions, destination, engines)) {
            return couldNotWrite(destination);
        }
        written.insert(weakly_canonical(destination));
        report(source, destination);
        return {};
    }

private:
    [[nodiscard]] bool mayWrite(const path& destination) const {
        std::error_code ignored;
        if (!exists(destination, ignored) || !is_regular_file(destination, ignored)) {
            return true; // what is no file is refused or written to as such
        }
        return arguments.force && !written.contains(weakly_canonical(destination));
    }

    void report(const path& source, const path& destination) const {
        if (arguments.json) {
            printJson({{"file", source.string()},
                       {"output", destination.string()},
                       {"redactions", arguments.boxes.size()}});
        }
    }

    const RedactArguments& arguments;
    const DocumentIO::Engines& engines;
    std::set<path> written;
};

} // namespace

bool redact(const RedactArguments& arguments, const DocumentIO::Engines& engines) {
    Progress progress(arguments.sources.size());
    RedactRun run(arguments, engines);
    bool allDone = true;
    for (const path& source : arguments.sources) {
        progress.begin(source);
        const std::string failure = run.redact(source);
        if (!failure.empty()) {
            printFailure(failure);
            allDone = false;
        }
    }
    return allDone;
}

} // namespace murkwell::cli
