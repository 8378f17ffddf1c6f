// Files are opened, saved, exported and closed one after the other, and never in the middle of a
// gesture: while a panel is up its event loop goes on, and whatever arrives there waits.
#include "model/RedactModel.h"

#include <utility>

namespace murkwell {

void RedactModel::open(const std::vector<std::filesystem::path>& files) {
    turns.take([this, files] { openFiles(files); });
}

void RedactModel::openPanel() {
    turns.take([this] { askAndOpen(); });
}

void RedactModel::openSession(const std::filesystem::path& url) {
    turns.take([this, url] { openSaved(url); });
}

void RedactModel::closeDocument() {
    turns.take([this] { replaceWork({}); });
}

void RedactModel::saveSession() {
    turns.take([this] {
        if (sessionURL()) {
            writeSession(*sessionURL());
        } else {
            askAndSave();
        }
    });
}

void RedactModel::saveSessionAs() {
    turns.take([this] { askAndSave(); });
}

void RedactModel::exportDocument() {
    turns.take([this] { askAndExport(); });
}

void RedactModel::beginGesture(std::function<void()> finish) {
    if (!std::exchange(finishOfGesture, std::move(finish))) {
        turns.begin();
    }
}

void RedactModel::endGesture() {
    if (std::exchange(finishOfGesture, nullptr)) {
        turns.end();
    }
}

void RedactModel::beginInteractiveChange(const std::string& name) {
    if (!std::exchange(interactiveActive, true)) {
        turns.begin();
        checkpoint(name);
    }
}

void RedactModel::endInteractiveChange() {
    if (std::exchange(interactiveActive, false)) {
        turns.end();
    }
}

void RedactModel::finishGesture() {
    if (const auto finish = finishOfGesture) {
        finish();
    }
    endInteractiveChange();
}

} // namespace murkwell
