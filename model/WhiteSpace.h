// White space around a text that the user typed.
#pragma once

#include <string_view>

namespace murkwell {

// Without the white space and line breaks, of any script, at both ends (UTF-8).
[[nodiscard]] std::string_view withoutOuterWhiteSpace(std::string_view text);

} // namespace murkwell
