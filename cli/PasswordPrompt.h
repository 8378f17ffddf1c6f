// Asks for a password on the terminal that the program was started from.
#pragma once

#include "core/Secret.h"

#include <optional>
#include <string_view>

namespace murkwell::cli {

// Nothing of what is typed shows. The terminal is as it was before when this returns or a signal
// ends the program. None without a terminal, at the end of input, or when nothing was typed.
[[nodiscard]] std::optional<Secret> promptForPassword(std::string_view prompt);

} // namespace murkwell::cli
