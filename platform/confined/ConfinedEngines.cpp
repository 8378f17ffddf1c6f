#include "platform/confined/ConfinedEngines.h"

#include "core/Localization.h"
#include "platform/confinement/Walls.h"

#include <array>
#include <utility>

namespace murkwell {

std::optional<std::string> ConfinedEngines::notice() const {
    // By the names that they have in every language.
    constexpr std::array<std::pair<int, const char*>, 3> names{
        {{Walls::limits, "setrlimit"}, {Walls::files, "Landlock"}, {Walls::calls, "seccomp"}}};
    std::string missing;
    for (const auto& [wall, name] : names) {
        if ((workers.missingWalls() & wall) != 0) {
            missing += (missing.empty() ? "" : ", ") + std::string(name);
        }
    }
    return missing.empty()
               ? std::nullopt
               : std::optional(localized(
                     "Files are opened with less protection than usual: this system lacks %@.",
                     {missing}));
}

} // namespace murkwell
