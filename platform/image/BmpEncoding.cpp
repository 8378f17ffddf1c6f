#include "platform/image/AlphaArithmetic.h"
#include "platform/image/BmpFile.h"

#include <cstdint>

namespace murkwell {
namespace {

constexpr std::size_t fileHeaderSize = 14;
constexpr std::size_t infoHeaderSize = 40;
constexpr std::size_t headerSizeWithAlpha = 108; // version 4, the first one that tells of alpha

class Writer {
public:
    explicit Writer(std::size_t size) { bytes.reserve(size); }

    // Little-endian.
    void put(std::size_t value, std::size_t size) {
        for (std::size_t i = 0; i < size; ++i) {
            bytes.push_back(static_cast<std::byte>(value >> (8 * i)));
        }
    }

    void putZeros(std::size_t count) { bytes.resize(bytes.size() + count); }

    std::vector<std::byte> bytes;
};

void putHeaders(Writer& writer, const Bitmap& picture, bool hasAlpha, std::size_t pixelBytes) {
    const std::size_t headerSize = hasAlpha ? headerSizeWithAlpha : infoHeaderSize;
    const std::size_t pixelStart = fileHeaderSize + headerSize;
    writer.put('B' | 'M' << 8, 2);
    writer.put(pixelStart + pixelBytes, 4);
    writer.put(0, 4);
    writer.put(pixelStart, 4);
    writer.put(headerSize, 4);
    writer.put(static_cast<std::size_t>(picture.width()), 4);
    writer.put(static_cast<std::size_t>(picture.height()), 4);
    writer.put(1, 2); // planes
    writer.put(hasAlpha ? 32 : 24, 2);
    writer.put(hasAlpha ? 3 : 0, 4); // bit fields or none
    writer.put(pixelBytes, 4);
    writer.putZeros(16); // no resolution, no palette
    if (hasAlpha) {
        for (const std::size_t mask : {0x00ff0000U, 0x0000ff00U, 0x000000ffU, 0xff000000U}) {
            writer.put(mask, 4);
        }
        writer.put(0x73524742, 4); // colours are sRGB; what follows does not apply then
        writer.putZeros(48);
    }
}

} // namespace

std::vector<std::byte> encodeBmp(const Bitmap& picture) {
    const bool hasAlpha = !isOpaque(picture);
    const std::size_t rowBytes = static_cast<std::size_t>(picture.width()) * (hasAlpha ? 4 : 3);
    const std::size_t padding = (4 - rowBytes % 4) % 4;
    const std::size_t pixelBytes =
        (rowBytes + padding) * static_cast<std::size_t>(picture.height());
    Writer writer(fileHeaderSize + headerSizeWithAlpha + pixelBytes);
    putHeaders(writer, picture, hasAlpha, pixelBytes);
    for (int y = picture.height() - 1; y >= 0; --y) {
        for (const Rgba& stored : picture.row(y)) {
            const Rgba pixel = straight(stored);
            for (const std::uint8_t component : {pixel.b, pixel.g, pixel.r}) {
                writer.bytes.push_back(static_cast<std::byte>(component));
            }
            if (hasAlpha) {
                writer.bytes.push_back(static_cast<std::byte>(pixel.a));
            }
        }
        writer.putZeros(padding);
    }
    return std::move(writer.bytes);
}

} // namespace murkwell
