#include "platform/qt/FileNames.h"

#include <QByteArray>
#include <QFile>

#include <string>

namespace murkwell {

QString toQtPath(const std::filesystem::path& file) {
    return QFile::decodeName(QByteArray::fromStdString(file.native()));
}

std::filesystem::path toPath(const QString& file) {
    return QFile::encodeName(file).toStdString();
}

} // namespace murkwell
