#include "platform/pdf/PdfRendererMuPdf.h"

#include "platform/pdf/PageDrawerMuPdf.h"
#include "platform/pdf/PageSchedule.h"

namespace murkwell {

PdfRenderer::Result PdfRendererMuPdf::render(std::span<const std::byte> pdf,
                                             const std::optional<std::string>& password) {
    MuPdfMemory memory;
    return drawAllPages(
        [&](const PageLimits& limits, FileReading reading) {
            return openDrawerMuPdf(pdf, password, limits, reading, memory);
        },
        threadCount);
}

} // namespace murkwell
