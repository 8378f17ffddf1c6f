// Draws a page as other viewers show it, or says that it could not.
#pragma once

#include "platform/pdf/MuPdf.h"

namespace murkwell {

class OptionalContent;

enum class PageDrawing {
    Whole,
    Incomplete, // something is missing that another viewer may show
    Failed      // memory ran out, or the cookie was aborted: nobody could tell what is missing
};

// Fills the pixmap with white, the page's content and its annotations. `transform` leads from the
// page's points, as MuPDF turns them, to the pixmap. A page at which MuPDF gives up is mended in
// memory and drawn again; the cookie then counts an error, and the document is another one.
[[nodiscard]] PageDrawing drawPage(fz_context* context, pdf_page* page,
                                   const OptionalContent& optionalContent, fz_pixmap* pixmap,
                                   fz_matrix transform, fz_cookie& cookie);

} // namespace murkwell
