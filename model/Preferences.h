// Port: the few settings that survive the program, one set per user account.
#pragma once

#include <string_view>

namespace murkwell {

// Called on the main thread. A store that cannot be read or written behaves as if it were empty.
class Preferences {
public:
    virtual ~Preferences() = default;

    // False when nothing is stored under the key.
    [[nodiscard]] virtual bool boolean(std::string_view key) const = 0;

    virtual void setBoolean(std::string_view key, bool value) = 0;
};

} // namespace murkwell
