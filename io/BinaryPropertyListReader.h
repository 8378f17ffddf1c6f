// Reads a binary property list, format version 00, from a file that may be hostile.
#pragma once

#include "core/SharedBytes.h"
#include "io/PropertyList.h"

namespace murkwell {

// True when the file claims to be one.
[[nodiscard]] bool isBinaryPropertyList(const SharedBytes& file);

// Walks the list from its top object and tells the visitor. False when the visitor refuses or when
// anything that it wants to know is broken: a length or an offset that leaves the file, a key that
// is no string, a string that is not ASCII or UTF-16, an integer beyond 64 bits, a date or another
// type that no visitor reads. Objects are read in place and never collected, and at most as many
// are looked at as the file has bytes, which only references shared beyond measure can exceed; so
// neither a cycle nor a bomb costs memory or time. The visitor bounds the depth. Data is told as a
// slice of the file.
[[nodiscard]] bool readBinaryPropertyList(const SharedBytes& file, PropertyListVisitor& visitor);

} // namespace murkwell
