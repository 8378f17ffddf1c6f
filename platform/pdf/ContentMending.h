// Content streams without what makes MuPDF give up on them.
#pragma once

#include "platform/pdf/MuPdf.h"

namespace murkwell {

struct ContentMending {
    bool isChanged = false;
    bool hasLostImage = false; // an inline image that could not be loaded
};

// Blanks out, in place, what is no content: broken tokens and objects, unknown operators, inline
// images that cannot be loaded. MuPDF drops the rest of a stream at the hundredth error, or at such
// an image; other viewers go on. `resources` are what the stream uses. May
// longjmp out.
[[nodiscard]] ContentMending mendContent(fz_context* context, pdf_document* document,
                                         pdf_obj* resources, fz_buffer* content);

} // namespace murkwell
