#include "platform/qt/DesktopSettings.h"

#include "tests/support/PrivateBus.h"

#include <QDBusArgument>
#include <QDBusMetaType>
#include <QDBusVariant>
#include <QSemaphore>
#include <QSignalSpy>

#include <memory>

namespace murkwell {

using SettingGroups = QMap<QString, QVariantMap>;

struct PackedColour {
    double red = 0;
    double green = 0;
    double blue = 0;
};

QDBusArgument& operator<<(QDBusArgument& argument, const PackedColour& colour) {
    argument.beginStructure();
    argument << colour.red << colour.green << colour.blue;
    argument.endStructure();
    return argument;
}
const QDBusArgument& operator>>(const QDBusArgument& argument, PackedColour& colour) {
    argument.beginStructure();
    argument >> colour.red >> colour.green >> colour.blue;
    argument.endStructure();
    return argument;
}

// The desktop's portal.
class FakePortal : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.portal.Settings")

public:
    explicit FakePortal(SettingGroups initial) : settings(std::move(initial)) {}

    QSemaphore* mayAnswer = nullptr; // when set, every answer waits for it

public slots:
    SettingGroups ReadAll(const QStringList& groups) {
        if (mayAnswer != nullptr) {
            mayAnswer->acquire();
        }
        SettingGroups wanted;
        for (const QString& group : groups) {
            if (settings.contains(group)) {
                wanted[group] = settings[group];
            }
        }
        return wanted;
    }

signals:
    void SettingChanged(const QString& group, const QString& key, const QDBusVariant& value);

private:
    SettingGroups settings;
};

namespace {

const testing::Environment* const bus = testing::AddGlobalTestEnvironment(new PrivateBus);

const QString appearance = QStringLiteral("org.freedesktop.appearance");
const QString gnome = QStringLiteral("org.gnome.desktop.interface");
const QString scheme = QStringLiteral("color-scheme");
const QString accent = QStringLiteral("accent-color");
const QString animations = QStringLiteral("enable-animations");

QVariant colour(double red, double green, double blue) {
    return QVariant::fromValue(PackedColour{red, green, blue});
}

struct DesktopSettingsTest : testing::Test {
    DesktopSettingsTest() {
        qDBusRegisterMetaType<SettingGroups>();
        qDBusRegisterMetaType<PackedColour>();
    }

    // Puts a portal with these settings on the bus.
    void offer(const SettingGroups& settings, QSemaphore* mayAnswer = nullptr) {
        portal = new FakePortal(settings);
        portal->mayAnswer = mayAnswer;
        program = std::make_unique<OtherProgram>(QStringLiteral("org.freedesktop.portal.Desktop"),
                                                 QStringLiteral("/org/freedesktop/portal/desktop"),
                                                 portal);
    }

    FakePortal* portal = nullptr;
    std::unique_ptr<OtherProgram> program;
};

TEST_F(DesktopSettingsTest, FontIsReadFromItsDescription) {
    const QString key = QStringLiteral("font-name");
    const std::pair<const char*, std::optional<std::pair<const char*, double>>> cases[] = {
        {"Cantarell 11", {{"Cantarell", 11}}}, {"Noto Sans 10.5", {{"Noto Sans", 10.5}}},
        {"Cantarell", std::nullopt},           {" 11", std::nullopt},
        {"Cantarell 0", std::nullopt},         {"Cantarell 11pt", std::nullopt},
    };
    for (const auto& [description, expected] : cases) {
        offer({{gnome, {{key, QString::fromLatin1(description)}}}});
        DesktopSettings settings;
        settings.waitBriefly();
        ASSERT_EQ(settings.font().has_value(), expected.has_value()) << description;
        if (expected) {
            EXPECT_EQ(settings.font()->family(), QString::fromLatin1(expected->first));
            EXPECT_EQ(settings.font()->pointSizeF(), expected->second);
        }
        program.reset();
    }
}

TEST_F(DesktopSettingsTest, AreThereAtTheStart) {
    offer({{appearance, {{scheme, 1U}, {accent, colour(0.5, 0, 1)}}},
           {gnome, {{animations, false}}}});
    DesktopSettings settings;
    settings.waitBriefly();
    EXPECT_TRUE(settings.prefersDark());
    EXPECT_EQ(settings.accent(), QColor::fromRgbF(0.5F, 0, 1));
    EXPECT_TRUE(settings.prefersReducedMotion());
}

TEST_F(DesktopSettingsTest, WhatTheDesktopDoesNotSayIsLightWithoutAccentAndMoves) {
    struct Case {
        const char* name;
        SettingGroups settings;
    };
    for (const Case& c : {Case{"nothing", {}},
                          {"no preference", {{appearance, {{scheme, 0U}}}}},
                          {"light", {{appearance, {{scheme, 2U}}}}},
                          {"unknown", {{appearance, {{scheme, 7U}, {QStringLiteral("new"), 1U}}}}},
                          {"no accent", {{appearance, {{accent, colour(-1, -1, -1)}}}}},
                          {"accent not a number", {{appearance, {{accent, colour(0.5, NAN, 1)}}}}},
                          {"other types",
                           {{appearance, {{scheme, QStringLiteral("dark")}, {accent, 3}}},
                            {gnome, {{animations, QStringLiteral("no")}}}}}}) {
        offer(c.settings);
        DesktopSettings settings;
        settings.waitBriefly();
        EXPECT_FALSE(settings.prefersDark()) << c.name;
        EXPECT_EQ(settings.accent(), std::nullopt) << c.name;
        EXPECT_FALSE(settings.prefersReducedMotion()) << c.name;
        program.reset();
    }
}

TEST_F(DesktopSettingsTest, FollowTheDesktop) {
    offer({});
    DesktopSettings settings;
    settings.waitBriefly();
    QSignalSpy changes(&settings, &DesktopSettings::changed);
    const auto change = [&](const QString& group, const QString& key, const QVariant& value) {
        QMetaObject::invokeMethod(
            portal, [&] { emit portal->SettingChanged(group, key, QDBusVariant(value)); });
        ASSERT_TRUE(changes.wait());
    };
    change(appearance, scheme, 1U);
    EXPECT_TRUE(settings.prefersDark());
    change(appearance, accent, colour(1, 0, 0));
    EXPECT_EQ(settings.accent(), QColor(255, 0, 0));
    change(gnome, animations, false);
    EXPECT_TRUE(settings.prefersReducedMotion());
    change(appearance, scheme, 2U);
    EXPECT_FALSE(settings.prefersDark());
}

TEST_F(DesktopSettingsTest, PortalThatIsSlowDoesNotHoldUpTheStart) {
    QSemaphore mayAnswer;
    offer({{appearance, {{scheme, 1U}}}}, &mayAnswer);
    DesktopSettings settings;
    settings.waitBriefly(); // returns although nobody has answered
    EXPECT_FALSE(settings.prefersDark());
    QSignalSpy changes(&settings, &DesktopSettings::changed);
    mayAnswer.release(2); // the question that was given up, and the second one
    ASSERT_TRUE(changes.wait());
    EXPECT_TRUE(settings.prefersDark());
}

TEST_F(DesktopSettingsTest, DesktopWithoutAPortalHasNoWishes) {
    DesktopSettings settings;
    settings.waitBriefly();
    EXPECT_FALSE(settings.prefersDark());
    EXPECT_EQ(settings.accent(), std::nullopt);
}

} // namespace
} // namespace murkwell

#include "DesktopSettingsTests.moc"
