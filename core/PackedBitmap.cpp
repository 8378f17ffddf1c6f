#include "core/PackedBitmap.h"

#include <algorithm>
#include <new>
#include <span>
#include <string.h>
#include <zstd.h>

namespace murkwell {
namespace {

// A letter page of text packs to a thirtieth in 3 ms; higher levels take longer and gain little.
constexpr int compressionLevel = 1;

// More than this share of the pixels' bytes is not worth unpacking for every look.
constexpr double mostWorthPacking = 0.75;

std::span<const std::byte> bytesOf(const Bitmap& bitmap) {
    return std::as_bytes(bitmap.pixels());
}

// What holds pixels for a moment and is cleared before anybody else gets the memory.
class Scratch {
public:
    explicit Scratch(std::size_t capacity)
        : memory(std::make_unique_for_overwrite<std::byte[]>(capacity)), size(capacity) {}
    ~Scratch() { ::explicit_bzero(memory.get(), used); }
    Scratch(const Scratch&) = delete;
    Scratch& operator=(const Scratch&) = delete;

    // What the bytes compress to, until the next call. Empty when they do not fit in here.
    std::span<const std::byte> compress(std::span<const std::byte> bytes) {
        const std::size_t result =
            ZSTD_compress(memory.get(), size, bytes.data(), bytes.size(), compressionLevel);
        const bool fits = ZSTD_isError(result) == 0U;
        used = fits ? result : size;
        return {memory.get(), fits ? result : 0};
    }

private:
    std::unique_ptr<std::byte[]> memory;
    std::size_t size;
    std::size_t used = 0;
};

} // namespace

PackedBitmapRef PackedBitmap::pack(BitmapRef bitmap) {
    if (!bitmap) {
        return nullptr;
    }
    try {
        const PixelSize size{bitmap->width(), bitmap->height()};
        const Bitmap::Contents contents = bitmap->contents();
        auto packed = compress(*bitmap);
        Form form = packed ? Form(std::move(*packed)) : Form(std::move(bitmap));
        return PackedBitmapRef(new PackedBitmap(size, contents, std::move(form)));
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

// None when it is not worth it or memory runs out, which may also throw std::bad_alloc.
std::optional<PackedBitmap::Packed> PackedBitmap::compress(const Bitmap& bitmap) {
    const auto pixels = bytesOf(bitmap);
    Scratch scratch(
        static_cast<std::size_t>(mostWorthPacking * static_cast<double>(pixels.size())));
    const auto bytes = scratch.compress(pixels);
    auto memory = bytes.empty()
                      ? nullptr
                      : PixelMemory::take(bytes.size(), PixelMemory::Content::toBeOverwritten);
    if (!memory) {
        return std::nullopt;
    }
    std::ranges::copy(bytes, memory.get());
    return Packed{std::move(memory), bytes.size()};
}

std::size_t PackedBitmap::sizeInBytes() const {
    if (const auto* const packed = std::get_if<Packed>(&form)) {
        return packed->size;
    }
    return bytesOf(*std::get<BitmapRef>(form)).size();
}

BitmapRef PackedBitmap::unpack() const {
    const auto* const packed = std::get_if<Packed>(&form);
    if (packed == nullptr) {
        return std::get<BitmapRef>(form);
    }
    const std::lock_guard lock(mutex);
    BitmapRef bitmap = inUse.lock();
    if (!bitmap) {
        bitmap = decompress(*packed);
        inUse = bitmap;
    }
    return bitmap;
}

BitmapRef PackedBitmap::decompress(const Packed& packed) const {
    auto bitmap =
        Bitmap::create(pixelSize.width, pixelSize.height, PixelMemory::Content::toBeOverwritten);
    if (!bitmap) {
        return nullptr;
    }
    bitmap->contents_ = contents;
    const auto pixels = std::as_writable_bytes(bitmap->pixels());
    const std::size_t unpacked =
        ZSTD_decompress(pixels.data(), pixels.size(), packed.memory.get(), packed.size);
    return unpacked == pixels.size() ? bitmap : nullptr;
}

} // namespace murkwell
