// Stand-ins for the libraries behind loading and export. Each fails when told to.
#pragma once

#include "core/RandomSource.h"
#include "io/DocumentIO.h"

#include <algorithm>
#include <span>
#include <string>

namespace murkwell {

inline std::vector<std::byte> bytesOf(std::string_view text) {
    const auto bytes = std::as_bytes(std::span(text));
    return {bytes.begin(), bytes.end()};
}

inline BitmapRef plainBitmap(int width, int height, Rgba colour = {200, 100, 50, 255}) {
    const auto bitmap = Bitmap::create(width, height);
    std::ranges::fill(bitmap->pixels(), colour);
    return bitmap;
}

inline PackedBitmapRef plainPage(int width, int height, Rgba colour = {200, 100, 50, 255}) {
    return PackedBitmap::pack(plainBitmap(width, height, colour));
}

class FakePdfRenderer final : public PdfRenderer {
public:
    Result render(std::span<const std::byte>, const std::optional<std::string>& given) override {
        ++calls;
        password = given;
        if (neededPassword && password != neededPassword) {
            return LoadFailure::needsPassword;
        }
        return pages ? Result(*pages) : failure;
    }

    std::optional<std::vector<RenderedPage>> pages;
    LoadFailure failure = LoadFailure::unreadable; // without pages
    std::optional<std::string> password;           // of the last call
    std::optional<std::string> neededPassword;
    int calls = 0;
};

class FakePdfWriter final : public PdfWriter {
public:
    std::optional<std::vector<std::byte>> encode(std::size_t pageCount,
                                                 const PageSource& pageAt) override {
        pages.clear();
        for (std::size_t i = 0; i < pageCount; ++i) {
            pages.push_back(pageAt(i));
        }
        return std::ranges::count(pages, nullptr) > 0 ? std::nullopt : result;
    }

    std::vector<BitmapRef> pages;
    std::optional<std::vector<std::byte>> result = bytesOf("a PDF");
};

class FakeImageCodec final : public ImageCodec {
public:
    std::optional<DecodedImage> decode(std::span<const std::byte>) override {
        ++decodeCalls;
        return decoded;
    }

    std::vector<std::string> encodableTypes() const override { return encodable; }

    // Writes the type, the quality and the first pixel as text.
    std::optional<std::vector<std::byte>> encode(const Bitmap& picture, const ContentType& type,
                                                 std::optional<double> quality) override {
        if (fails) {
            return std::nullopt;
        }
        encoded.assign(picture.pixels().begin(), picture.pixels().end());
        const Rgba pixel = picture.pixels().front();
        return bytesOf(std::string(type.identifier()) + " " +
                       (quality ? std::to_string(*quality).substr(0, 4) : "default") + " " +
                       std::to_string(pixel.r));
    }

    std::optional<DecodedImage> decoded;
    std::vector<Rgba> encoded; // the pixels of the last picture
    std::vector<std::string> encodable{"public.png", "public.jpeg", "public.tiff"};
    bool fails = false;
    int decodeCalls = 0;
};

struct FakeEngines {
    FakePdfRenderer renderer;
    FakePdfWriter writer;
    FakeImageCodec codec;
    SystemRandomSource random;

    DocumentIO::Engines engines() { return {renderer, writer, codec, random}; }
};

} // namespace murkwell
