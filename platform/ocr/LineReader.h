// What a strip says: the second of PP-OCR's two networks.
#pragma once

#include "platform/ocr/LineStrip.h"

#include <optional>
#include <string>
#include <vector>

namespace murkwell {

class OnnxSession;

// A character as the network saw it pass, spaces included.
struct ReadCharacter {
    char character;    // printable ASCII
    double centre;     // x in strip space
    double confidence; // 0 ... 1
};

// The characters from left to right. None when the network fails or does not fit the alphabet,
// which holds the character of each of its outputs but the first: that one is the blank between
// two characters.
[[nodiscard]] std::optional<std::vector<ReadCharacter>>
readStrip(const LineStrip& strip, OnnxSession& network, const std::string& alphabet);

} // namespace murkwell
