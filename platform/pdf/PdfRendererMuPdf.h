// PdfRenderer on MuPDF. Pages are rendered in parallel, each thread with a context and a document
// of its own over the same bytes.
#pragma once

#include "core/ParallelFor.h"
#include "io/PdfRenderer.h"

namespace murkwell {

class PdfRendererMuPdf final : public PdfRenderer {
public:
    explicit PdfRendererMuPdf(std::size_t threads = availableProcessors()) : threadCount(threads) {}

    [[nodiscard]] Result render(std::span<const std::byte> pdf,
                                const std::optional<std::string>& password) override;

private:
    std::size_t threadCount;
};

} // namespace murkwell
