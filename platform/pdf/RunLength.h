// The run-length packing of PDF (RunLengthDecode), made for being deflated afterwards.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

namespace murkwell {

// Deflate finds a repetition at most 32 KiB back, which is one line of text of a page. With the
// paper between the letters packed away, that reaches several lines back.
[[nodiscard]] std::vector<std::uint8_t> packRuns(std::span<const std::uint8_t> bytes);

} // namespace murkwell
