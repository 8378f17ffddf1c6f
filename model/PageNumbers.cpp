#include "model/PageNumbers.h"

namespace murkwell {

std::string listed(const std::vector<std::size_t>& numbers) {
    std::string list;
    for (std::size_t i = 0; i < numbers.size();) {
        std::size_t last = i;
        while (last + 1 < numbers.size() && numbers[last + 1] == numbers[last] + 1) {
            ++last;
        }
        list += (list.empty() ? "" : ", ") + std::to_string(numbers[i]);
        if (last > i) {
            list += "–" + std::to_string(numbers[last]);
        }
        i = last + 1;
    }
    return list;
}

} // namespace murkwell
