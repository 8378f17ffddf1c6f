#include "platform/image/TiffAlpha.h"

#include <cstdint>

namespace murkwell {
namespace {

// Numbers in the file's own byte order; what the file lacks reads as zero.
class Reader {
public:
    explicit Reader(std::span<const std::byte> bytes)
        : file(bytes), isBigEndian(!bytes.empty() && bytes.front() == std::byte{'M'}) {}

    [[nodiscard]] std::uint64_t number(std::uint64_t offset, unsigned size) const {
        if (offset > file.size() || file.size() - offset < size) {
            return 0;
        }
        std::uint64_t value = 0;
        for (unsigned i = 0; i < size; ++i) {
            const auto byte = std::to_integer<std::uint64_t>(file[offset + i]);
            value |= byte << 8 * (isBigEndian ? size - 1 - i : i);
        }
        return value;
    }

private:
    std::span<const std::byte> file;
    bool isBigEndian;
};

} // namespace

bool tiffAlphaIsPremultiplied(std::span<const std::byte> file) {
    constexpr std::uint64_t extraSamples = 338;
    constexpr std::uint64_t associatedAlpha = 1;
    constexpr std::uint64_t bigTiff = 43;
    const Reader reader(file);
    const bool isBig = reader.number(2, 2) == bigTiff;
    const unsigned wordSize = isBig ? 8 : 4;
    const std::uint64_t directory = reader.number(isBig ? 8 : 4, wordSize);
    const unsigned countSize = isBig ? 8 : 2;
    const unsigned entrySize = 4 + 2 * wordSize;
    // Entries are at most 65535 in both kinds, for tags are different.
    const std::uint64_t count = reader.number(directory, countSize) & 0xffff;
    for (std::uint64_t i = 0; i < count; ++i) {
        const std::uint64_t entry = directory + countSize + i * entrySize;
        if (reader.number(entry, 2) == extraSamples) {
            const std::uint64_t samples = reader.number(entry + 4, wordSize);
            const std::uint64_t value = entry + 4 + wordSize;
            const bool isInline = samples * 2 <= wordSize;
            return reader.number(isInline ? value : reader.number(value, wordSize), 2) ==
                   associatedAlpha;
        }
    }
    return false;
}

} // namespace murkwell
