// A stretch of a line of text.
#pragma once

#include <cstddef>

namespace murkwell {

// Offsets in UTF-16 code units; the end is not part of it.
struct TextRange {
    std::size_t begin;
    std::size_t end;

    bool operator==(const TextRange&) const = default;
};

} // namespace murkwell
