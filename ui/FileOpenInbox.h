// Where files wait that the desktop hands over: from the command line, a double click in the file
// manager, or a second start of the program. The window takes them when it is first shown and
// whenever more are announced. Main thread only.
#pragma once

#include "model/Published.h"

#include <filesystem>
#include <functional>
#include <utility>
#include <vector>

namespace murkwell {

class FileOpenInbox {
public:
    // Replaces what was still waiting, and announces it.
    void receive(std::vector<std::filesystem::path> files) {
        pending_ = std::move(files);
        didReceive.notify();
    }

    // Takes everything that waits.
    [[nodiscard]] std::vector<std::filesystem::path> drain() { return std::exchange(pending_, {}); }

    [[nodiscard]] const std::vector<std::filesystem::path>& pending() const { return pending_; }

    // Calls back after every receive(), for as long as the returned object lives.
    [[nodiscard]] Observers::Observation observe(Observers::Callback callback) {
        return didReceive.add(std::move(callback));
    }

private:
    std::vector<std::filesystem::path> pending_;
    Observers didReceive;
};

} // namespace murkwell
