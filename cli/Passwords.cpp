#include "cli/Passwords.h"

#include "cli/Output.h"
#include "cli/PasswordPrompt.h"
#include "core/Localization.h"

#include <array>
#include <cstring>
#include <fcntl.h>
#include <string_view>
#include <unistd.h>

namespace murkwell::cli {
namespace {

// At the terminal, before a source is given up.
constexpr int mostWrongAnswers = 3;

// None when the line is empty, or too long for a password.
std::optional<Secret> firstLineOf(int file) {
    std::array<char, Secret::longest + 2> buffer{}; // with a line end
    std::size_t size = 0;
    ssize_t count = 0;
    while ((count = ::read(file, buffer.data() + size, buffer.size() - size)) > 0) {
        size += static_cast<std::size_t>(count);
    }
    std::string_view line(buffer.data(), size);
    line = line.substr(0, line.find_first_of("\r\n"));
    Secret secret;
    const bool isUsable = count == 0 && !line.empty() && secret.append(line);
    ::explicit_bzero(buffer.data(), buffer.size());
    return isUsable ? std::optional(std::move(secret)) : std::nullopt;
}

} // namespace

bool Passwords::readFile(const std::filesystem::path& file) {
    const int descriptor = ::open(file.c_str(), O_RDONLY | O_CLOEXEC);
    if (descriptor < 0) {
        return false;
    }
    fromFile = firstLineOf(descriptor);
    ::close(descriptor);
    return fromFile.has_value();
}

std::optional<Secret> Passwords::answer(const PasswordPanel& panel) {
    wrongAnswers = panel.wasWrong ? wrongAnswers + 1 : 0;
    if (wrongAnswers == (fromFile ? 1 : mostWrongAnswers)) {
        refusal_ = localized("The password of “%@” is wrong.", {panel.fileName});
        return std::nullopt;
    }
    if (fromFile) {
        return fromFile->copy();
    }
    std::string question = localized("Password of “%@”: ", {panel.fileName});
    if (panel.wasWrong) {
        question = localized("That password is wrong. Try again.") + "\n" + question;
    }
    clearProgress();
    auto typed = promptForPassword(question);
    if (!typed) {
        refusal_ =
            localized("“%@” needs a password. Give it with --password-file.", {panel.fileName});
    }
    return typed;
}

} // namespace murkwell::cli
