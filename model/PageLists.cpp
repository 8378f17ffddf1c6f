#include "model/PageLists.h"

namespace murkwell {

PageLists::PageLists(std::size_t pageCount)
    : pages(std::make_shared<References>(pageCount, std::make_shared<Page>())) {}

PageLists::PageLists(std::vector<Page> lists) : pages(std::make_shared<References>()) {
    pages->reserve(lists.size());
    for (Page& list : lists) {
        pages->push_back(std::make_shared<Page>(std::move(list)));
    }
}

PageLists::Page& PageLists::edit(std::size_t index) {
    if (pages.use_count() > 1) {
        pages = std::make_shared<References>(*pages);
    }
    std::shared_ptr<Page>& page = (*pages)[index];
    if (page.use_count() > 1) {
        page = std::make_shared<Page>(*page);
    }
    return *page;
}

std::vector<PageLists::Page> PageLists::toVector() const {
    std::vector<Page> lists;
    lists.reserve(size());
    for (std::size_t i = 0; i < size(); ++i) {
        lists.push_back((*this)[i]);
    }
    return lists;
}

} // namespace murkwell
