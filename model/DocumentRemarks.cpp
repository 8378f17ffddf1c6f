#include "model/DocumentRemarks.h"

#include "core/Localization.h"
#include "model/PageNumbers.h"

namespace murkwell {
namespace {

std::vector<std::size_t> incompletePages(const DocumentIO::Document& document) {
    std::vector<std::size_t> numbers;
    for (std::size_t i = 0; i < document.pages.size(); ++i) {
        if (!document.pages[i].isComplete) {
            numbers.push_back(i + 1);
        }
    }
    return numbers;
}

} // namespace

std::vector<std::string> remarksOn(const DocumentIO::Document& document) {
    std::vector<std::string> remarks;
    if (!document.isPDF && document.omittedPages > 0) {
        remarks.push_back(
            localized("Only the first of %d pictures is shown.", {document.omittedPages + 1}));
    } else if (document.omittedPages == 1) {
        remarks.push_back(localized("1 page could not be shown."));
    } else if (document.omittedPages > 1) {
        remarks.push_back(localized("%d pages could not be shown.", {document.omittedPages}));
    }
    const auto incomplete = incompletePages(document);
    if (incomplete.size() == 1) {
        remarks.push_back(localized("Page %d may be incomplete.", {incomplete.front()}));
    } else if (incomplete.size() > 1) {
        remarks.push_back(localized("Pages %@ may be incomplete.", {listed(incomplete)}));
    }
    return remarks;
}

} // namespace murkwell
