#include "platform/pdf/PageImage.h"

#include "platform/pdf/PageSamples.h"
#include "platform/pdf/RowFilter.h"

#include <algorithm>
#include <libdeflate.h>
#include <memory>
#include <new>
#include <span>

namespace murkwell {
namespace {

constexpr int compressionLevel = 6;

using Samples = std::span<const std::uint8_t>;

class Deflater {
public:
    Deflater() : compressor(libdeflate_alloc_compressor(compressionLevel)) {
        if (!compressor) {
            throw std::bad_alloc();
        }
    }

    [[nodiscard]] std::vector<std::byte> zlib(Samples samples) const {
        std::vector<std::byte> out(
            libdeflate_zlib_compress_bound(compressor.get(), samples.size()));
        out.resize(libdeflate_zlib_compress(compressor.get(), samples.data(), samples.size(),
                                            out.data(), out.size()));
        out.shrink_to_fit();
        return out;
    }

private:
    struct Free {
        void operator()(libdeflate_compressor* c) const { libdeflate_free_compressor(c); }
    };
    std::unique_ptr<libdeflate_compressor, Free> compressor;
};

// Bands of rows spread over the page, about a tenth of it, on which both ways are tried.
constexpr std::size_t bandHeight = 24;
constexpr std::size_t bandDistance = 240;

bool filteringPays(const PageSamples& samples, const Deflater& deflater) {
    const Samples all(samples.bytes);
    const std::size_t height = all.size() / samples.rowSize;
    std::size_t plain = 0;
    std::size_t filtered = 0;
    for (std::size_t y = 0; y < height; y += bandDistance) {
        const Samples band =
            all.subspan(y * samples.rowSize, std::min(bandHeight, height - y) * samples.rowSize);
        plain += deflater.zlib(band).size();
        filtered += deflater
                        .zlib(filterRows(band, samples.rowSize,
                                         static_cast<std::size_t>(samples.components)))
                        .size();
    }
    return filtered < plain;
}

} // namespace

std::optional<PageImage> encodePageImage(const Bitmap& page) {
    try {
        PageSamples samples = reduceToSamples(page);
        const Deflater deflater;
        const bool predicted = samples.bitsPerComponent == 8 && filteringPays(samples, deflater);
        if (predicted) {
            samples.bytes = filterRows(samples.bytes, samples.rowSize,
                                       static_cast<std::size_t>(samples.components));
        }
        return PageImage{page.width(),
                         page.height(),
                         samples.components,
                         samples.bitsPerComponent,
                         std::move(samples.palette),
                         predicted,
                         deflater.zlib(samples.bytes)};
    } catch (const std::bad_alloc&) {
        return std::nullopt;
    }
}

} // namespace murkwell
