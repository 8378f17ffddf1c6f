// How a box is filled when it is burned into the page.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string_view>

namespace murkwell {

enum class RedactionStyle : std::uint8_t {
    solidBlack,
    solidWhite,
    noise, // 5-pixel blocks of random grey
};

// In the order in which the style picker lists them.
inline constexpr std::array allRedactionStyles{
    RedactionStyle::solidBlack,
    RedactionStyle::solidWhite,
    RedactionStyle::noise,
};

// The name that saved documents and the command line use.
[[nodiscard]] std::string_view rawValue(RedactionStyle style);

// None unless the text is exactly a raw value, letter case included.
[[nodiscard]] std::optional<RedactionStyle> redactionStyle(std::string_view rawValue);

// The English display name, which is also its key in the translation catalogues.
[[nodiscard]] std::string_view label(RedactionStyle style);

// The name of its icon.
[[nodiscard]] std::string_view symbolName(RedactionStyle style);

} // namespace murkwell
