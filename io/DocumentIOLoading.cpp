#include "io/DocumentIO.h"

#include "io/FileAccess.h"
#include "io/FileName.h"

namespace murkwell::DocumentIO {
namespace {

using Bytes = std::span<const std::byte>;

bool takesPdfPath(const std::filesystem::path& url) {
    const auto type = ContentType::fromExtension(pathExtension(url));
    return type && type->conformsTo(ContentType::pdf);
}

std::optional<Document> loadPDF(Bytes data, const std::filesystem::path& url,
                                PdfRenderer& renderer) {
    auto bitmaps = renderer.render(data);
    if (!bitmaps) {
        return std::nullopt;
    }
    Document document{url, true, ContentType::pdf, {}};
    for (BitmapRef& bitmap : *bitmaps) {
        if (bitmap) {
            document.pages.push_back({std::move(bitmap)});
        }
    }
    if (document.pages.empty()) {
        return std::nullopt;
    }
    return document;
}

// What the decoder says counts first, then the name.
ContentType imageTypeOf(const DecodedImage& image, const std::filesystem::path& url) {
    if (const auto type = ContentType::fromIdentifier(image.typeIdentifier)) {
        return *type;
    }
    return ContentType::fromExtension(pathExtension(url)).value_or(ContentType::png);
}

std::optional<Document> loadImage(Bytes data, const std::filesystem::path& url, ImageCodec& codec) {
    const auto image = codec.decode(data);
    if (!image || !image->bitmap) {
        return std::nullopt;
    }
    return Document{url, false, imageTypeOf(*image, url), {{image->bitmap}}};
}

} // namespace

const std::array<ContentType, 7>& imageTypes() {
    static const std::array types{
        ContentType::png, ContentType::jpeg, ContentType::tiff, ContentType::bmp,
        ContentType::gif, ContentType::heic, ContentType::heif,
    };
    return types;
}

const ContentType& sessionType() {
    return ContentType::session;
}

std::optional<Document> load(const std::filesystem::path& url, const Engines& engines) {
    const auto data = readFile(url);
    if (!data) {
        return std::nullopt;
    }
    return load(data->bytes(), url, engines);
}

std::optional<Document> load(Bytes data, const std::filesystem::path& nominalURL,
                             const Engines& engines) {
    return takesPdfPath(nominalURL) ? loadPDF(data, nominalURL, engines.pdfRenderer)
                                    : loadImage(data, nominalURL, engines.imageCodec);
}

} // namespace murkwell::DocumentIO
