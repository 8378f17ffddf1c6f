// Port: reads a PDF and renders its pages to bitmaps.
//
// Called on one thread at a time; an adapter may use more threads inside the call.
#pragma once

#include "core/Bitmap.h"

#include <cstddef>
#include <optional>
#include <span>
#include <vector>

namespace murkwell {

class PdfRenderer {
public:
    virtual ~PdfRenderer() = default;

    // One entry for each page of the document, in order; null where a page is broken, rounds to
    // less than a pixel, takes far too long or does not fit into memory. None when the bytes are no
    // PDF or need a password.
    //
    // A page is its whole media box at 2 pixels per point, each side rounded to the nearest pixel,
    // standing upright by its own rotation, with form fields and annotations drawn, on opaque
    // white.
    [[nodiscard]] virtual std::optional<std::vector<BitmapRef>>
    render(std::span<const std::byte> pdf) = 0;
};

} // namespace murkwell
