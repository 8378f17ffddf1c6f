#include "cli/Commands.h"

#include "cli/Output.h"
#include "cli/PageSearch.h"
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

int highestPage(const RedactArguments& arguments) {
    int highest = arguments.search.page.value_or(1);
    for (const BoxArgument& box : arguments.boxes) {
        highest = std::max(highest, box.page);
    }
    return highest;
}

using RedactionsByPage = std::vector<std::vector<Redaction>>;

// What is found and, over it, the boxes that were given. Those name pages of the document.
RedactionsByPage redactionsFor(const DocumentIO::Document& document,
                               const RedactArguments& arguments,
                               const Detector::Engines& recognition) {
    RedactionsByPage byPage(document.pages.size());
    for (const std::size_t index : pagesIn(document, arguments.search.page)) {
        byPage[index] = searchPage(*document.pages[index].image, arguments.search, arguments.style,
                                   recognition);
    }
    for (const BoxArgument& box : arguments.boxes) {
        byPage[static_cast<std::size_t>(box.page - 1)].push_back(
            {Uuid::random(recognition.random), box.rect, box.style.value_or(arguments.style),
             false});
    }
    return byPage;
}

std::size_t countOf(const RedactionsByPage& redactions) {
    std::size_t count = 0;
    for (const auto& page : redactions) {
        count += page.size();
    }
    return count;
}

// One run over several sources, which must not write two of them to one file.
class RedactRun {
public:
    RedactRun(const RedactArguments& given, const DocumentIO::Engines& used,
              const Detector::Engines& searching)
        : arguments(given), engines(used), recognition(searching) {}

    // A message when the file could not be done, else an empty one.
    std::string redact(const path& source) {
        const auto document = DocumentIO::load(source, engines);
        if (!document) {
            return couldNotOpen(source);
        }
        const int highest = highestPage(arguments);
        if (pagesIn(*document, highest).empty()) {
            return noSuchPage(source, highest, document->pages.size());
        }
        const path destination = destinationFor(*document, arguments);
        if (!mayWrite(destination)) {
            return couldNotWrite(destination) +
                   " It is there already; --force replaces it, but not with two sources.";
        }
        const RedactionsByPage redactions = redactionsFor(*document, arguments, recognition);
        if (!DocumentIO::write(*document, redactions, destination, engines)) {
            return couldNotWrite(destination);
        }
        written.insert(weakly_canonical(destination));
        report(source, destination, countOf(redactions));
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

    void report(const path& source, const path& destination, std::size_t count) const {
        if (arguments.json) {
            printJson({{"file", source.string()},
                       {"output", destination.string()},
                       {"redactions", count}});
        }
    }

    const RedactArguments& arguments;
    const DocumentIO::Engines& engines;
    const Detector::Engines& recognition;
    std::set<path> written;
};

} // namespace

bool redact(const RedactArguments& arguments, const DocumentIO::Engines& engines,
            const Detector::Engines& recognition) {
    Progress progress(arguments.sources.size());
    RedactRun run(arguments, engines, recognition);
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
