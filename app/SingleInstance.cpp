#include "app/SingleInstance.h"

#include "io/FileAddress.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>

namespace murkwell {
namespace {

constexpr QLatin1String busName("com.tallowick.Murkwell");
constexpr QLatin1String objectPath("/com/tallowick/Murkwell");
constexpr QLatin1String interfaceName("org.freedesktop.Application");

QDBusMessage request(const std::vector<std::filesystem::path>& files,
                     const ActivationToken& token) {
    const bool opens = !files.empty();
    auto message =
        QDBusMessage::createMethodCall(busName, objectPath, interfaceName,
                                       opens ? QStringLiteral("Open") : QStringLiteral("Activate"));
    if (opens) {
        QStringList addresses;
        for (const auto& file : files) {
            addresses << QString::fromStdString(fileAddress(file));
        }
        message << addresses;
    }
    message << token.platformData();
    return message;
}

} // namespace

SingleInstance::Claim SingleInstance::claim() {
    auto bus = QDBusConnection::sessionBus();
    if (!bus.isConnected()) {
        return Claim::noBus;
    }
    if (findChild<ApplicationAdaptor*>() == nullptr) {
        new ApplicationAdaptor(*this);
        // Before the name is there, so that nobody finds the name without the object.
        bus.registerObject(objectPath, this);
    }
    return bus.registerService(busName) ? Claim::granted : Claim::taken;
}

bool SingleInstance::handOver(const std::vector<std::filesystem::path>& files,
                              const ActivationToken& token) {
    auto bus = QDBusConnection::sessionBus();
    // The other instance answers as soon as it has taken note. One that is busy, with an export
    // say, has the request waiting: there is no need to stay until it comes to it.
    constexpr int longEnough = 3000; // milliseconds
    const auto answer = bus.call(request(files, token), QDBus::Block, longEnough);
    return answer.type() == QDBusMessage::ReplyMessage ||
           bus.interface()->isServiceRegistered(busName);
}

ApplicationAdaptor::ApplicationAdaptor(SingleInstance& served)
    : QDBusAbstractAdaptor(&served), instance(served) {}

// Both answer before anything is done: loading a file takes a while.

void ApplicationAdaptor::Activate(const QVariantMap& platformData) {
    QMetaObject::invokeMethod(
        &instance,
        [this, token = ActivationToken::fromPlatformData(platformData)] {
            emit instance.activated(token);
        },
        Qt::QueuedConnection);
}

void ApplicationAdaptor::Open(const QStringList& addresses, const QVariantMap& platformData) {
    std::vector<std::filesystem::path> files;
    for (const QString& address : addresses) {
        if (auto file = fileOfAddress(address.toStdString())) {
            files.push_back(std::move(*file));
        }
    }
    QMetaObject::invokeMethod(
        &instance,
        [this, files, token = ActivationToken::fromPlatformData(platformData)] {
            emit instance.opened(files, token);
        },
        Qt::QueuedConnection);
}

void ApplicationAdaptor::ActivateAction(const QString& /*name*/, const QVariantList& /*parameters*/,
                                        const QVariantMap& /*platformData*/) {}

} // namespace murkwell
