// Everything that one call is to find in a document.
#pragma once

#include "cli/Arguments.h"
#include "model/RedactModel.h"

#include <cstddef>
#include <optional>
#include <vector>

namespace murkwell::cli {

// Indices of the page that counts so from 1, or of all. Empty when there is no such page.
[[nodiscard]] std::vector<std::size_t> pagesIn(const DocumentIO::Document& document,
                                               std::optional<int> page);

// Adds what is detected, then what each query finds. The model's searches must be over when they
// return, as those of a HeadlessModel are.
void search(RedactModel& model, const SearchArguments& arguments, RedactionStyle style);

} // namespace murkwell::cli
