// Base64 (RFC 4648, section 4) that arrives in pieces.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace murkwell {

// White space may stand anywhere; anything else that is not of the alphabet is an error.
class Base64Decoder {
public:
    // The bytes of the pieces so far are appended to a given list. Throws std::bad_alloc.
    explicit Base64Decoder(std::vector<std::byte>* collected) : bytes(collected) {}

    // False at the first character that does not belong there.
    [[nodiscard]] bool add(std::string_view text);

    // False when the text stopped inside a group of four.
    [[nodiscard]] bool finish() const { return digits == 0; }

private:
    void emit();

    std::vector<std::byte>* bytes; // null when nobody wants them
    std::uint32_t group = 0;
    unsigned digits = 0;  // of the group, padding included
    unsigned padding = 0; // nothing may follow a padded group
};

} // namespace murkwell
