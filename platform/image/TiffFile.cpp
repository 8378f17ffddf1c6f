#include "platform/image/TiffFile.h"

#include <algorithm>
#include <cstdio>

namespace murkwell {
namespace {

using Bytes = std::span<const std::byte>;

TiffSource& sourceOf(thandle_t handle) {
    return *static_cast<TiffSource*>(handle);
}

tmsize_t readSource(thandle_t handle, void* target, tmsize_t wanted) {
    auto& [file, at] = sourceOf(handle);
    const Bytes rest = file.subspan(std::min(at, file.size()));
    const Bytes taken = rest.first(std::min(rest.size(), static_cast<std::size_t>(wanted)));
    std::ranges::copy(taken, static_cast<std::byte*>(target));
    at += taken.size();
    return static_cast<tmsize_t>(taken.size());
}

tmsize_t refuseToWrite(thandle_t /*source*/, void* /*data*/, tmsize_t /*size*/) {
    return 0;
}

toff_t seekSource(thandle_t handle, toff_t offset, int from) {
    auto& [file, at] = sourceOf(handle);
    const std::size_t base = from == SEEK_SET ? 0 : from == SEEK_CUR ? at : file.size();
    at = base + offset;
    return at;
}

int closeSource(thandle_t /*source*/) {
    return 0;
}

toff_t sizeOfSource(thandle_t handle) {
    return sourceOf(handle).file.size();
}

int keepQuiet(TIFF* /*tiff*/, void* /*data*/, const char* /*module*/, const char* /*format*/,
              va_list /*arguments*/) {
    return 1;
}

template <typename Value>
Value field(const Tiff& tiff, std::uint32_t tag) {
    Value value{};
    TIFFGetFieldDefaulted(tiff.get(), tag, &value);
    return value;
}

} // namespace

Tiff openTiff(TiffSource& source, std::int64_t allowedBytes) {
    const std::unique_ptr<TIFFOpenOptions, decltype(&TIFFOpenOptionsFree)> options(
        TIFFOpenOptionsAlloc(), &TIFFOpenOptionsFree);
    TIFFOpenOptionsSetMaxSingleMemAlloc(options.get(), allowedBytes);
    TIFFOpenOptionsSetErrorHandlerExtR(options.get(), keepQuiet, nullptr);
    TIFFOpenOptionsSetWarningHandlerExtR(options.get(), keepQuiet, nullptr);
    // m: through the functions above; the file's bytes are not to be changed in place.
    return {TIFFClientOpenExt("", "rm", &source, readSource, refuseToWrite, seekSource, closeSource,
                              sizeOfSource, nullptr, nullptr, options.get()),
            &TIFFClose};
}

TiffLayout tiffLayout(const Tiff& tiff) {
    TiffLayout layout{};
    layout.width = field<std::uint32_t>(tiff, TIFFTAG_IMAGEWIDTH);
    layout.height = field<std::uint32_t>(tiff, TIFFTAG_IMAGELENGTH);
    layout.bits = field<std::uint16_t>(tiff, TIFFTAG_BITSPERSAMPLE);
    layout.samples = field<std::uint16_t>(tiff, TIFFTAG_SAMPLESPERPIXEL);
    layout.photometric = field<std::uint16_t>(tiff, TIFFTAG_PHOTOMETRIC);
    layout.compression = field<std::uint16_t>(tiff, TIFFTAG_COMPRESSION);
    layout.format = field<std::uint16_t>(tiff, TIFFTAG_SAMPLEFORMAT);
    layout.tiled = TIFFIsTiled(tiff.get()) != 0;
    layout.separate = field<std::uint16_t>(tiff, TIFFTAG_PLANARCONFIG) == PLANARCONFIG_SEPARATE;
    layout.tileWidth = layout.tiled ? field<std::uint32_t>(tiff, TIFFTAG_TILEWIDTH) : layout.width;
    layout.tileHeight =
        layout.tiled ? field<std::uint32_t>(tiff, TIFFTAG_TILELENGTH)
                     : std::min(field<std::uint32_t>(tiff, TIFFTAG_ROWSPERSTRIP), layout.height);
    return layout;
}

} // namespace murkwell
