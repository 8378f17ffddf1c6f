#include "core/Bitmap.h"

#include <atomic>
#include <cstring>
#include <utility>

namespace murkwell {

std::size_t Bitmap::sizeInBytes(int width, int height) {
    if (width < 1 || height < 1 || std::int64_t{width} * height > maxPixels) {
        return 0;
    }
    return sizeof(Rgba) * static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
}

Bitmap::Contents Bitmap::nextContents() {
    static std::atomic<std::uint64_t> last{0};
    return Contents{++last};
}

std::shared_ptr<Bitmap> Bitmap::create(int width, int height, PixelMemory::Content content) {
    const std::size_t bytes = sizeInBytes(width, height);
    auto memory = bytes > 0 ? PixelMemory::take(bytes, content) : nullptr;
    return memory ? std::shared_ptr<Bitmap>(new Bitmap(width, height, std::move(memory))) : nullptr;
}

std::shared_ptr<Bitmap> Bitmap::copy(const Bitmap& source) {
    auto result = create(source.width(), source.height(), PixelMemory::Content::toBeOverwritten);
    if (result) {
        std::memcpy(result->data, source.data, source.pixels().size_bytes());
    }
    return result;
}

BitmapRef Bitmap::over(int width, int height, std::shared_ptr<const std::byte> memory) {
    if (sizeInBytes(width, height) == 0 || !memory) {
        return nullptr;
    }
    // Nobody gets at it but through the reference to a constant bitmap.
    auto block = std::const_pointer_cast<std::byte>(std::move(memory));
    return BitmapRef(new Bitmap(width, height, std::move(block)));
}

} // namespace murkwell
