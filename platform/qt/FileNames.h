// File names between Qt and the C++ library, for what is shown or handed to a dialog. A name is
// bytes; those that are not UTF-8 do not come back from Qt.
#pragma once

#include <QString>

#include <filesystem>

namespace murkwell {

[[nodiscard]] QString toQtPath(const std::filesystem::path& file);
[[nodiscard]] std::filesystem::path toPath(const QString& file);

} // namespace murkwell
