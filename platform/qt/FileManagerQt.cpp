#include "platform/qt/FileManagerQt.h"

#include "io/FileAddress.h"
#include "platform/qt/FileNames.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDesktopServices>
#include <QStringList>
#include <QUrl>

namespace murkwell {
namespace {

void openFolder(const std::filesystem::path& folder) {
    QDesktopServices::openUrl(QUrl::fromLocalFile(toQtPath(folder)));
}

} // namespace

void FileManagerQt::reveal(const std::filesystem::path& file) {
    std::error_code failed;
    auto absolute = std::filesystem::absolute(file, failed);
    if (failed) {
        absolute = file;
    }
    auto message = QDBusMessage::createMethodCall(QStringLiteral("org.freedesktop.FileManager1"),
                                                  QStringLiteral("/org/freedesktop/FileManager1"),
                                                  QStringLiteral("org.freedesktop.FileManager1"),
                                                  QStringLiteral("ShowItems"));
    message << QStringList{QString::fromStdString(fileAddress(absolute))} << QString();
    auto* const answer =
        new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(message));
    QObject::connect(answer, &QDBusPendingCallWatcher::finished, answer,
                     [answer, folder = absolute.parent_path()] {
                         if (answer->isError()) {
                             openFolder(folder);
                         }
                         answer->deleteLater();
                     });
}

} // namespace murkwell
