// Text between UTF-8, which the program uses, and UTF-16, which property lists use.
#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace murkwell {

// Big-endian, without a byte order mark; an odd last byte is left out. None when a surrogate stands
// alone.
[[nodiscard]] std::optional<std::string> utf8FromUtf16(std::span<const std::byte> bigEndian);

// Bytes that are no UTF-8, as a file's name may hold, become U+FFFD one by one.
[[nodiscard]] std::u16string utf16FromUtf8(std::string_view text);

[[nodiscard]] bool isUtf8(std::string_view text);

// Control characters, of which a terminal may take some for commands (Unicode: Cc).
[[nodiscard]] bool hasControlCharacters(std::string_view text);

// The text as it can be shown on a line: U+FFFD stands for bytes that are no UTF-8, for control
// characters, and for what breaks the line or turns the direction of what follows.
[[nodiscard]] std::string printable(std::string_view text);

[[nodiscard]] bool isAscii(std::string_view text);

} // namespace murkwell
