// Port: makes a PDF in which every page is one image.
//
// Called on one thread at a time; an adapter may use more threads inside the call.
#pragma once

#include "core/Bitmap.h"

#include <cstddef>
#include <optional>
#include <vector>

namespace murkwell {

class PdfWriter {
public:
    virtual ~PdfWriter() = default;

    // The bytes of a PDF with one page per bitmap, in order: media box in points = size in pixels,
    // a lossless image over the whole page, no other content, no metadata. The bitmaps are opaque
    // and not null; each is let go as soon as it is encoded. None when memory runs out.
    [[nodiscard]] virtual std::optional<std::vector<std::byte>>
    encode(std::vector<BitmapRef> pages) = 0;
};

} // namespace murkwell
