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

LoadResult loadPDF(Bytes data, const std::filesystem::path& url, PdfRenderer& renderer,
                   const std::optional<std::string>& password) {
    auto result = renderer.render(data, password);
    if (const auto* const failure = std::get_if<LoadFailure>(&result)) {
        return *failure;
    }
    auto& rendered = std::get<std::vector<RenderedPage>>(result);
    Document document{url, true, ContentType::pdf, {}};
    for (RenderedPage& page : rendered) {
        if (page.image) {
            document.pages.push_back({std::move(page.image), page.isComplete});
        }
    }
    if (document.pages.empty()) {
        return LoadFailure::unreadable;
    }
    document.omittedPages = rendered.size() - document.pages.size();
    return document;
}

// What the decoder says counts first, then the name.
ContentType imageTypeOf(const DecodedImage& image, const std::filesystem::path& url) {
    if (const auto type = ContentType::fromIdentifier(image.typeIdentifier)) {
        return *type;
    }
    return ContentType::fromExtension(pathExtension(url)).value_or(ContentType::png);
}

LoadResult loadImage(Bytes data, const std::filesystem::path& url, ImageCodec& codec) {
    const auto image = codec.decode(data);
    const auto page = image ? PackedBitmap::pack(image->bitmap) : nullptr;
    if (!page) {
        return LoadFailure::unreadable;
    }
    return Document{url, false, imageTypeOf(*image, url), {{page}}, image->pictureCount - 1};
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

LoadResult load(const std::filesystem::path& url, const Engines& engines,
                const std::optional<std::string>& password) {
    const auto data = readFile(url);
    if (!data) {
        return LoadFailure::unreadable;
    }
    return load(data->bytes(), url, engines, password);
}

LoadResult load(Bytes data, const std::filesystem::path& nominalURL, const Engines& engines,
                const std::optional<std::string>& password) {
    return takesPdfPath(nominalURL) ? loadPDF(data, nominalURL, engines.pdfRenderer, password)
                                    : loadImage(data, nominalURL, engines.imageCodec);
}

} // namespace murkwell::DocumentIO
