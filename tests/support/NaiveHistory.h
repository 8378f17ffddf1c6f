// What the editing model must do, written down as plainly as possible: a list of whole states and a
// position in it. An oracle for random steps.
#pragma once

#include "core/Redaction.h"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace murkwell {

struct NaiveState {
    std::vector<std::vector<Redaction>> lists;
    std::int64_t page = 0;
    std::optional<Uuid> selection;
};

class NaiveHistory {
public:
    NaiveState now;
    RedactionStyle tool = RedactionStyle::solidBlack;
    bool dirty = false;
    bool gesture = false;

    void open(std::size_t pages) {
        now = {std::vector<std::vector<Redaction>>(pages), 0, {}};
        states.clear();
        names.clear();
        position = 0;
        dirty = false;
    }

    [[nodiscard]] bool hasPage() const {
        return now.page >= 0 && now.page < static_cast<std::int64_t>(now.lists.size());
    }
    std::vector<Redaction>& list() { return now.lists[static_cast<std::size_t>(now.page)]; }

    Redaction* find(const Uuid& id) {
        if (!hasPage()) {
            return nullptr;
        }
        for (Redaction& each : list()) {
            if (each.id == id) {
                return &each;
            }
        }
        return nullptr;
    }

    // Steps before the position can be undone, those from it on redone.
    void record(const std::string& name) {
        states.resize(position);
        names.resize(position);
        states.push_back(now);
        names.push_back(name);
        if (states.size() > 100) {
            states.erase(states.begin());
            names.erase(names.begin());
        }
        position = states.size();
        dirty = true;
    }

    void undo() {
        if (position == 0) {
            return;
        }
        --position;
        exchange();
    }

    void redo() {
        if (position == states.size()) {
            return;
        }
        exchange();
        ++position;
    }

    [[nodiscard]] std::string undoTitle() const {
        return position == 0 ? "Undo" : "Undo " + names[position - 1];
    }
    [[nodiscard]] std::string redoTitle() const {
        return position == names.size() ? "Redo" : "Redo " + names[position];
    }

private:
    // The state at the position and the present one change places.
    void exchange() {
        const NaiveState target = states[position];
        states[position] = now;
        now.lists = target.lists;
        if (target.page >= 0 && target.page < static_cast<std::int64_t>(now.lists.size())) {
            now.page = target.page;
        }
        now.selection.reset();
        if (target.selection && find(*target.selection) != nullptr) {
            now.selection = target.selection;
        }
        dirty = true;
    }

    std::vector<NaiveState> states;
    std::vector<std::string> names;
    std::size_t position = 0;
};

} // namespace murkwell
