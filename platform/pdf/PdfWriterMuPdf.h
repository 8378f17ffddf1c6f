// PdfWriter on MuPDF, with page images compressed by us, in parallel.
#pragma once

#include "io/PdfWriter.h"

namespace murkwell {

class PdfWriterMuPdf final : public PdfWriter {
public:
    [[nodiscard]] std::optional<std::vector<std::byte>>
    encode(std::vector<BitmapRef> pages) override;
};

} // namespace murkwell
