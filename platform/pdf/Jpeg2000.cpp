#include "platform/pdf/Jpeg2000.h"

#include "platform/pdf/MuPdf.h"

#include <algorithm>
#include <array>
#include <cstdint>

namespace murkwell {
namespace {

using Bytes = std::span<const std::byte>;

// A codestream starts with the markers SOC and SIZ.
constexpr std::array startOfCodestream{std::byte{0xff}, std::byte{0x4f}, std::byte{0xff},
                                       std::byte{0x51}};
// From there to the fields of SIZ (ISO/IEC 15444-1, A.5.1).
constexpr std::size_t xSize = 8;
constexpr std::size_t ySize = 12;
constexpr std::size_t xOffset = 16;
constexpr std::size_t yOffset = 20;
constexpr std::size_t tileWidth = 24;
constexpr std::size_t tileHeight = 28;
constexpr std::size_t componentCount = 40;
constexpr std::size_t headerSize = 42;

// What OpenJPEG keeps, measured with 2.5: a sample and what the transformation adds to it, and the
// parameters of each tile and of each of its components.
constexpr double bytesPerSample = 5;
constexpr double bytesPerTile = 6000;
constexpr double bytesPerTileComponent = 1200;

double bigEndian(Bytes bytes, std::size_t position, std::size_t length) {
    std::uint32_t value = 0;
    for (const std::byte byte : bytes.subspan(position, length)) {
        value = value << 8 | std::to_integer<std::uint32_t>(byte);
    }
    return value;
}

double tilesAlong(double size, double tile) {
    return tile > 0 ? size / tile + 1 : 1;
}

// Far beyond any limit is as good as any number beyond.
std::size_t inBytes(double amount) {
    constexpr double most = 1e18;
    return static_cast<std::size_t>(std::min(amount, most));
}

Jpeg2000Cost costOfCodestream(Bytes stream) {
    const double width = std::max(0.0, bigEndian(stream, xSize, 4) - bigEndian(stream, xOffset, 4));
    const double height =
        std::max(0.0, bigEndian(stream, ySize, 4) - bigEndian(stream, yOffset, 4));
    const double components = bigEndian(stream, componentCount, 2);
    const double tiles = tilesAlong(bigEndian(stream, xSize, 4), bigEndian(stream, tileWidth, 4)) *
                         tilesAlong(bigEndian(stream, ySize, 4), bigEndian(stream, tileHeight, 4));
    const double samples = width * height * components;
    return {inBytes(samples), inBytes(bytesPerSample * samples +
                                      tiles * (bytesPerTile + components * bytesPerTileComponent))};
}

} // namespace

// A file may hold what merely looks like a codestream: the dearest one counts.
std::optional<Jpeg2000Cost> costOfJpeg2000(Bytes file) {
    std::optional<Jpeg2000Cost> dearest;
    for (auto rest = file;;) {
        const auto found = std::search(rest.begin(), rest.end(), startOfCodestream.begin(),
                                       startOfCodestream.end());
        const auto stream = rest.subspan(static_cast<std::size_t>(found - rest.begin()));
        if (stream.size() < headerSize) {
            return dearest;
        }
        const Jpeg2000Cost cost = costOfCodestream(stream);
        if (!dearest || cost.decoding > dearest->decoding) {
            dearest = cost;
        }
        rest = stream.subspan(startOfCodestream.size());
    }
}

} // namespace murkwell

// The names are those that the linker wants.
// NOLINTBEGIN(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp)
extern "C" {

fz_pixmap* __real_fz_load_jpx(fz_context* context, const unsigned char* data, std::size_t size,
                              fz_colorspace* colorspace);
fz_pixmap* __wrap_fz_load_jpx(fz_context* context, const unsigned char* data, std::size_t size,
                              fz_colorspace* colorspace);

// Calls and is called by MuPDF, so it makes no object that has a destructor.
fz_pixmap* __wrap_fz_load_jpx(fz_context* context, const unsigned char* data, std::size_t size,
                              fz_colorspace* colorspace) {
    auto& owner = murkwell::MuPdfContext::of(context);
    const auto cost = murkwell::costOfJpeg2000({reinterpret_cast<const std::byte*>(data), size});
    const std::size_t decoding = cost ? cost->decoding : 0;
    if (cost && (!owner.admits(cost->picture) || !owner.take(decoding))) {
        fz_throw(context, FZ_ERROR_MEMORY, "a JPEG 2000 picture is too large");
    }
    fz_pixmap* volatile pixmap = nullptr;
    fz_try(context) {
        pixmap = __real_fz_load_jpx(context, data, size, colorspace);
    }
    fz_always(context) {
        owner.giveBack(decoding);
    }
    fz_catch(context) {
        fz_rethrow(context);
    }
    return pixmap;
}

} // extern "C"
// NOLINTEND(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp)
