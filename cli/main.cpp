// murkwell-cli: the same engine without a window, for batches and scripts. Only wiring.

#include "cli/Arguments.h"
#include "cli/Commands.h"
#include "cli/Output.h"
#include "core/Localization.h"
#include "core/ProcessHardening.h"
#include "core/RandomSource.h"
#include "io/TemporaryFile.h"
#include "platform/confined/ConfinedEngines.h"
#include "platform/pdf/PdfWriterLibdeflate.h"

#include <exception>
#include <iostream>
#include <type_traits>

namespace {

using namespace murkwell;

int printEnding(const cli::Ending& ending) {
    if (ending.exitCode != 0) {
        cli::printFailure(ending.text);
        return ending.exitCode;
    }
    std::cout << ending.text << std::endl;
    return cli::resultsAreRead() ? 0 : 1;
}

std::optional<std::filesystem::path> passwordFileOf(const cli::Command& command) {
    return std::visit(
        [](const auto& chosen) -> std::optional<std::filesystem::path> {
            if constexpr (std::is_same_v<std::decay_t<decltype(chosen)>, cli::Ending>) {
                return std::nullopt;
            } else {
                return chosen.passwordFile;
            }
        },
        command);
}

int run(int argc, char** argv) {
    useCatalogue(findCatalogue(catalogueFolder(), userLanguages()));
    const auto command = cli::parseArguments(argc, argv);
    cli::Passwords passwords;
    if (const auto file = passwordFileOf(command); file && !passwords.readFile(*file)) {
        cli::printFailure(cli::noPasswordIn(*file));
        return 1;
    }
    ConfinedEngines confined;
    PdfWriterLibdeflate pdfWriter;
    SystemRandomSource random;
    const cli::Engines engines{{confined.pdfRenderer, pdfWriter, confined.imageCodec, random},
                               {confined.textRecognizer, confined.faceDetector, random},
                               passwords};

    const int exitCode = std::visit(
        [&](const auto& chosen) {
            using Chosen = std::decay_t<decltype(chosen)>;
            if constexpr (std::is_same_v<Chosen, cli::Ending>) {
                return printEnding(chosen);
            } else if constexpr (std::is_same_v<Chosen, cli::RedactArguments>) {
                return cli::redact(chosen, engines) ? 0 : 1;
            } else if constexpr (std::is_same_v<Chosen, cli::ScanArguments>) {
                return cli::scan(chosen, engines) ? 0 : 1;
            } else if constexpr (std::is_same_v<Chosen, cli::TextArguments>) {
                return cli::text(chosen, engines) ? 0 : 1;
            } else {
                return cli::info(chosen, engines) ? 0 : 1;
            }
        },
        command);
    if (const auto notice = confined.notice()) {
        cli::printFailure(*notice);
    }
    return exitCode;
}

} // namespace

int main(int argc, char** argv) {
    hardenProcess();
    removeTemporaryFileOnSignals();
    try {
        return run(argc, argv);
    } catch (const std::exception& error) {
        // Nothing below throws on purpose; memory can still run out anywhere.
        cli::printFailure(std::string("murkwell-cli: ") + error.what());
        return 1;
    }
}
