// Soft masks in a form that MuPDF draws right, and the transfer functions that it leaves out.
#pragma once

#include "platform/pdf/MuPdf.h"

namespace murkwell {

// Rewrites a graphics state's soft mask, in memory: one without a group goes (the mask before it
// stays in force), and a transfer function, which MuPDF leaves out, becomes part of the group's
// content. False when the function is not a straight line and is only matched at its ends, or
// cannot be read. May longjmp out.
[[nodiscard]] bool mendSoftMask(fz_context* context, pdf_obj* graphicsState);

// Whether the graphics state sets a transfer function for all that is painted, which MuPDF leaves
// out. May longjmp out.
[[nodiscard]] bool hasTransfer(fz_context* context, pdf_obj* graphicsState);

} // namespace murkwell
