// The row filters of PNG (RFC 2083, section 6), which PDF calls predictor 15.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace murkwell {

// Puts the number of a filter before each row and filters it, choosing per row the one with the
// smallest sum of absolute differences. Rows follow each other without gaps.
[[nodiscard]] std::vector<std::uint8_t> filterRows(std::span<const std::uint8_t> rows,
                                                   std::size_t rowSize, std::size_t bytesPerPixel);

} // namespace murkwell
