// How the user wants programs to look: light or dark, in which accent and font, and whether things
// may move. Read from the desktop's portal (org.freedesktop.portal.Settings) on the session bus.
#pragma once

#include <QColor>
#include <QDBusPendingCall>
#include <QDBusVariant>
#include <QFont>
#include <QObject>
#include <QVariant>

#include <optional>

namespace murkwell {

class DesktopSettings final : public QObject {
    Q_OBJECT

public:
    // Asks, and does not wait for the answer.
    explicit DesktopSettings(QObject* parent = nullptr);

    // Until the answer is there, but no longer than a start of the program may be held up. One that
    // comes later is announced as a change.
    void waitBriefly();

    // As the platform's palette is where the desktop does not say.
    [[nodiscard]] bool prefersDark() const;
    // None when the desktop names none.
    [[nodiscard]] std::optional<QColor> accent() const { return accent_; }
    // Of texts in programs; none when the desktop names none.
    [[nodiscard]] std::optional<QFont> font() const { return font_; }
    [[nodiscard]] bool prefersReducedMotion() const { return reducedMotion; }

signals:
    void changed();

private slots:
    void settingChanged(const QString& group, const QString& key, const QDBusVariant& value);

private:
    [[nodiscard]] static QDBusPendingCall readAll(int timeout);
    void readLater();
    void take(const QDBusPendingCall& answer);
    void apply(const QString& group, const QString& key, const QVariant& value);

    QDBusPendingCall firstAnswer;
    bool platformIsDark;
    uint colourScheme = 0; // 1 dark, 2 light, anything else: no preference
    std::optional<QColor> accent_;
    std::optional<QFont> font_;
    bool reducedMotion = false;
};

} // namespace murkwell
