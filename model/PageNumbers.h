// Lists of pages in the texts for the user.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace murkwell {

// "3, 5–7", of ascending numbers.
[[nodiscard]] std::string listed(const std::vector<std::size_t>& numbers);

} // namespace murkwell
