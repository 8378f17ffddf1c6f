#include "cli/PageSearch.h"

#include <numeric>

namespace murkwell::cli {

std::vector<std::size_t> pagesIn(const DocumentIO::Document& document, std::optional<int> page) {
    const std::size_t count = document.pages.size();
    if (page) {
        const auto index = static_cast<std::size_t>(*page - 1);
        return index < count ? std::vector{index} : std::vector<std::size_t>();
    }
    std::vector<std::size_t> all(count);
    std::iota(all.begin(), all.end(), std::size_t{0});
    return all;
}

void search(RedactModel& model, const SearchArguments& arguments, RedactionStyle style) {
    model.tool = style;
    model.applyToAllPages = !arguments.page;
    if (arguments.page) {
        model.goToPage(*arguments.page - 1);
    }
    model.detectKinds = arguments.kinds;
    model.autoDetect(); // nothing, when no kind is wanted
    for (const std::string& query : arguments.queries) {
        model.redactMatches(query, arguments.fuzzy);
    }
}

} // namespace murkwell::cli
