// Port: reads a PDF and renders its pages to bitmaps.
//
// Called on one thread at a time; an adapter may use more threads inside the call.
#pragma once

#include "core/PackedBitmap.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <variant>
#include <vector>

namespace murkwell {

struct RenderedPage {
    PackedBitmapRef image;  // null: the file itself makes this page impossible
    bool isComplete = true; // false: something of it may be missing, or shown that should not be
};

// Why a file gives no document.
enum class LoadFailure : std::uint8_t {
    unreadable, // or too much for this machine
    needsPassword,
};

class PdfRenderer {
public:
    virtual ~PdfRenderer() = default;

    using Result = std::variant<std::vector<RenderedPage>, LoadFailure>;

    // One entry for each page of the document, in order. Only the file decides what is null: a page
    // without a size, or one that rounds to less than a pixel. Where time or memory do not suffice
    // for a page, there is no document, so that nobody takes what is left for all there is.
    //
    // A page is its whole media box at 2 pixels per point, each side rounded to the nearest pixel,
    // standing upright by its own rotation, with form fields and annotations drawn, on opaque
    // white. The password (UTF-8) may be the owner's or the user's; a file that needs none opens
    // with any.
    [[nodiscard]] virtual Result render(std::span<const std::byte> pdf,
                                        const std::optional<std::string>& password) = 0;
};

} // namespace murkwell
