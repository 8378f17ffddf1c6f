#include "io/DocumentIO.h"

#include "core/ParallelFor.h"
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

// One fresh bitmap per page, in order. None when any page cannot be burned.
std::optional<std::vector<BitmapRef>>
burnPages(const Document& document, std::span<const std::vector<Redaction>> redactionsByPage,
          RandomSource& random, std::size_t mostColours) {
    std::vector<BitmapRef> burned(document.pages.size());
    const bool allRan = parallelFor(burned.size(), [&](std::size_t i) {
        std::span<const Redaction> redactions;
        if (i < redactionsByPage.size()) {
            redactions = redactionsByPage[i];
        }
        burned[i] =
            RedactionEngine::burn(*document.pages[i].image, redactions, random, mostColours);
    });
    if (!allRan || burned.empty() || std::ranges::count(burned, nullptr) > 0) {
        return std::nullopt;
    }
    return burned;
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

bool writeIfEncoded(const std::optional<Bytes>& bytes, const Destination& destination) {
    return bytes && writeFileAtomically(destination, *bytes);
}

bool writeImage(const Bitmap& image, const Destination& destination, const ContentType& type,
                ImageCodec& codec) {
    const auto quality =
        type == ContentType::jpeg ? std::optional<double>(jpegQuality) : std::nullopt;
    return writeIfEncoded(codec.encode(image, type, quality), destination);
}

bool writePDF(std::vector<BitmapRef> pages, const Destination& destination, PdfWriter& writer) {
    return writeIfEncoded(writer.encode(std::move(pages)), destination);
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
    const ContentType type =
        document.isPDF ? ContentType::pdf : writableType(document.imageType, engines.imageCodec);
    auto burned =
        burnPages(document, redactionsByPage, engines.random,
                  type == ContentType::gif ? mostColoursOfGif : RedactionEngine::anyNumber);
    if (!burned) {
        return false;
    }
    if (document.isPDF) {
        return writePDF(std::move(*burned), destination, engines.pdfWriter);
    }
    return writeImage(*burned->front(), destination, type, engines.imageCodec);
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
