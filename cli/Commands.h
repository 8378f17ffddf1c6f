// What each command does. A file that fails is reported in one line on standard error and does not
// stop the others.
#pragma once

#include "cli/Arguments.h"
#include "detect/Detector.h"
#include "io/DocumentIO.h"

namespace murkwell::cli {

// True when every file could be done.
[[nodiscard]] bool redact(const RedactArguments& arguments, const DocumentIO::Engines& engines,
                          const Detector::Engines& recognition);
[[nodiscard]] bool scan(const ScanArguments& arguments, const DocumentIO::Engines& engines,
                        const Detector::Engines& recognition);
[[nodiscard]] bool text(const TextArguments& arguments, const DocumentIO::Engines& engines,
                        TextRecognizer& recognizer);
[[nodiscard]] bool info(const InfoArguments& arguments, const DocumentIO::Engines& engines);

} // namespace murkwell::cli
