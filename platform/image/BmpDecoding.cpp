#include "platform/image/AlphaArithmetic.h"
#include "platform/image/BmpFile.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>

namespace murkwell {
namespace {

using Bytes = std::span<const std::byte>;

constexpr std::size_t fileHeaderSize = 14;
constexpr std::size_t coreHeaderSize = 12; // OS/2 1.x and Windows 2
constexpr std::size_t infoHeaderSize = 40;

enum class Compression : std::uint32_t { none, rle8, rle4, bitFields, jpeg, png, alphaBitFields };

// Little-endian; what the file lacks reads as zero.
std::uint32_t littleEndian(Bytes bytes, std::size_t offset, std::size_t size) {
    std::uint32_t value = 0;
    for (std::size_t i = 0; i < size && offset + i < bytes.size(); ++i) {
        value |= std::to_integer<std::uint32_t>(bytes[offset + i]) << (8 * i);
    }
    return value;
}

// Where one component of a 16- or 32-bit pixel lies.
struct Field {
    std::uint32_t mask;

    [[nodiscard]] std::uint8_t of(std::uint32_t pixel) const {
        if (mask == 0) {
            return 0;
        }
        const int shift = std::countr_zero(mask);
        const std::uint64_t most = mask >> shift;
        const std::uint64_t value = (pixel & mask) >> shift;
        if (most == 255) {
            return static_cast<std::uint8_t>(value);
        }
        return static_cast<std::uint8_t>((value * 255 + most / 2) / most);
    }
};

struct Header {
    int width;
    int height;
    bool topDown;
    unsigned bitsPerPixel;
    Compression compression;
    std::array<Field, 4> fields; // red, green, blue, alpha; for 16 and 32 bits
    Bytes palette;
    std::size_t paletteEntrySize;
    Bytes pixels; // to the end of the file

    [[nodiscard]] Rgba paletteColour(std::size_t index) const {
        const std::size_t at = index * paletteEntrySize;
        if (at + 3 > palette.size()) {
            return {0, 0, 0, 255};
        }
        const auto component = [&](std::size_t i) {
            return std::to_integer<std::uint8_t>(palette[at + i]);
        };
        return {component(2), component(1), component(0), 255};
    }

    // Counted as the file counts them.
    [[nodiscard]] std::span<Rgba> row(Bitmap& bitmap, int index) const {
        return bitmap.row(topDown ? index : height - 1 - index);
    }
};

bool isKnownPixelForm(const Header& header) {
    switch (header.compression) {
    case Compression::none:
        return std::ranges::count(std::array{1U, 2U, 4U, 8U, 16U, 24U, 32U}, header.bitsPerPixel) >
               0;
    case Compression::rle8:
        return header.bitsPerPixel == 8 && !header.topDown;
    case Compression::rle4:
        return header.bitsPerPixel == 4 && !header.topDown;
    case Compression::bitFields:
    case Compression::alphaBitFields:
        return header.bitsPerPixel == 16 || header.bitsPerPixel == 32;
    default:
        return false;
    }
}

// The masks stand in the header from its second version on, before that behind it.
std::array<Field, 4> fieldsOf(Bytes file, const Header& header, std::size_t headerSize) {
    if (header.compression == Compression::none) {
        if (header.bitsPerPixel == 16) {
            return {{{0x7c00}, {0x03e0}, {0x001f}, {0}}};
        }
        return {{{0xff0000}, {0x00ff00}, {0x0000ff}, {0}}};
    }
    constexpr std::size_t masks = fileHeaderSize + infoHeaderSize;
    constexpr std::size_t sizeWithAlphaMask = 56;
    const bool hasAlpha =
        header.compression == Compression::alphaBitFields || headerSize >= sizeWithAlphaMask;
    return {{{littleEndian(file, masks, 4)},
             {littleEndian(file, masks + 4, 4)},
             {littleEndian(file, masks + 8, 4)},
             {hasAlpha ? littleEndian(file, masks + 12, 4) : 0}}};
}

// The palette runs from the header, and the masks behind it, to the pixels.
Bytes paletteOf(Bytes file, const Header& header, std::size_t headerSize, std::size_t pixelStart) {
    std::size_t start = fileHeaderSize + headerSize;
    if (headerSize == infoHeaderSize && header.compression == Compression::bitFields) {
        start += 12;
    } else if (headerSize == infoHeaderSize && header.compression == Compression::alphaBitFields) {
        start += 16;
    }
    const std::size_t end = pixelStart > start ? std::min(pixelStart, file.size()) : file.size();
    return start < end ? file.subspan(start, end - start) : Bytes();
}

std::optional<Header> readHeader(Bytes file) {
    const std::size_t pixelStart = littleEndian(file, 10, 4);
    const std::size_t headerSize = littleEndian(file, 14, 4);
    constexpr std::size_t smallestOs2Header = 16;
    if (pixelStart >= file.size() ||
        (headerSize != coreHeaderSize && headerSize < smallestOs2Header)) {
        return std::nullopt;
    }
    Header header{};
    std::int64_t height = 0;
    if (headerSize == coreHeaderSize) {
        header.width = static_cast<int>(littleEndian(file, 18, 2));
        height = littleEndian(file, 20, 2);
        header.bitsPerPixel = littleEndian(file, 24, 2);
        header.paletteEntrySize = 3;
    } else {
        header.width = static_cast<std::int32_t>(littleEndian(file, 18, 4));
        height = static_cast<std::int32_t>(littleEndian(file, 22, 4));
        header.bitsPerPixel = littleEndian(file, 28, 2);
        header.compression = static_cast<Compression>(
            headerSize > smallestOs2Header ? littleEndian(file, 30, 4) : 0);
        header.paletteEntrySize = 4;
    }
    header.topDown = height < 0;
    height = std::abs(height);
    if (height > INT32_MAX || !isKnownPixelForm(header)) {
        return std::nullopt;
    }
    header.height = static_cast<int>(height);
    header.fields = fieldsOf(file, header, headerSize);
    header.palette = paletteOf(file, header, headerSize, pixelStart);
    header.pixels = file.subspan(pixelStart);
    return header;
}

// A row of uncompressed pixels, straight alpha.
void readRow(const Header& header, Bytes stored, std::span<Rgba> row) {
    const unsigned bits = header.bitsPerPixel;
    for (std::size_t x = 0; x < row.size(); ++x) {
        if (bits <= 8) {
            const std::size_t bit = x * bits;
            const auto packed = std::to_integer<unsigned>(stored[bit / 8]);
            const unsigned index = packed >> (8 - bits - bit % 8) & ((1U << bits) - 1);
            row[x] = header.paletteColour(index);
            continue;
        }
        const std::uint32_t pixel = littleEndian(stored, x * (bits / 8), bits / 8);
        const auto& [red, green, blue, alpha] = header.fields;
        row[x] = {red.of(pixel), green.of(pixel), blue.of(pixel),
                  alpha.mask == 0 ? std::uint8_t{255} : alpha.of(pixel)};
    }
}

// Rows are padded to four bytes. False when not even the first one is there.
bool readRows(const Header& header, Bitmap& bitmap) {
    const std::size_t rowBits = static_cast<std::size_t>(header.width) * header.bitsPerPixel;
    const std::size_t needed = (rowBits + 7) / 8; // some files end without the last padding
    const std::size_t stride = (rowBits + 31) / 32 * 4;
    for (int y = 0; y < header.height; ++y) {
        const std::size_t start = stride * static_cast<std::size_t>(y);
        if (start + needed > header.pixels.size()) {
            return y > 0;
        }
        readRow(header, header.pixels.subspan(start, needed), header.row(bitmap, y));
    }
    return true;
}

// The run-length forms: pairs of a count and a value, or an escape. What is skipped keeps the
// colour it had.
class RunLengthReader {
public:
    RunLengthReader(const Header& source, Bitmap& target)
        : header(source), bitmap(target), bitsPerIndex(source.bitsPerPixel) {}

    void read() {
        while (position + 2 <= header.pixels.size() && y < header.height) {
            const unsigned count = next();
            const unsigned value = next();
            if (count > 0) {
                for (unsigned i = 0; i < count; ++i) {
                    put(indexIn(value, i));
                }
            } else if (!escape(value)) {
                return;
            }
        }
    }

private:
    static constexpr unsigned endOfLine = 0;
    static constexpr unsigned endOfPicture = 1;
    static constexpr unsigned move = 2;

    unsigned next() {
        return position < header.pixels.size()
                   ? std::to_integer<unsigned>(header.pixels[position++])
                   : 0;
    }

    // The i-th index of those packed into a byte over and over.
    [[nodiscard]] unsigned indexIn(unsigned byte, unsigned i) const {
        if (bitsPerIndex == 8) {
            return byte;
        }
        return i % 2 == 0 ? byte >> 4 : byte & 15;
    }

    void put(unsigned index) {
        if (x < header.width && y < header.height) {
            header.row(bitmap, y)[static_cast<std::size_t>(x++)] = header.paletteColour(index);
        }
    }

    // False at the end of the picture.
    bool escape(unsigned code) {
        switch (code) {
        case endOfLine:
            x = 0;
            ++y;
            return true;
        case endOfPicture:
            return false;
        case move:
            x = std::min(x + static_cast<int>(next()), header.width);
            y += static_cast<int>(next());
            return true;
        default:
            readLiterally(code);
            return true;
        }
    }

    // Indices one by one, padded to two bytes.
    void readLiterally(unsigned count) {
        const std::size_t bytes = (count * bitsPerIndex + 7) / 8;
        const std::size_t end = position + (bytes + 1) / 2 * 2;
        unsigned byte = 0;
        for (unsigned i = 0; i < count; ++i) {
            if (bitsPerIndex == 8 || i % 2 == 0) {
                byte = next();
            }
            put(indexIn(byte, i));
        }
        position = end;
    }

    const Header& header;
    Bitmap& bitmap;
    unsigned bitsPerIndex;
    std::size_t position = 0;
    int x = 0;
    int y = 0; // as the file counts rows
};

// Some writers declare an alpha channel and leave it empty; nothing would be seen of the picture.
void finishAlpha(const Header& header, Bitmap& bitmap) {
    if (header.fields[3].mask == 0) {
        return;
    }
    const bool empty =
        std::ranges::all_of(bitmap.pixels(), [](const Rgba& pixel) { return pixel.a == 0; });
    for (Rgba& pixel : bitmap.pixels()) {
        pixel = empty ? Rgba{pixel.r, pixel.g, pixel.b, 255} : premultiplied(pixel);
    }
}

} // namespace

std::shared_ptr<Bitmap> decodeBmp(Bytes file) {
    const auto header = readHeader(file);
    if (!header) {
        return nullptr;
    }
    auto bitmap = Bitmap::create(header->width, header->height);
    if (!bitmap) {
        return nullptr;
    }
    const bool runLengths =
        header->compression == Compression::rle8 || header->compression == Compression::rle4;
    std::ranges::fill(bitmap->pixels(), runLengths ? header->paletteColour(0) : Rgba{0, 0, 0, 255});
    if (runLengths) {
        RunLengthReader(*header, *bitmap).read();
    } else if (!readRows(*header, *bitmap)) {
        return nullptr;
    }
    finishAlpha(*header, *bitmap);
    return bitmap;
}

} // namespace murkwell
