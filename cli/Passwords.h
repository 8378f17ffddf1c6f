// Who knows the passwords of the sources: the file that --password-file names, or whoever sits at
// the terminal.
#pragma once

#include "core/Secret.h"
#include "model/Panels.h"

#include <filesystem>
#include <optional>
#include <string>

namespace murkwell::cli {

class Passwords {
public:
    // Takes the first line of the file for the password of every source. False when there is none.
    [[nodiscard]] bool readFile(const std::filesystem::path& file);

    // None when nobody knows it; refusal() then says why, in the user's language.
    [[nodiscard]] std::optional<Secret> answer(const PasswordPanel& panel);
    [[nodiscard]] const std::string& refusal() const { return refusal_; }

private:
    std::optional<Secret> fromFile;
    int wrongAnswers = 0; // at the terminal, for one source
    std::string refusal_;
};

} // namespace murkwell::cli
