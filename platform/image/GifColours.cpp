#include "platform/image/GifColours.h"

namespace murkwell {
namespace {

constexpr unsigned hasTable = 0x80;
constexpr unsigned extension = 0x21;
constexpr unsigned imageDescriptor = 0x2c;

// Behind the blocks that start here, each led by its size, and the empty one that ends them.
std::size_t behindBlocks(std::span<const std::byte> file, std::size_t at) {
    while (at < file.size() && file[at] != std::byte{0}) {
        at += 1 + std::to_integer<std::size_t>(file[at]);
    }
    return at + 1;
}

} // namespace

bool firstGifFrameHasColours(std::span<const std::byte> file) {
    constexpr std::size_t headerSize = 13;
    constexpr std::size_t screenFlags = 10;
    constexpr std::size_t frameFlags = 9;
    if (file.size() < headerSize) {
        return false;
    }
    const auto byteAt = [&](std::size_t at) {
        return at < file.size() ? std::to_integer<unsigned>(file[at]) : 0;
    };
    if ((byteAt(screenFlags) & hasTable) != 0) {
        return true;
    }
    std::size_t at = headerSize;
    while (byteAt(at) == extension) {
        at = behindBlocks(file, at + 2);
    }
    return byteAt(at) == imageDescriptor && (byteAt(at + frameFlags) & hasTable) != 0;
}

} // namespace murkwell
