// Draws the annotations of a page.
#pragma once

#include "platform/pdf/MuPdf.h"

namespace murkwell {

class OptionalContent;
class PageProcessor;

// In the order of the page's list and whatever their kind: links, pop-ups and fields without a name
// may cover something, too. One without a usable appearance draws nothing. `transform` leads from
// the page's default coordinates, upside up, to the device. May longjmp out.
void drawAnnotations(fz_context* context, pdf_page* page, const OptionalContent& optionalContent,
                     PageProcessor& processor, fz_device* device, fz_matrix transform,
                     fz_default_colorspaces* colorspaces, fz_cookie& cookie);

} // namespace murkwell
