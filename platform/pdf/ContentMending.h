// Content streams without what makes MuPDF give up on them.
#pragma once

#include "platform/pdf/MuPdf.h"

namespace murkwell {

struct ContentMending {
    bool isChanged = false;
    bool hasLost = false; // an inline image or an operator that others may draw
};

// Blanks out, in place, what is no content: broken tokens and objects, unknown operators, surplus
// operands, operators that lack some, inline images that cannot be loaded. MuPDF drops the rest of
// a stream at the hundredth error, at such an image and at some words, and makes other operators of
// what has the wrong operands. `resources` are what the stream uses. May longjmp out.
[[nodiscard]] ContentMending mendContent(fz_context* context, pdf_document* document,
                                         pdf_obj* resources, fz_buffer* content);

} // namespace murkwell
