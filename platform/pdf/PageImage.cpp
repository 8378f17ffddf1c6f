#include "platform/pdf/PageImage.h"

#include "platform/pdf/PageSamples.h"
#include "platform/pdf/RowFilter.h"
#include "platform/pdf/RunLength.h"

#include <algorithm>
#include <libdeflate.h>
#include <memory>
#include <new>
#include <span>

namespace murkwell {
namespace {

constexpr int compressionLevel = 6;

using Packing = PageImage::Packing;
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

struct PackedRows {
    Packing packing;
    std::vector<std::uint8_t> bytes;
};

std::vector<std::uint8_t> filtered(Samples rows, const PageSamples& page) {
    return filterRows(rows, page.rowSize, static_cast<std::size_t>(page.components));
}

// Bands of rows spread over the page, about a tenth of it, on which all ways are tried.
constexpr std::size_t bandHeight = 24;
constexpr std::size_t bandDistance = 240;

bool filteringPays(const PageSamples& page, const Deflater& deflater) {
    if (page.bitsPerComponent != 8) {
        return false;
    }
    const Samples all(page.bytes);
    const std::size_t height = all.size() / page.rowSize;
    std::size_t plain = 0;
    std::size_t runs = 0;
    std::size_t filters = 0;
    for (std::size_t y = 0; y < height; y += bandDistance) {
        const Samples band =
            all.subspan(y * page.rowSize, std::min(bandHeight, height - y) * page.rowSize);
        plain += deflater.zlib(band).size();
        runs += deflater.zlib(packRuns(band)).size();
        filters += deflater.zlib(filtered(band, page)).size();
    }
    return filters < std::min(plain, runs);
}

// Packed runs reach further back when they are deflated, which a band is too short to show: they
// are taken wherever they are much shorter than the rows.
PackedRows pack(PageSamples page, const Deflater& deflater) {
    if (filteringPays(page, deflater)) {
        return {Packing::rowFilters, filtered(page.bytes, page)};
    }
    std::vector<std::uint8_t> runs = packRuns(page.bytes);
    if (runs.size() < page.bytes.size() / 2) {
        return {Packing::runLengths, std::move(runs)};
    }
    return {Packing::none, std::move(page.bytes)};
}

} // namespace

std::optional<PageImage> encodePageImage(const Bitmap& page) {
    try {
        PageSamples samples = reduceToSamples(page);
        PageImage image{page.width(),
                        page.height(),
                        samples.components,
                        samples.bitsPerComponent,
                        std::move(samples.palette),
                        Packing::none,
                        {}};
        const Deflater deflater;
        const PackedRows rows = pack(std::move(samples), deflater);
        image.packing = rows.packing;
        image.data = deflater.zlib(rows.bytes);
        return image;
    } catch (const std::bad_alloc&) {
        return std::nullopt;
    }
}

} // namespace murkwell
