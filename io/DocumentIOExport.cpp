#include "io/DocumentIO.h"

#include "core/RedactionEngine.h"
#include "io/FileAccess.h"
#include "io/FileName.h"

#include <algorithm>
#include <string>

namespace murkwell::DocumentIO {
namespace {

using Bytes = std::vector<std::byte>;

constexpr double jpegQuality = 0.92;

constexpr std::size_t mostColoursOfGif = 256;

using RedactionLists = std::span<const std::vector<Redaction>>;

// A fresh bitmap; null when the page cannot be burned.
BitmapRef burned(const Page& page, std::span<const Redaction> redactions, RandomSource& random,
                 std::size_t mostColours) {
    const BitmapRef pixels = page.image->unpack();
    return pixels ? RedactionEngine::burn(*pixels, redactions, random, mostColours) : nullptr;
}

std::span<const Redaction> listOf(std::size_t page, RedactionLists redactionsByPage) {
    return page < redactionsByPage.size() ? redactionsByPage[page] : std::span<const Redaction>();
}

ContentType writableType(const ContentType& source, const ImageCodec& codec) {
    const auto writable = codec.encodableTypes();
    const auto canWrite = [&](const ContentType& type) {
        return std::ranges::count(writable, type.identifier()) > 0;
    };
    if (canWrite(source)) {
        return source;
    }
    if (source.conformsTo(ContentType::jpeg) && canWrite(ContentType::jpeg)) {
        return ContentType::jpeg;
    }
    return ContentType::png;
}

std::optional<Bytes> encodePDF(const Document& document, RedactionLists redactionsByPage,
                               const Engines& engines) {
    if (document.pages.empty()) {
        return std::nullopt;
    }
    return engines.pdfWriter.encode(document.pages.size(), [&](std::size_t page) {
        return burned(document.pages[page], listOf(page, redactionsByPage), engines.random,
                      RedactionEngine::anyNumber);
    });
}

std::optional<Bytes> encodeImage(const Document& document, RedactionLists redactionsByPage,
                                 const Engines& engines) {
    const ContentType type = writableType(document.imageType, engines.imageCodec);
    const auto quality =
        type == ContentType::jpeg ? std::optional<double>(jpegQuality) : std::nullopt;
    const BitmapRef image =
        burned(document.pages.front(), listOf(0, redactionsByPage), engines.random,
               type == ContentType::gif ? mostColoursOfGif : RedactionEngine::anyNumber);
    return image ? engines.imageCodec.encode(*image, type, quality) : std::nullopt;
}

bool isSameFile(const std::filesystem::path& a, const std::filesystem::path& b) {
    std::error_code ignored;
    return std::filesystem::equivalent(a, b, ignored);
}

std::filesystem::path outputURL(const std::filesystem::path& url, const ContentType& type) {
    const std::string spelled = pathExtension(url);
    std::string extension;
    if (type.conformsTo(ContentType::pdf)) {
        extension = "pdf";
    } else if (!spelled.empty()) {
        extension = spelled;
    } else {
        extension = type.preferredFilenameExtension().value_or("png");
    }
    return url.parent_path() / (baseName(url) + "-redacted." + extension);
}

} // namespace

bool write(const Document& document, std::span<const std::vector<Redaction>> redactionsByPage,
           const Destination& destination, const Engines& engines) {
    if (isSameFile(document.url, destination.location)) {
        return false;
    }
    const auto bytes = document.isPDF ? encodePDF(document, redactionsByPage, engines)
                                      : encodeImage(document, redactionsByPage, engines);
    return bytes && writeFileAtomically(destination, *bytes);
}

std::filesystem::path defaultOutputURL(const Document& document) {
    return outputURL(document.url, document.isPDF ? ContentType::pdf : document.imageType);
}

std::optional<std::filesystem::path> defaultOutputURL(const std::filesystem::path& nominalURL) {
    const auto type = ContentType::fromExtension(pathExtension(nominalURL));
    return type && type != sessionType() ? std::optional(outputURL(nominalURL, *type))
                                         : std::nullopt;
}

} // namespace murkwell::DocumentIO
