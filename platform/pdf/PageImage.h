// A page bitmap as the image stream of a PDF: lossless and small.
#pragma once

#include "core/Bitmap.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace murkwell {

// What the dictionary of the stream has to say, and its deflated (zlib) bytes.
struct PageImage {
    using Rgb = std::array<std::uint8_t, 3>;

    // What was done to the rows before they were deflated.
    enum class Packing {
        none,
        rowFilters, // of PNG (predictor 15)
        runLengths, // a second filter of the stream
    };

    int width;
    int height;
    int components;           // 1, or 3 for red, green, blue
    int bitsPerComponent;     // 1 or 8
    std::vector<Rgb> palette; // empty: the component is a grey, 0 black; else an index into this
    Packing packing;
    std::vector<std::byte> data;
};

// Chooses the cheapest form that holds every pixel exactly, from the pixels alone: two colours in
// one bit, grey, a palette, else RGB. The bitmap is opaque: alpha is not written. None when memory
// runs out.
[[nodiscard]] std::optional<PageImage> encodePageImage(const Bitmap& page);

} // namespace murkwell
