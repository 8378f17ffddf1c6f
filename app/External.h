// What the program shows outside of its window, with the programs of the desktop.
#pragma once

#include <filesystem>
#include <span>
#include <string>
#include <string_view>

namespace murkwell {

// Opens the address in the user's browser, or whatever else the desktop has for its kind. A
// malformed one does nothing.
void openExternal(std::string_view address);

// FOLDER/LANGUAGE/index.html of the first of these languages that has one, as an address; the
// product's page when none does.
[[nodiscard]] std::string helpAddress(const std::filesystem::path& folder,
                                      std::span<const std::string> languages);

// The help that is installed beside the running program, in the user's language.
void openHelp();

// The program's page in the software centre, or the product's page on a desktop without one. The
// program itself never asks anybody for updates.
void checkForUpdates();

} // namespace murkwell
