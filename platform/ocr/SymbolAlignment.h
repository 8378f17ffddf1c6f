// Where the symbols of a reading really stand. Tesseract's columns are those of its own steps and
// of blots of ink that it takes for symbols: often right, at times off by half a symbol.
#pragma once

#include "platform/ocr/InkProfile.h"

#include <string>
#include <vector>

namespace murkwell {

// Columns in strip space, as the reader gives them.
struct ReadSymbol {
    std::string text; // UTF-8
    double left;
    double right;
    bool beginsWord;
};

// The middle of each symbol's ink: cuts between neighbours are chosen so that they run through
// little ink, near to what the reader says, and leave each symbol about the width it usually has.
[[nodiscard]] std::vector<double> centresOf(const std::vector<ReadSymbol>& symbols,
                                            const InkProfile& ink);

} // namespace murkwell
