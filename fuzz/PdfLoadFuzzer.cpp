// Any bytes as a PDF: pages or none, within bounds of time and memory.
#include "platform/pdf/PdfRendererMuPdf.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    murkwell::PdfRendererMuPdf renderer;
    (void)renderer.render(std::as_bytes(std::span(data, size)), std::nullopt);
    return 0;
}
