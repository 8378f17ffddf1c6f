// Stands in for the desktop's programs that open addresses, and notes what they were asked.
#pragma once

#include <QDesktopServices>
#include <QObject>
#include <QStringList>
#include <QUrl>

namespace murkwell {

class RecordedDesktop final : public QObject {
    Q_OBJECT

public:
    RecordedDesktop() {
        for (const QString& scheme : schemes()) {
            QDesktopServices::setUrlHandler(scheme, this, "open");
        }
    }
    ~RecordedDesktop() override {
        for (const QString& scheme : schemes()) {
            QDesktopServices::unsetUrlHandler(scheme);
        }
    }
    RecordedDesktop(const RecordedDesktop&) = delete;
    RecordedDesktop& operator=(const RecordedDesktop&) = delete;

    QStringList addresses;

public slots:
    void open(const QUrl& url) {
        addresses << url.toString(QUrl::FullyEncoded);
        emit opened();
    }

signals:
    void opened();

private:
    static QStringList schemes() {
        return {QStringLiteral("file"), QStringLiteral("http"), QStringLiteral("https"),
                QStringLiteral("appstream")};
    }
};

} // namespace murkwell
