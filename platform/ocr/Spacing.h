// Where the spaces of a line are. The reader drops them in blur and sees them before an "@", so its
// opinion, the width of the gap and the pitch of the characters decide together.
#pragma once

#include <vector>

namespace murkwell {

// What lies between two neighbouring visible characters of a strip.
struct CharacterGap {
    char before; // 0 for what is not ASCII, which counts as a letter
    char after;
    double blank;   // widest run of blank columns between their centres, in strip space
    double pitch;   // from centre to centre, in strip space
    bool readSpace; // the reader saw a space here
};

// Whether there is a space, for each gap of one line.
[[nodiscard]] std::vector<bool> decideSpaces(const std::vector<CharacterGap>& gaps);

} // namespace murkwell
