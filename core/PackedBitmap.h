// A page as it stands in memory while nobody looks at it: the same pixels in a fraction of the
// bytes.
#pragma once

#include "core/Bitmap.h"
#include "core/Geometry.h"
#include "core/PixelMemory.h"

#include <cstddef>
#include <memory>
#include <mutex>
#include <optional>
#include <utility>
#include <variant>

namespace murkwell {

class PackedBitmap;

// How the pages of a document travel: shared and immutable. Null stands for "no page".
using PackedBitmapRef = std::shared_ptr<const PackedBitmap>;

// Pages are made of repetition, white above all. One that is not, a photograph say, stays as it is.
// Lossless. Any thread.
class PackedBitmap {
public:
    // Null when there is no bitmap or memory runs out (PixelMemory).
    [[nodiscard]] static PackedBitmapRef pack(BitmapRef bitmap);

    PackedBitmap(const PackedBitmap&) = delete;
    PackedBitmap& operator=(const PackedBitmap&) = delete;

    [[nodiscard]] PixelSize size() const { return pixelSize; }

    // What it takes while it is not unpacked.
    [[nodiscard]] std::size_t sizeInBytes() const;

    // The pixels, for as long as somebody holds them; whoever asks meanwhile gets the same ones.
    // Null when memory runs out.
    [[nodiscard]] BitmapRef unpack() const;

private:
    struct Packed {
        PixelMemory::Block memory;
        std::size_t size; // in bytes
    };
    using Form = std::variant<Packed, BitmapRef>; // a bitmap that hardly packs is never null

    PackedBitmap(PixelSize size, Bitmap::Contents of, Form held)
        : pixelSize(size), contents(of), form(std::move(held)) {}

    [[nodiscard]] static std::optional<Packed> compress(const Bitmap& bitmap);
    [[nodiscard]] BitmapRef decompress(const Packed& packed) const;

    PixelSize pixelSize;
    Bitmap::Contents contents;
    Form form;
    mutable std::mutex mutex;
    mutable std::weak_ptr<const Bitmap> inUse;
};

} // namespace murkwell
