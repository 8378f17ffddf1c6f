// PdfRenderer on MuPDF. Pages are rendered in parallel, each thread with a context and a document
// of its own over the same bytes.
#pragma once

#include "io/PdfRenderer.h"

namespace murkwell {

class PdfRendererMuPdf final : public PdfRenderer {
public:
    [[nodiscard]] Result render(std::span<const std::byte> pdf,
                                const std::optional<std::string>& password) override;
};

} // namespace murkwell
