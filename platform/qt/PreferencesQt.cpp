#include "platform/qt/PreferencesQt.h"

#include <QStandardPaths>

namespace murkwell {
namespace {

QString location() {
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
           QStringLiteral("/murkwell/preferences.ini");
}

QString nameOf(std::string_view key) {
    return QString::fromUtf8(key.data(), static_cast<qsizetype>(key.size()));
}

} // namespace

PreferencesQt::PreferencesQt() : settings(location(), QSettings::IniFormat) {}

// Not toBool(), which takes any text for true.
bool PreferencesQt::boolean(std::string_view key) const {
    return settings.value(nameOf(key)).toString() == QLatin1String("true");
}

void PreferencesQt::setBoolean(std::string_view key, bool value) {
    settings.setValue(nameOf(key), value);
    // Now, as the program may be left without its destructors.
    settings.sync();
}

} // namespace murkwell
