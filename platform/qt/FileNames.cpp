#include "platform/qt/FileNames.h"

#include <QByteArray>
#include <QFile>
#include <QUrl>

#include <string>

namespace murkwell {
namespace {

std::filesystem::path pathOfBytes(const QByteArray& bytes) {
    return {std::string(bytes.constData(), static_cast<std::size_t>(bytes.size()))};
}

} // namespace

QString toQtPath(const std::filesystem::path& file) {
    return QFile::decodeName(QByteArray::fromStdString(file.native()));
}

std::filesystem::path toPath(const QString& file) {
    return pathOfBytes(QFile::encodeName(file));
}

QString fileAddress(const std::filesystem::path& file) {
    const auto bytes = QByteArray::fromStdString(file.native());
    return QStringLiteral("file://") + QString::fromLatin1(bytes.toPercentEncoding("/"));
}

std::optional<std::filesystem::path> fileOfAddress(const QString& address) {
    const QUrl url(address);
    const QString host = url.host();
    if (!url.isLocalFile() || !(host.isEmpty() || host == QLatin1String("localhost"))) {
        return std::nullopt;
    }
    const QByteArray bytes =
        QByteArray::fromPercentEncoding(url.path(QUrl::FullyEncoded).toLatin1());
    if (bytes.isEmpty() || bytes.contains('\0')) {
        return std::nullopt;
    }
    return pathOfBytes(bytes);
}

} // namespace murkwell
