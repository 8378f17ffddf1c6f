// Everything that one call is to find on one page.
#pragma once

#include "cli/Arguments.h"
#include "detect/Detector.h"
#include "io/DocumentIO.h"

#include <cstddef>
#include <optional>
#include <vector>

namespace murkwell::cli {

// Indices of the page that counts so from 1, or of all. Empty when there is no such page.
[[nodiscard]] std::vector<std::size_t> pagesIn(const DocumentIO::Document& document,
                                               std::optional<int> page);

// What is detected, then what each query finds. The page is read once, however much is asked.
[[nodiscard]] std::vector<Redaction> searchPage(const Bitmap& page,
                                                const SearchArguments& arguments,
                                                RedactionStyle style,
                                                const Detector::Engines& engines);

} // namespace murkwell::cli
