// What each command does. A file that fails is reported in one line on standard error and does not
// stop the others. A source is an image, a PDF or a saved document.
#pragma once

#include "cli/Arguments.h"
#include "cli/HeadlessModel.h"

namespace murkwell::cli {

// True when every file could be done.
[[nodiscard]] bool redact(const RedactArguments& arguments, const Engines& engines);
[[nodiscard]] bool scan(const ScanArguments& arguments, const Engines& engines);
[[nodiscard]] bool text(const TextArguments& arguments, const Engines& engines);
[[nodiscard]] bool info(const InfoArguments& arguments, const Engines& engines);

} // namespace murkwell::cli
