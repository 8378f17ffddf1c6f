#include "cli/PageSearch.h"

#include "cli/Output.h"

#include <numeric>

namespace murkwell::cli {

std::vector<std::size_t> pagesIn(const DocumentIO::Document& document, std::optional<int> page) {
    const std::size_t count = document.pages.size();
    if (page) {
        const auto index = static_cast<std::size_t>(*page - 1);
        return index < count ? std::vector{index} : std::vector<std::size_t>();
    }
    std::vector<std::size_t> all(count);
    std::iota(all.begin(), all.end(), std::size_t{0});
    return all;
}

bool readsText(const SearchArguments& arguments) {
    return !arguments.queries.empty() || Detector::readsText(arguments.kinds);
}

Failure obstacleToText(const std::filesystem::path& source, const Detector::Engines& engines) {
    const Readiness text = engines.textRecognizer.readiness();
    return text.outcome == Outcome::failed ? Failure(ofFile(source, missingForText(text)))
                                           : std::nullopt;
}

Failure obstacleTo(const SearchArguments& arguments, const std::filesystem::path& source,
                   const Detector::Engines& engines) {
    if (readsText(arguments)) {
        if (auto obstacle = obstacleToText(source, engines)) {
            return obstacle;
        }
    }
    if (arguments.kinds.contains(PIIKind::faces)) {
        const Readiness faces = engines.faceDetector.readiness();
        if (faces.outcome == Outcome::failed) {
            return ofFile(source, missingForFaces(faces));
        }
    }
    return std::nullopt;
}

void warnOfMissingReader(const Detector::Engines& engines) {
    const Readiness text = engines.textRecognizer.readiness();
    if (text.outcome == Outcome::partial) {
        printFailure(missingForText(text));
    }
}

Failure search(RedactModel& model, const SearchArguments& arguments, RedactionStyle style,
               const std::filesystem::path& source, const Detector::Engines& engines) {
    model.tool = style;
    model.applyToAllPages = !arguments.page;
    if (arguments.page) {
        model.goToPage(*arguments.page - 1);
    }
    Failure failure;
    const auto note = [&] {
        if (!failure && model.errorMessage()) {
            failure = model.lastSearch() ? failureOf(*model.lastSearch(), source, engines)
                                         : ofFile(source, *model.errorMessage());
        }
    };
    model.detectKinds = arguments.kinds;
    model.autoDetect(); // nothing, when no kind is wanted
    note();
    for (const std::string& query : arguments.queries) {
        model.redactMatches(query, arguments.fuzzy);
        note();
    }
    return failure;
}

Failure failureOf(const SearchReport& report, const std::filesystem::path& source,
                  const Detector::Engines& engines) {
    const std::string message = report.message();
    if (!report.coversEverything()) {
        return ofFile(source, message);
    }
    if (!message.empty() && engines.textRecognizer.readiness().outcome == Outcome::whole) {
        printFailure(ofFile(source, message));
    }
    return std::nullopt;
}

} // namespace murkwell::cli
