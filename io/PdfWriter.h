// Port: makes a PDF in which every page is one image.
//
// Called on one thread at a time; an adapter may use more threads inside the call.
#pragma once

#include "core/Bitmap.h"

#include <cstddef>
#include <functional>
#include <optional>
#include <vector>

namespace murkwell {

class PdfWriter {
public:
    virtual ~PdfWriter() = default;

    // Makes the page of that index, opaque, when it is about to be encoded; null when that fails.
    // Called once for each, on any thread, several at a time.
    using PageSource = std::function<BitmapRef(std::size_t)>;

    // The bytes of a PDF with one page per bitmap, in order: media box in points = size in pixels,
    // a lossless image over the whole page, no other content, no metadata. A bitmap is let go as
    // soon as it is encoded. None when a page cannot be had or memory runs out.
    [[nodiscard]] virtual std::optional<std::vector<std::byte>>
    encode(std::size_t pageCount, const PageSource& pageAt) = 0;
};

} // namespace murkwell
