#include "model/RedactModel.h"

#include "core/Localization.h"

#include <algorithm>
#include <utility>

namespace murkwell {

RedactModel::Snapshot RedactModel::snapshot(std::string name) const {
    return {std::move(name), redactionsByPage(), currentPage(), selectedID()};
}

// Called right before a change that is sure to happen.
void RedactModel::checkpoint(const std::string& name) {
    if (undoStack.size() >= maxUndo) {
        undoStack.erase(undoStack.begin());
    }
    undoStack.push_back(snapshot(name));
    redoStack.clear();
    isDirty = true;
}

void RedactModel::undo() {
    finishGesture();
    step(undoStack, redoStack);
}

void RedactModel::redo() {
    finishGesture();
    step(redoStack, undoStack);
}

// The opposite command takes over the name of the step.
void RedactModel::step(std::vector<Snapshot>& from, std::vector<Snapshot>& to) {
    if (from.empty()) {
        return;
    }
    const Snapshot target = std::move(from.back());
    from.pop_back();
    to.push_back(snapshot(target.name));
    apply(target);
    isDirty = true;
}

void RedactModel::apply(const Snapshot& target) {
    redactionsByPage = target.state;
    if (image(target.page)) {
        currentPage = target.page;
    }
    const bool isOnPage = target.selection && findOnCurrentPage(*target.selection) != nullptr;
    selectedID = isOnPage ? target.selection : std::nullopt;
    statusMessage = std::nullopt;
    errorMessage = std::nullopt;
}

std::string RedactModel::undoTitle() const {
    return canUndo() ? localized("Undo %@", {undoStack.back().name}) : localized("Undo");
}

std::string RedactModel::redoTitle() const {
    return canRedo() ? localized("Redo %@", {redoStack.back().name}) : localized("Redo");
}

} // namespace murkwell
