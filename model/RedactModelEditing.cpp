#include "model/RedactModel.h"

#include "core/Localization.h"

#include <algorithm>
#include <cmath>

namespace murkwell {
namespace {

// Pushed inside at the left and top, cropped at the right and bottom.
PageRect clamp(const PageRect& rect) {
    const double x = std::min(1.0, std::max(0.0, rect.minX()));
    const double y = std::min(1.0, std::max(0.0, rect.minY()));
    return {x, y, std::min(1 - x, std::abs(rect.width)), std::min(1 - y, std::abs(rect.height))};
}

} // namespace

void RedactModel::goToPage(std::int64_t index) {
    finishGesture();
    if (!image(index)) {
        return;
    }
    currentPage = index;
    selectedID = std::nullopt;
}

std::optional<Uuid> RedactModel::addRedaction(const PageRect& rect) {
    const PageRect clamped = clamp(rect);
    const double shorterSide = std::min(clamped.width, clamped.height);
    if (!isPage(currentPage()) || !(shorterSide >= minBox)) {
        return std::nullopt;
    }
    checkpoint(localized("Add Redaction"));
    const Uuid id = Uuid::random(services.documents.random);
    redactionsByPage.change([&](PageLists& lists) {
        lists.edit(static_cast<std::size_t>(currentPage())).push_back({id, clamped, tool(), false});
    });
    selectedID = id;
    statusMessage = std::nullopt;
    return id;
}

void RedactModel::updateRedaction(const Uuid& id, const PageRect& rect) {
    if (findOnCurrentPage(id) != nullptr) {
        changeRedaction(id, [&](Redaction& redaction) { redaction.rect = clamp(rect); });
    }
}

void RedactModel::remove(const Uuid& id) {
    if (findOnCurrentPage(id) == nullptr) {
        return;
    }
    checkpoint(localized("Delete Redaction"));
    redactionsByPage.change([&](PageLists& lists) {
        std::erase_if(lists.edit(static_cast<std::size_t>(currentPage())),
                      [&](const Redaction& redaction) { return redaction.id == id; });
    });
    if (selectedID() == id) {
        selectedID = std::nullopt;
    }
}

void RedactModel::applyToolToSelection() {
    if (!selectedID()) {
        return;
    }
    const Redaction* const selected = findOnCurrentPage(*selectedID());
    if (selected == nullptr || selected->style == tool()) {
        return;
    }
    checkpoint(localized("Change Style"));
    setStyle(tool(), *selectedID());
}

void RedactModel::clearCurrentPage() {
    if (currentRedactions().empty()) {
        return;
    }
    checkpoint(localized("Clear Page"));
    redactionsByPage.change(
        [&](PageLists& lists) { lists.edit(static_cast<std::size_t>(currentPage())).clear(); });
    selectedID = std::nullopt;
}

void RedactModel::clearDetected() {
    if (!hasDetectedRedactions()) {
        return;
    }
    checkpoint(localized("Clear Detected"));
    redactionsByPage.change([](PageLists& lists) {
        for (std::size_t i = 0; i < lists.size(); ++i) {
            if (std::ranges::any_of(lists[i], &Redaction::detected)) {
                std::erase_if(lists.edit(i), &Redaction::detected);
            }
        }
    });
    selectedID = std::nullopt;
}

const Redaction* RedactModel::findOnCurrentPage(const Uuid& id) const {
    const auto& redactions = currentRedactions();
    const auto found = std::ranges::find(redactions, id, &Redaction::id);
    return found == redactions.end() ? nullptr : &*found;
}

void RedactModel::changeRedaction(const Uuid& id, const std::function<void(Redaction&)>& change) {
    redactionsByPage.change([&](PageLists& lists) {
        auto& redactions = lists.edit(static_cast<std::size_t>(currentPage()));
        change(*std::ranges::find(redactions, id, &Redaction::id));
    });
}

void RedactModel::setStyle(RedactionStyle style, const Uuid& id) {
    changeRedaction(id, [&](Redaction& redaction) { redaction.style = style; });
}

} // namespace murkwell
