// A text that is wiped from memory as soon as nobody holds it any more.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace murkwell {

// Stays where it was first put: it is never moved or copied within memory unless by copy().
class Secret {
public:
    // In bytes. No password of a PDF is longer than 127.
    static constexpr std::size_t longest = 1024;

    Secret();

    [[nodiscard]] Secret copy() const;

    // False, and nothing added, when it would become too long.
    [[nodiscard]] bool append(std::string_view text);
    [[nodiscard]] bool isEmpty() const { return text->value().empty(); }

    // Never absent; in the form in which loading takes it.
    [[nodiscard]] const std::optional<std::string>& asPassword() const { return *text; }

private:
    struct Wipe {
        void operator()(std::optional<std::string>* text) const;
    };
    std::unique_ptr<std::optional<std::string>, Wipe> text;
};

} // namespace murkwell
