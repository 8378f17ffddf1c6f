// Reads a property list in its XML form, from a file that may be hostile.
#pragma once

#include "io/PropertyList.h"

#include <span>

namespace murkwell {

// Tells the visitor what the list holds. False when the visitor refuses, when the file is not well
// formed XML, or when it is no property list: another root than one plist with one value, a key
// without a value, an unknown element, a broken number, bad base64, text between elements. Skipped
// values are checked as well, but never collected. Refused too, since no honest list has them:
// entities of its own, more than 64 levels, a tag or comment of more than 1 MiB.
[[nodiscard]] bool readXmlPropertyList(std::span<const std::byte> file,
                                       PropertyListVisitor& visitor);

} // namespace murkwell
