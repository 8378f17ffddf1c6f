// TIFF files of forms that libvips does not write, put together byte by byte.
#pragma once

#include "tests/platform/image/Pictures.h"

#include <map>

namespace murkwell {

// Values by tag; the places and sizes of the chunks are filled in.
using TiffTags = std::map<unsigned, std::vector<unsigned>>;
constexpr unsigned tiffProfile = 34675;

Bytes tiffOf(TiffTags tags, const std::vector<Bytes>& chunks, bool tiled);

struct TiffForm {
    unsigned photometric; // as in the tag
    unsigned samples;     // of a pixel
    unsigned bits;        // of a sample
    bool separate;        // a plane for each sample
    bool tiled;           // tiles of 16 x 16, else strips of 8 rows
};

// Uncompressed. sample(x, y, i) gives values of so many bits.
template <class Sample>
Bytes tiffOf(const TiffForm& form, unsigned width, unsigned height, Sample sample,
             const std::vector<unsigned>& profile = {}) {
    const unsigned tileWidth = form.tiled ? 16 : width;
    const unsigned tileHeight = form.tiled ? 16 : 8;
    const unsigned inPlane = form.separate ? 1 : form.samples;
    std::vector<Bytes> chunks;
    for (unsigned first = 0; first < form.samples; first += inPlane) {
        for (unsigned top = 0; top < height; top += tileHeight) {
            for (unsigned left = 0; left < width; left += tileWidth) {
                Bytes& chunk = chunks.emplace_back();
                for (unsigned y = top; y < top + tileHeight; ++y) {
                    std::size_t bit = 0;
                    const std::size_t start = chunk.size();
                    chunk.resize(start + (std::size_t{tileWidth} * inPlane * form.bits + 7) / 8);
                    for (unsigned x = left; x < left + tileWidth; ++x) {
                        for (unsigned i = first; i < first + inPlane; ++i) {
                            const unsigned value = sample(x, y, i);
                            for (unsigned b = form.bits; b-- > 0; ++bit) {
                                chunk[start + bit / 8] |=
                                    static_cast<std::byte>((value >> b & 1) << (7 - bit % 8));
                            }
                        }
                    }
                }
            }
        }
    }
    TiffTags tags{{256, {width}},
                  {257, {height}},
                  {258, std::vector(form.samples, form.bits)},
                  {259, {1}},
                  {262, {form.photometric}},
                  {277, {form.samples}},
                  {284, {form.separate ? 2U : 1U}}};
    if (form.tiled) {
        tags[322] = tags[323] = {16};
    } else {
        tags[278] = {8};
    }
    if (!profile.empty()) {
        tags[tiffProfile] = profile;
    }
    return tiffOf(tags, chunks, form.tiled);
}

// The whole of a JPEG file in one strip, as old software put it.
Bytes oldStyleJpegTiff(const Bytes& jpeg, unsigned width, unsigned height, unsigned subsampling);

} // namespace murkwell
