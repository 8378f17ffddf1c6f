// The program's texts and fonts as Qt's types.
#pragma once

#include "core/Localization.h"

#include <QFont>
#include <QString>

#include <initializer_list>
#include <string_view>

namespace murkwell {

[[nodiscard]] inline QString toQString(std::string_view utf8) {
    return QString::fromUtf8(utf8.data(), static_cast<qsizetype>(utf8.size()));
}

// In the user's language.
[[nodiscard]] inline QString text(std::string_view english) {
    return toQString(localized(english));
}

// For Qt's controls and menus, which take a lone & for the mark of a key.
[[nodiscard]] inline QString escaped(QString label) {
    return label.replace(u'&', QStringLiteral("&&"));
}

// Variants of the desktop's font.
[[nodiscard]] QFont medium(QFont font);
[[nodiscard]] QFont headline(QFont font);
[[nodiscard]] QFont caption(QFont font);
[[nodiscard]] QFont title(QFont font);

} // namespace murkwell
