#include "platform/image/GifEncoding.h"

#include "platform/image/AlphaArithmetic.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <limits>
#include <string_view>
#include <unordered_map>

namespace murkwell {
namespace {

using Bytes = std::vector<std::byte>;

constexpr std::size_t mostColours = 256;
constexpr Rgba transparent{0, 0, 0, 0};

// What GIF can say of a pixel.
Rgba opaqueOrNothing(Rgba stored) {
    if (stored.a < 128) {
        return transparent;
    }
    const Rgba pixel = straight(stored);
    return {pixel.r, pixel.g, pixel.b, 255};
}

struct Palette {
    std::vector<Rgba> colours; // at most 256
    std::unordered_map<std::uint32_t, std::uint8_t> indices;
    std::optional<std::uint8_t> transparentIndex;

    [[nodiscard]] std::uint8_t indexOf(Rgba colour) const {
        return indices.at(std::bit_cast<std::uint32_t>(colour));
    }
};

// In the order of first appearance. None when there are too many.
std::optional<Palette> paletteOf(const Bitmap& picture) {
    Palette palette;
    std::optional<Rgba> last;
    for (const Rgba& stored : picture.pixels()) {
        if (stored == last) {
            continue;
        }
        last = stored;
        const Rgba colour = opaqueOrNothing(stored);
        const auto index = static_cast<std::uint8_t>(palette.colours.size());
        if (!palette.indices.try_emplace(std::bit_cast<std::uint32_t>(colour), index).second) {
            continue;
        }
        if (palette.colours.size() == mostColours) {
            return std::nullopt;
        }
        palette.colours.push_back(colour);
        if (colour == transparent) {
            palette.transparentIndex = index;
        }
    }
    return palette;
}

void put(Bytes& file, std::initializer_list<unsigned> bytes) {
    for (const unsigned byte : bytes) {
        file.push_back(static_cast<std::byte>(byte));
    }
}

void putShort(Bytes& file, int value) {
    put(file, {static_cast<unsigned>(value) & 255, static_cast<unsigned>(value) >> 8});
}

// Codes of growing width, packed from the low bit up, in blocks of at most 255 bytes.
class CodeStream {
public:
    explicit CodeStream(Bytes& target) : file(target) {}

    void put(unsigned code, int width) {
        pending |= code << pendingBits;
        pendingBits += width;
        while (pendingBits >= 8) {
            putByte(pending & 255);
            pending >>= 8;
            pendingBits -= 8;
        }
    }

    void finish() {
        if (pendingBits > 0) {
            putByte(pending & 255);
        }
        flush();
        file.push_back(std::byte{0});
    }

private:
    void putByte(unsigned byte) {
        block[used++] = static_cast<std::byte>(byte);
        if (used == block.size()) {
            flush();
        }
    }

    void flush() {
        if (used > 0) {
            file.push_back(static_cast<std::byte>(used));
            file.insert(file.end(), block.begin(),
                        block.begin() + static_cast<std::ptrdiff_t>(used));
            used = 0;
        }
    }

    Bytes& file;
    std::array<std::byte, 255> block{};
    std::size_t used = 0;
    unsigned pending = 0;
    int pendingBits = 0;
};

// The strings that LZW has seen: a known string and one more index make a new code.
class Dictionary {
public:
    void clear() { slots.fill({}); }

    // The code of the string, or 0 after it has been entered with the new one: 0 is always a single
    // index, never a longer string.
    unsigned findOrEnter(unsigned prefix, unsigned index, unsigned newCode) {
        const std::uint32_t key = (prefix << 8 | index) + 1;
        std::size_t at = key * 2654435761U >> (32 - bits);
        while (slots[at].key != 0) {
            if (slots[at].key == key) {
                return slots[at].code;
            }
            at = (at + 1) % slots.size();
        }
        slots[at] = {key, newCode};
        return 0;
    }

private:
    struct Slot {
        std::uint32_t key = 0; // 0: empty
        unsigned code = 0;
    };

    static constexpr int bits = 13; // twice the codes there can be
    std::array<Slot, std::size_t{1} << bits> slots{};
};

constexpr unsigned codeLimit = 4096;

void putPixels(Bytes& file, const Bitmap& picture, const Palette& palette, int indexBits) {
    const unsigned clear = 1U << indexBits;
    const unsigned end = clear + 1;
    unsigned newest = end;
    int width = indexBits + 1;
    Dictionary dictionary;
    CodeStream codes(file);
    codes.put(clear, width);
    std::optional<unsigned> prefix;
    for (const Rgba& stored : picture.pixels()) {
        const unsigned index = palette.indexOf(opaqueOrNothing(stored));
        if (!prefix) {
            prefix = index;
            continue;
        }
        if (const unsigned known = dictionary.findOrEnter(*prefix, index, newest + 1)) {
            prefix = known;
            continue;
        }
        codes.put(*prefix, width);
        prefix = index;
        ++newest;
        if (newest == codeLimit - 1) {
            codes.put(clear, width);
            dictionary.clear();
            newest = end;
            width = indexBits + 1;
        } else if (newest == 1U << width) {
            ++width;
        }
    }
    codes.put(*prefix, width);
    // The reader enters one more string now, which may widen its codes.
    codes.put(end, newest + 1 == 1U << width ? std::min(width + 1, 12) : width);
    codes.finish();
}

void putHeader(Bytes& file, const Bitmap& picture, const Palette& palette, int indexBits) {
    for (const char c : std::string_view("GIF89a")) {
        file.push_back(static_cast<std::byte>(c));
    }
    putShort(file, picture.width());
    putShort(file, picture.height());
    // A colour table of 8-bit components; no background, no aspect ratio.
    put(file, {0xf0U | static_cast<unsigned>(indexBits - 1), 0, 0});
    for (std::size_t i = 0; i < std::size_t{1} << indexBits; ++i) {
        const Rgba colour = i < palette.colours.size() ? palette.colours[i] : transparent;
        put(file, {colour.r, colour.g, colour.b});
    }
    if (palette.transparentIndex) {
        put(file, {0x21, 0xf9, 4, 1, 0, 0, *palette.transparentIndex, 0});
    }
    put(file, {0x2c, 0, 0, 0, 0});
    putShort(file, picture.width());
    putShort(file, picture.height());
    put(file, {0});
}

} // namespace

std::optional<Bytes> encodeGifExactly(const Bitmap& picture) {
    constexpr int longestSide = std::numeric_limits<std::uint16_t>::max();
    if (std::max(picture.width(), picture.height()) > longestSide) {
        return std::nullopt;
    }
    const auto palette = paletteOf(picture);
    if (!palette) {
        return std::nullopt;
    }
    // LZW knows no fewer than 2 bits, the colour table is as large.
    const int indexBits =
        std::max(2, static_cast<int>(std::bit_width(palette->colours.size() - 1)));
    Bytes file;
    putHeader(file, picture, *palette, indexBits);
    put(file, {static_cast<unsigned>(indexBits)});
    putPixels(file, picture, *palette, indexBits);
    put(file, {0x3b});
    return file;
}

} // namespace murkwell
