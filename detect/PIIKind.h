// The kinds of sensitive content that the program finds by itself.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <set>
#include <string_view>

namespace murkwell {

enum class PIIKind : std::uint8_t { email, ssn, phone, creditCard, ipAddress, faces };

using PIIKinds = std::set<PIIKind>;

// In the order in which the window lists them.
inline constexpr std::array allPIIKinds{
    PIIKind::email,      PIIKind::ssn,       PIIKind::phone,
    PIIKind::creditCard, PIIKind::ipAddress, PIIKind::faces,
};

[[nodiscard]] std::string_view rawValue(PIIKind kind);

// None unless the text is exactly a raw value, letter case included.
[[nodiscard]] std::optional<PIIKind> piiKind(std::string_view rawValue);

// The English display name, which is also its key in the translation catalogues.
[[nodiscard]] std::string_view label(PIIKind kind);

// The name of its icon.
[[nodiscard]] std::string_view symbolName(PIIKind kind);

// An ICU regular expression, to be matched without regard to letter case over one line of text.
// None for faces, which are not found in text.
[[nodiscard]] std::optional<std::string_view> pattern(PIIKind kind);

} // namespace murkwell
