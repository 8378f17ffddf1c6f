// Which page is drawn when and within which limits, and what becomes of one that a limit stopped.
#pragma once

#include "platform/pdf/PageDrawer.h"

namespace murkwell {

// All pages of the document, drawn on so many threads; their number changes nothing but the time it
// takes. A page that a limit stopped is tried again alone, with all there is; where that does not
// suffice either, there is no document.
[[nodiscard]] PdfRenderer::Result drawAllPages(const OpenDrawer& open, std::size_t threads);

} // namespace murkwell
