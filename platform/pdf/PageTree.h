// Makes a PDF's page tree safe to use.
#pragma once

#include "platform/pdf/MuPdf.h"

namespace murkwell {

// Replaces the document's page tree, in memory only, by one that lists just the pages that are
// really there, in order, each with what it inherited written into it. A tree may claim a billion
// pages, contain itself, or hang a single page where the root should be. Returns how many pages
// there are; 0 also when the tree cannot be read.
[[nodiscard]] int flattenPageTree(fz_context* context, pdf_document* document);

} // namespace murkwell
