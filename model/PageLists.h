// The redactions of every page, cheap to copy.
#pragma once

#include "core/Redaction.h"

#include <cstddef>
#include <memory>
#include <span>
#include <vector>

namespace murkwell {

// A plain value. Copies share everything; when one of them changes a page, it gets that page's list
// for itself, and a list of references to the others. Main thread only.
class PageLists {
public:
    using Page = std::vector<Redaction>;

    PageLists() = default;
    explicit PageLists(std::size_t pageCount);
    explicit PageLists(std::vector<Page> pages);

    [[nodiscard]] std::size_t size() const { return pages ? pages->size() : 0; }

    // The index must be below size(), here and in edit().
    [[nodiscard]] const Page& operator[](std::size_t index) const { return *(*pages)[index]; }

    // For changing the page in this value alone. The reference holds until the next copy.
    [[nodiscard]] Page& edit(std::size_t index);

    // Deep copies, for those who take plain lists.
    [[nodiscard]] std::vector<Page> toVector() const;

private:
    // No list is null; empty ones are one and the same.
    using References = std::vector<std::shared_ptr<Page>>;

    std::shared_ptr<References> pages; // null when there is no page
};

} // namespace murkwell
