#include "cli/Commands.h"

#include "cli/EachSource.h"
#include "cli/Output.h"
#include "core/Localization.h"
#include "io/FileName.h"

#include <nlohmann/json.hpp>

namespace murkwell::cli {
namespace {

using DocumentIO::Document;
using std::filesystem::path;

// Whatever can be loaded is described, also a picture of a type that is not taken for redaction.
std::optional<Document> documentAt(const path& source, const Engines& engines) {
    if (ContentType::fromExtension(pathExtension(source)) != DocumentIO::sessionType()) {
        const auto result = DocumentIO::load(source, engines.documents);
        const auto* const document = std::get_if<Document>(&result);
        if (document == nullptr) {
            return std::nullopt;
        }
        printRemarks(source, *document);
        return *document;
    }
    HeadlessModel headless(engines);
    if (headless.open(source)) {
        return std::nullopt;
    }
    return headless.model.document();
}

Failure print(const path& source, const Document& document) {
    auto pages = nlohmann::ordered_json::array();
    for (const auto& page : document.pages) {
        pages.push_back({page.image->width(), page.image->height()});
    }
    return printJson({{"file", source.string()},
                      {"isPDF", document.isPDF},
                      {"imageType", document.imageType.identifier()},
                      {"pages", pages}});
}

} // namespace

bool info(const InfoArguments& arguments, const Engines& engines) {
    return forEachSource(arguments.sources, [&](const path& source) -> Failure {
        if (const auto document = documentAt(source, engines)) {
            return print(source, *document);
        }
        return localized("Couldn’t open “%@”.", {shownName(source)});
    });
}

} // namespace murkwell::cli
