// Content streams without what makes MuPDF give up on them.
#pragma once

#include "platform/pdf/MuPdf.h"

namespace murkwell {

// Blanks out, in place, what is no content: broken tokens and objects, unknown operators, inline
// images that cannot be loaded. MuPDF drops the rest of a stream at the hundredth error, or at such
// an image; other viewers go on. `resources` are what the stream uses. True when there was
// something to blank out. May longjmp out.
[[nodiscard]] bool mendContent(fz_context* context, pdf_document* document, pdf_obj* resources,
                               fz_buffer* content);

} // namespace murkwell
