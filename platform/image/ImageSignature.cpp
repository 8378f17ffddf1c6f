#include "platform/image/ImageSignature.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <string_view>

namespace murkwell {
namespace {

using namespace std::string_view_literals;

bool holdsAt(std::span<const std::byte> file, std::size_t offset, std::string_view text) {
    return file.size() >= offset + text.size() &&
           std::ranges::equal(file.subspan(offset, text.size()), text, {},
                              [](std::byte b) { return static_cast<char>(b); });
}

struct Magic {
    std::string_view bytes; // at the very start of the file
    ImageSignature signature;
};

const auto& magics() {
    static const std::array all{
        Magic{"\x89PNG\r\n\x1a\n"sv, {ImageFormat::png, ContentType::png}},
        Magic{"\xff\xd8\xff"sv, {ImageFormat::jpeg, ContentType::jpeg}},
        Magic{"II*\0"sv, {ImageFormat::tiff, ContentType::tiff}},
        Magic{"MM\0*"sv, {ImageFormat::tiff, ContentType::tiff}},
        Magic{"II+\0"sv, {ImageFormat::tiff, ContentType::tiff}}, // BigTIFF
        Magic{"MM\0+"sv, {ImageFormat::tiff, ContentType::tiff}},
        Magic{"GIF87a"sv, {ImageFormat::gif, ContentType::gif}},
        Magic{"GIF89a"sv, {ImageFormat::gif, ContentType::gif}},
        Magic{"BM"sv, {ImageFormat::bmp, ContentType::bmp}},
    };
    return all;
}

struct Brand {
    std::string_view code; // four characters
    ContentType type;
};

// ISO/IEC 23008-12 annex B (HEVC) and the AVIF brands. The general brands come last: they
// say nothing about the coding.
const auto& brands() {
    static const std::array all{
        Brand{"heic", ContentType::heic}, Brand{"heix", ContentType::heic},
        Brand{"heim", ContentType::heic}, Brand{"heis", ContentType::heic},
        Brand{"hevc", ContentType::heic}, Brand{"hevx", ContentType::heic},
        Brand{"hevm", ContentType::heic}, Brand{"hevs", ContentType::heic},
        Brand{"avif", ContentType::avif}, Brand{"avis", ContentType::avif},
        Brand{"mif1", ContentType::heif}, Brand{"msf1", ContentType::heif},
    };
    return all;
}

std::uint32_t bigEndian32(std::span<const std::byte> bytes) {
    std::uint32_t value = 0;
    for (const std::byte b : bytes.first(4)) {
        value = value << 8 | std::to_integer<std::uint32_t>(b);
    }
    return value;
}

// The type that the major brand names; when that is a stranger's, the first compatible brand we
// know.
std::optional<ContentType> heifType(std::span<const std::byte> file) {
    constexpr std::size_t majorBrand = 8;
    constexpr std::size_t compatibleBrands = 16;
    if (!holdsAt(file, 4, "ftyp")) {
        return std::nullopt;
    }
    const std::size_t end = std::min<std::size_t>(bigEndian32(file), file.size());
    for (std::size_t at = majorBrand; at + 4 <= end;
         at = at == majorBrand ? compatibleBrands : at + 4) {
        for (const Brand& brand : brands()) {
            if (holdsAt(file, at, brand.code)) {
                return brand.type;
            }
        }
    }
    return std::nullopt;
}

} // namespace

std::optional<ImageSignature> imageSignature(std::span<const std::byte> file) {
    for (const Magic& magic : magics()) {
        if (holdsAt(file, 0, magic.bytes)) {
            return magic.signature;
        }
    }
    if (const auto type = heifType(file)) {
        return ImageSignature{ImageFormat::heif, *type};
    }
    return std::nullopt;
}

} // namespace murkwell
