#include "platform/qt/DesktopSettings.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QGuiApplication>
#include <QPalette>

#include <algorithm>
#include <array>

namespace murkwell {
namespace {

// Of all groups, their settings: a{sa{sv}}.
using SettingGroups = QMap<QString, QVariantMap>;

constexpr QLatin1String service{"org.freedesktop.portal.Desktop"};
constexpr QLatin1String object{"/org/freedesktop/portal/desktop"};
constexpr QLatin1String interface { "org.freedesktop.portal.Settings" };
constexpr QLatin1String appearance{"org.freedesktop.appearance"};
constexpr QLatin1String gnomeInterface{"org.gnome.desktop.interface"};

// Three parts of sRGB from 0 to 1, packed as (ddd); outside of that the desktop names none.
std::optional<QColor> colourOf(const QVariant& value) {
    const auto packed = value.value<QDBusArgument>();
    if (packed.currentSignature() != QLatin1String("(ddd)")) {
        return std::nullopt;
    }
    std::array<double, 3> parts{};
    packed.beginStructure();
    for (double& part : parts) {
        packed >> part;
    }
    packed.endStructure();
    if (!std::ranges::all_of(parts, [](double part) { return part >= 0 && part <= 1; })) {
        return std::nullopt;
    }
    return QColor::fromRgbF(static_cast<float>(parts[0]), static_cast<float>(parts[1]),
                            static_cast<float>(parts[2]));
}

// A family and a size in points, "Cantarell 11".
std::optional<QFont> fontOf(const QString& description) {
    const qsizetype space = description.lastIndexOf(u' ');
    bool isNumber = false;
    const double points = description.mid(space + 1).toDouble(&isNumber);
    if (space <= 0 || !isNumber || points < 4 || points > 72) {
        return std::nullopt;
    }
    QFont font(description.left(space));
    font.setPointSizeF(points);
    return font;
}

// Where this desktop's portal answers for another one's settings, Qt's own theme knows better.
bool speaksForGnome() {
    return !qEnvironmentVariable("XDG_CURRENT_DESKTOP").contains(QLatin1String("KDE"));
}

} // namespace

DesktopSettings::DesktopSettings(QObject* parent)
    : QObject(parent), firstAnswer(QDBusPendingCall::fromError({})),
      platformIsDark(QGuiApplication::palette().color(QPalette::Window).lightness() < 128) {
    qDBusRegisterMetaType<SettingGroups>();
    // Qt 6.4 looks up the types of a slot by name, which knows this one only if somebody has
    // happened to use it before; the signal would not be connected.
    qRegisterMetaType<QDBusVariant>();
    // How long a start may be held up, in milliseconds: less than an eye would notice.
    constexpr int brieflyEnough = 60;
    firstAnswer = readAll(brieflyEnough);
    QDBusConnection::sessionBus().connect(service, object, interface,
                                          QStringLiteral("SettingChanged"), this,
                                          SLOT(settingChanged(QString, QString, QDBusVariant)));
}

QDBusPendingCall DesktopSettings::readAll(int timeout) {
    auto message =
        QDBusMessage::createMethodCall(service, object, interface, QStringLiteral("ReadAll"));
    message << QStringList{appearance, gnomeInterface};
    return QDBusConnection::sessionBus().asyncCall(message, timeout);
}

void DesktopSettings::waitBriefly() {
    firstAnswer.waitForFinished();
    if (firstAnswer.error().type() == QDBusError::NoReply) {
        // The portal may just be starting.
        readLater();
        return;
    }
    take(firstAnswer);
}

void DesktopSettings::readLater() {
    constexpr int asLongAsItTakes = -1; // the bus has a limit of its own
    auto* const watcher = new QDBusPendingCallWatcher(readAll(asLongAsItTakes), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher] {
        take(*watcher);
        watcher->deleteLater();
        emit changed();
    });
}

void DesktopSettings::take(const QDBusPendingCall& answer) {
    const QDBusPendingReply<SettingGroups> groups = answer;
    if (groups.isError()) {
        return;
    }
    const SettingGroups all = groups.value();
    for (auto group = all.begin(); group != all.end(); ++group) {
        for (auto setting = group->begin(); setting != group->end(); ++setting) {
            apply(group.key(), setting.key(), setting.value());
        }
    }
}

void DesktopSettings::settingChanged(const QString& group, const QString& key,
                                     const QDBusVariant& value) {
    apply(group, key, value.variant());
    emit changed();
}

void DesktopSettings::apply(const QString& group, const QString& key, const QVariant& value) {
    if (group == appearance && key == QLatin1String("color-scheme")) {
        colourScheme = value.toUInt();
    } else if (group == appearance && key == QLatin1String("accent-color")) {
        accent_ = colourOf(value);
    } else if (group == gnomeInterface && key == QLatin1String("font-name") && speaksForGnome()) {
        font_ = fontOf(value.toString());
    } else if (group == gnomeInterface && key == QLatin1String("enable-animations")) {
        reducedMotion = value.typeId() == QMetaType::Bool && !value.toBool();
    }
}

bool DesktopSettings::prefersDark() const {
    return colourScheme == 1 || (colourScheme != 2 && platformIsDark);
}

} // namespace murkwell
