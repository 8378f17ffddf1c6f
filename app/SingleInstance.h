// One program per session: whoever is started first has the name on the session bus and gets the
// files of those started later. The interface is the desktop's own (org.freedesktop.Application),
// so that it can start and address the program as well.
#pragma once

#include "app/ActivationToken.h"

#include <QDBusAbstractAdaptor>
#include <QObject>
#include <QStringList>
#include <QVariantList>
#include <QVariantMap>

#include <filesystem>
#include <vector>

namespace murkwell {

class SingleInstance final : public QObject {
    Q_OBJECT

public:
    enum class Claim { granted, taken, noBus };

    // Granted until the process ends. What others ask for from then on is emitted by the event
    // loop.
    [[nodiscard]] Claim claim();

    // Has the instance that runs open the files and come to the front. False when none does any
    // more.
    [[nodiscard]] static bool handOver(const std::vector<std::filesystem::path>& files,
                                       const ActivationToken& token);

signals:
    void activated(const murkwell::ActivationToken& token);
    void opened(const std::vector<std::filesystem::path>& files,
                const murkwell::ActivationToken& token);
};

// What others see of it on the bus.
class ApplicationAdaptor final : public QDBusAbstractAdaptor {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Application")

public:
    explicit ApplicationAdaptor(SingleInstance& served);

public slots:
    void Activate(const QVariantMap& platformData);
    void Open(const QStringList& addresses, const QVariantMap& platformData);
    // The program has no actions to be called by name.
    void ActivateAction(const QString& name, const QVariantList& parameters,
                        const QVariantMap& platformData);

private:
    SingleInstance& instance;
};

} // namespace murkwell
