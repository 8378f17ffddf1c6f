// murkwell-cli: the same engine without a window, for batches and scripts. Only wiring.

#include "cli/Arguments.h"
#include "cli/Commands.h"
#include "core/RandomSource.h"
#include "platform/image/ImageCodecVips.h"
#include "platform/pdf/PdfRendererMuPdf.h"
#include "platform/pdf/PdfWriterMuPdf.h"

#include <exception>
#include <iostream>
#include <type_traits>

namespace {

using namespace murkwell;

int run(int argc, char** argv) {
    const auto command = cli::parseArguments(argc, argv);
    PdfRendererMuPdf pdfRenderer;
    PdfWriterMuPdf pdfWriter;
    ImageCodecVips imageCodec;
    SystemRandomSource random;
    const DocumentIO::Engines engines{pdfRenderer, pdfWriter, imageCodec, random};

    return std::visit(
        [&](const auto& chosen) {
            using Chosen = std::decay_t<decltype(chosen)>;
            if constexpr (std::is_same_v<Chosen, cli::Ending>) {
                (chosen.exitCode == 0 ? std::cout : std::cerr) << chosen.text << '\n';
                return chosen.exitCode;
            } else if constexpr (std::is_same_v<Chosen, cli::RedactArguments>) {
                return cli::redact(chosen, engines) ? 0 : 1;
            } else {
                return cli::info(chosen, engines) ? 0 : 1;
            }
        },
        command);
}

} // namespace

int main(int argc, char** argv) {
    try {
        return run(argc, argv);
    } catch (const std::exception& error) {
        // Nothing below throws on purpose; memory can still run out anywhere.
        std::cerr << "murkwell-cli: " << error.what() << '\n';
        return 1;
    }
}
