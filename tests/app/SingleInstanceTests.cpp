#include "app/SingleInstance.h"

#include "tests/support/PrivateBus.h"

#include <QDBusMessage>
#include <QSignalSpy>

#include <gmock/gmock.h>

namespace murkwell {
namespace {

const testing::Environment* const bus = testing::AddGlobalTestEnvironment(new PrivateBus);

using Files = std::vector<std::filesystem::path>;

const QString name = QStringLiteral("com.tallowick.Murkwell");
const QString object = QStringLiteral("/com/tallowick/Murkwell");

// The program's own interface, as the desktop calls it: over another connection.
class Caller {
public:
    Caller()
        : connection(QDBusConnection::connectToBus(qEnvironmentVariable("DBUS_SESSION_BUS_ADDRESS"),
                                                   QStringLiteral("caller"))) {}
    ~Caller() { QDBusConnection::disconnectFromBus(QStringLiteral("caller")); }
    Caller(const Caller&) = delete;
    Caller& operator=(const Caller&) = delete;

    QDBusPendingCall call(const QString& method, const QVariantList& arguments) {
        auto message = QDBusMessage::createMethodCall(
            name, object, QStringLiteral("org.freedesktop.Application"), method);
        message.setArguments(arguments);
        return connection.asyncCall(message);
    }

private:
    QDBusConnection connection;
};

struct SingleInstanceTest : testing::Test {
    SingleInstanceTest() {
        EXPECT_EQ(instance.claim(), SingleInstance::Claim::granted);
        QObject::connect(&instance, &SingleInstance::activated,
                         [this](const ActivationToken& token) { tokens.push_back(token); });
        QObject::connect(&instance, &SingleInstance::opened,
                         [this](const Files& files, const ActivationToken& token) {
                             opened.push_back(files);
                             tokens.push_back(token);
                         });
    }
    ~SingleInstanceTest() override { QDBusConnection::sessionBus().unregisterService(name); }

    void waitForRequests(std::size_t count) const {
        while (tokens.size() < count) {
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        }
    }

    SingleInstance instance;
    std::vector<Files> opened;
    std::vector<ActivationToken> tokens;
    Caller desktop;
};

TEST_F(SingleInstanceTest, TakesFilesAndLeaveToComeToTheFront) {
    desktop.call(
        QStringLiteral("Open"),
        {QStringList{QStringLiteral("file:///a%20b.pdf"), QStringLiteral("https://x/c.pdf"),
                     QStringLiteral("file:///d%FF.png")},
         QVariantMap{{QStringLiteral("activation-token"), QStringLiteral("T")},
                     {QStringLiteral("desktop-startup-id"), QStringLiteral("S_TIME1")}}});
    waitForRequests(1);
    EXPECT_THAT(opened, testing::ElementsAre(Files{"/a b.pdf", "/d\xff.png"}));
    EXPECT_EQ(tokens[0].wayland, QStringLiteral("T"));
    EXPECT_EQ(tokens[0].startupId, QStringLiteral("S_TIME1"));
}

TEST_F(SingleInstanceTest, IsActivatedWithoutFiles) {
    desktop.call(QStringLiteral("Activate"), {QVariantMap()});
    waitForRequests(1);
    EXPECT_TRUE(opened.empty());
    EXPECT_TRUE(tokens[0].wayland.isEmpty());
}

TEST_F(SingleInstanceTest, AnswersBeforeTheFilesAreOpened) {
    bool isOpened = false;
    bool wasAnswered = false;
    const QDBusPendingCall call = desktop.call(
        QStringLiteral("Open"), {QStringList{QStringLiteral("file:///a.pdf")}, QVariantMap()});
    QObject::connect(&instance, &SingleInstance::opened, [&] {
        QDBusPendingCall answer = call;
        answer.waitForFinished(); // for ever, if the answer came after this
        wasAnswered = !answer.isError();
        isOpened = true;
    });
    waitForRequests(1);
    EXPECT_TRUE(isOpened);
    EXPECT_TRUE(wasAnswered);
}

TEST_F(SingleInstanceTest, UnknownActionsAndWrongArgumentsDoNothing) {
    desktop.call(QStringLiteral("ActivateAction"),
                 {QStringLiteral("delete-everything"), QVariantList(), QVariantMap()});
    desktop.call(QStringLiteral("Open"), {QStringLiteral("no list")});
    desktop.call(QStringLiteral("Activate"), {QVariantMap()});
    waitForRequests(1);
    EXPECT_EQ(tokens.size(), 1U);
    EXPECT_TRUE(opened.empty());
}

TEST(ActivationToken, TravelsFromTheEnvironmentToTheOtherInstance) {
    qputenv("XDG_ACTIVATION_TOKEN", "T");
    qputenv("DESKTOP_STARTUP_ID", "S");
    const auto token = ActivationToken::fromEnvironment();
    qunsetenv("XDG_ACTIVATION_TOKEN");
    qunsetenv("DESKTOP_STARTUP_ID");
    const auto arrived = ActivationToken::fromPlatformData(token.platformData());
    EXPECT_EQ(arrived.wayland, QStringLiteral("T"));
    EXPECT_EQ(arrived.startupId, QStringLiteral("S"));
    EXPECT_TRUE(ActivationToken::fromEnvironment().platformData().isEmpty());
}

} // namespace
} // namespace murkwell
