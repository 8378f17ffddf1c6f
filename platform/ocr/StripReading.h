// What a reader makes of one strip.
#pragma once

#include <string>
#include <vector>

namespace murkwell {

// A character as the reader saw it pass, spaces included.
struct ReadCharacter {
    std::string text;  // UTF-8, seldom more than one code point
    double centre;     // x in strip space
    double confidence; // 0 ... 1
    // What it nearly was, of what addresses and numbers are made of; empty when nothing of that.
    std::string nearly = {};
};

struct StripReading {
    std::vector<ReadCharacter> characters; // from left to right
    double confidence = 0;                 // 0 ... 1, of the whole; 0 when nothing was read
};

} // namespace murkwell
