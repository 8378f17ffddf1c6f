// File names between Qt, the desktop's addresses and the C++ library. A name is bytes; Qt's own
// conversions would lose those that are not UTF-8.
#pragma once

#include <QString>

#include <filesystem>
#include <optional>

namespace murkwell {

// For names to be shown or handed to a dialog.
[[nodiscard]] QString toQtPath(const std::filesystem::path& file);
[[nodiscard]] std::filesystem::path toPath(const QString& file);

// The file: address of an absolute path, byte for byte.
[[nodiscard]] QString fileAddress(const std::filesystem::path& file);

// None when the address is not one of a file on this machine.
[[nodiscard]] std::optional<std::filesystem::path> fileOfAddress(const QString& address);

} // namespace murkwell
