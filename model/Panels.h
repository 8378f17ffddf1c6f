// Port: the modal panels that ask the user for a file or a decision.
//
// Called on the main thread; each call returns when the panel is closed. Until then the main
// thread's event loop goes on, so the caller's state may have changed when it returns.
#pragma once

#include "core/Secret.h"
#include "io/ContentType.h"
#include "io/FileAccess.h"

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace murkwell {

// Asks for one existing file; folders cannot be chosen.
struct OpenPanel {
    std::vector<ContentType> allowedTypes; // in the order in which they are offered
};

// Asks where to write a file, and whether one that is there already is to be replaced.
struct SavePanel {
    ContentType allowedType;
    std::string proposedName;
    std::filesystem::path folder; // where the panel starts
};

// An informational notice. All texts are already in the user's language.
struct Alert {
    std::string message;
    std::string informativeText;
    std::vector<std::string> buttons; // the first is the default, the last one cancels
};

// Asks for the password of a file that does not open without.
struct PasswordPanel {
    std::string fileName;
    bool wasWrong = false; // the password that was given before
};

class Panels {
public:
    virtual ~Panels() = default;

    // Empty when the user cancels.
    [[nodiscard]] virtual std::vector<std::filesystem::path> run(const OpenPanel& panel) = 0;

    // None when the user cancels. May be replaced what the user was asked about, and nothing else.
    [[nodiscard]] virtual std::optional<Destination> run(const SavePanel& panel) = 0;

    // The position of the button that was pressed.
    [[nodiscard]] virtual std::size_t run(const Alert& alert) = 0;

    // In UTF-8. None when the user cancels.
    [[nodiscard]] virtual std::optional<Secret> run(const PasswordPanel& panel) = 0;
};

} // namespace murkwell
