// What has to be said of a document that did not come whole.
#pragma once

#include "io/DocumentIO.h"

#include <string>
#include <vector>

namespace murkwell {

// Sentences in the user's language, such as "Pages 3, 5–7 may be incomplete."; pages count as those
// of the document do, from 1. Empty when all is well.
[[nodiscard]] std::vector<std::string> remarksOn(const DocumentIO::Document& document);

} // namespace murkwell
