#include "cli/Commands.h"

#include "cli/EachSource.h"
#include "cli/Output.h"
#include "core/Localization.h"
#include "io/FileName.h"
#include "model/PasswordedLoading.h"

#include <nlohmann/json.hpp>

namespace murkwell::cli {
namespace {

using DocumentIO::Document;
using std::filesystem::path;

// Whatever can be loaded is described, also a picture of a type that is not taken for redaction.
std::optional<Document> documentAt(const path& source, const Engines& engines, Failure& failure) {
    if (ContentType::fromExtension(pathExtension(source)) != DocumentIO::sessionType()) {
        CommandLinePanels panels(engines.passwords);
        const auto result = loadWithPassword(source, panels, [&](const auto& password) {
            return DocumentIO::load(source, engines.documents, password);
        });
        if (const auto* const document = std::get_if<Document>(&result)) {
            printRemarks(source, *document);
            return *document;
        }
        failure = needsPassword(result) ? engines.passwords.refusal()
                                        : localized("Couldn’t open “%@”.", {shownName(source)});
        return std::nullopt;
    }
    HeadlessModel headless(engines);
    failure = headless.open(source);
    return headless.model.document();
}

Failure print(const path& source, const Document& document) {
    auto pages = nlohmann::ordered_json::array();
    for (const auto& page : document.pages) {
        const PixelSize size = page.image->size();
        pages.push_back({size.width, size.height});
    }
    return printJson({{"file", source.string()},
                      {"isPDF", document.isPDF},
                      {"imageType", document.imageType.identifier()},
                      {"pages", pages}});
}

} // namespace

bool info(const InfoArguments& arguments, const Engines& engines) {
    return forEachSource(arguments.sources, [&](const path& source) -> Failure {
        Failure failure;
        const auto document = documentAt(source, engines, failure);
        return document ? print(source, *document) : failure;
    });
}

} // namespace murkwell::cli
