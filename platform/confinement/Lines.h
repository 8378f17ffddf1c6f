// Recognised lines and boxes as bytes, for the way from a worker. The reading side believes
// nothing: whoever wrote them may have been taken over.
#pragma once

#include "detect/Recognition.h"

#include <cstddef>
#include <optional>
#include <span>
#include <vector>

namespace murkwell {

// Throw std::bad_alloc.
[[nodiscard]] std::vector<std::byte> toBytes(std::span<const RecognizedLine> lines);
[[nodiscard]] std::vector<std::byte> toBytes(std::span<const RecognizerRect> boxes);

// None unless every byte is accounted for, every box lies near the page and every text is UTF-8.
[[nodiscard]] std::optional<std::vector<RecognizedLine>>
linesFrom(std::span<const std::byte> bytes);
[[nodiscard]] std::optional<std::vector<RecognizerRect>>
boxesFrom(std::span<const std::byte> bytes);

} // namespace murkwell
