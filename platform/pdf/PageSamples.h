// The first half of making a page image: the fewest samples that hold every pixel exactly.
#pragma once

#include "core/Bitmap.h"
#include "platform/pdf/PageImage.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace murkwell {

struct PageSamples {
    int components;       // as in PageImage
    int bitsPerComponent; // as in PageImage
    std::vector<PageImage::Rgb> palette;
    std::size_t rowSize; // in bytes; rows start on a byte
    std::vector<std::uint8_t> bytes;
};

[[nodiscard]] PageSamples reduceToSamples(const Bitmap& page);

} // namespace murkwell
