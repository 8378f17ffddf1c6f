#include "model/RedactModel.h"

#include "io/FileName.h"

#include <algorithm>

namespace murkwell {

RedactModel::RedactModel(const Services& bundle) : services(bundle) {}

bool RedactModel::isPage(std::int64_t index) const {
    return index >= 0 && static_cast<std::uint64_t>(index) < redactionsByPage().size();
}

const PageLists::Page& RedactModel::currentRedactions() const {
    static const PageLists::Page none;
    return isPage(currentPage()) ? redactionsByPage()[static_cast<std::size_t>(currentPage())]
                                 : none;
}

PackedBitmapRef RedactModel::currentImage() const {
    return image(currentPage());
}

std::optional<PixelSize> RedactModel::currentPixelSize() const {
    const PackedBitmapRef page = currentImage();
    return page ? std::optional(page->size()) : std::nullopt;
}

PackedBitmapRef RedactModel::image(std::int64_t page) const {
    if (!document() || page < 0 || static_cast<std::uint64_t>(page) >= document()->pages.size()) {
        return nullptr;
    }
    return document()->pages[static_cast<std::size_t>(page)].image;
}

std::size_t RedactModel::redactionCount(std::int64_t page) const {
    return isPage(page) ? redactionsByPage()[static_cast<std::size_t>(page)].size() : 0;
}

std::size_t RedactModel::totalRedactionCount() const {
    std::size_t count = 0;
    for (std::size_t i = 0; i < redactionsByPage().size(); ++i) {
        count += redactionsByPage()[i].size();
    }
    return count;
}

bool RedactModel::hasDetectedRedactions() const {
    for (std::size_t i = 0; i < redactionsByPage().size(); ++i) {
        if (std::ranges::any_of(redactionsByPage()[i], &Redaction::detected)) {
            return true;
        }
    }
    return false;
}

std::optional<std::string> RedactModel::fileName() const {
    if (!document()) {
        return std::nullopt;
    }
    return shownName(document()->url);
}

std::optional<std::string> RedactModel::documentTitle() const {
    return sessionURL() ? shownName(*sessionURL()) : fileName();
}

} // namespace murkwell
