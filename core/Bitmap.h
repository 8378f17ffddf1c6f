// The one internal form of a page or picture: 8-bit premultiplied RGBA in sRGB.
#pragma once

#include "core/PixelMemory.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <utility>

namespace murkwell {

struct Rgba {
    std::uint8_t r;
    std::uint8_t g;
    std::uint8_t b;
    std::uint8_t a;

    bool operator==(const Rgba&) const = default;
};
static_assert(sizeof(Rgba) == 4);

class Bitmap;

// How pages travel: shared and immutable. Null stands for "no bitmap".
using BitmapRef = std::shared_ptr<const Bitmap>;

// Rows follow each other without padding, the top row first. Whoever makes a bitmap fills it
// through the non-const reference and then lets it go as a BitmapRef.
class Bitmap {
public:
    // Most pixels a bitmap can have: 2 GiB of them.
    static constexpr std::int64_t maxPixels = std::int64_t{1} << 29;

    // Bytes of so many pixels; 0 when there is no bitmap of that size.
    [[nodiscard]] static std::size_t sizeInBytes(int width, int height);

    // Transparent black, unless everything is to be overwritten anyway. Null when a side is below 1
    // or when memory runs out (PixelMemory).
    [[nodiscard]] static std::shared_ptr<Bitmap>
    create(int width, int height, PixelMemory::Content content = PixelMemory::Content::zero);

    [[nodiscard]] static std::shared_ptr<Bitmap> copy(const Bitmap& source);

    // Pixels that lie in memory already, which is at least that large and is never written to. Null
    // when a side is below 1 or there is no memory.
    [[nodiscard]] static BitmapRef over(int width, int height,
                                        std::shared_ptr<const std::byte> memory);

    Bitmap(const Bitmap&) = delete;
    Bitmap& operator=(const Bitmap&) = delete;

    // Tells bitmaps of different contents apart, for whoever remembers what it learnt of one. A
    // page's is the same every time it is unpacked.
    enum class Contents : std::uint64_t {};
    [[nodiscard]] Contents contents() const { return contents_; }

    [[nodiscard]] int width() const { return width_; }
    [[nodiscard]] int height() const { return height_; }

    [[nodiscard]] std::span<const Rgba> pixels() const { return {data, pixelCount()}; }
    [[nodiscard]] std::span<Rgba> pixels() { return {data, pixelCount()}; }

    [[nodiscard]] std::span<const Rgba> row(int y) const {
        return pixels().subspan(rowStart(y), static_cast<std::size_t>(width_));
    }
    [[nodiscard]] std::span<Rgba> row(int y) {
        return pixels().subspan(rowStart(y), static_cast<std::size_t>(width_));
    }

private:
    friend class PackedBitmap;

    Bitmap(int width, int height, PixelMemory::Block block)
        : width_(width), height_(height), memory(std::move(block)),
          data(reinterpret_cast<Rgba*>(memory.get())) {}

    [[nodiscard]] static Contents nextContents();

    [[nodiscard]] std::size_t pixelCount() const {
        return static_cast<std::size_t>(width_) * static_cast<std::size_t>(height_);
    }
    [[nodiscard]] std::size_t rowStart(int y) const {
        return static_cast<std::size_t>(y) * static_cast<std::size_t>(width_);
    }

    int width_;
    int height_;
    Contents contents_ = nextContents();
    PixelMemory::Block memory;
    Rgba* data;
};

} // namespace murkwell
