#include "platform/qt/FileManagerQt.h"

#include "tests/support/PrivateBus.h"

#include <QDBusContext>
#include <QDBusError>
#include <QDesktopServices>
#include <QSemaphore>
#include <QSignalSpy>
#include <QUrl>

namespace murkwell {

class FakeFileManager1 : public QObject, protected QDBusContext {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.FileManager1")

public:
    explicit FakeFileManager1(bool isAble) : able(isAble) {}

public slots:
    void ShowItems(const QStringList& addresses, const QString& /*startupId*/) {
        if (!able) {
            sendErrorReply(QDBusError::Failed);
        }
        shown = addresses;
        asked.release();
    }

public:
    QStringList shown;
    QSemaphore asked;

private:
    bool able;
};

// Opens file: addresses instead of the desktop.
class FolderOpener : public QObject {
    Q_OBJECT

public:
    FolderOpener() { QDesktopServices::setUrlHandler(QStringLiteral("file"), this, "open"); }
    ~FolderOpener() override { QDesktopServices::unsetUrlHandler(QStringLiteral("file")); }

public slots:
    void open(const QUrl& url) { emit opened(url); }

signals:
    void opened(const QUrl& url);
};

namespace {

const QString service = QStringLiteral("org.freedesktop.FileManager1");
const QString path = QStringLiteral("/org/freedesktop/FileManager1");

TEST(FileManagerQt, ShowsTheFileInTheFileManager) {
    auto* const manager = new FakeFileManager1(true);
    const OtherProgram program(service, path, manager);
    FileManagerQt().reveal("/tmp/a b\xff.pdf");
    manager->asked.acquire();
    EXPECT_EQ(manager->shown, QStringList{QStringLiteral("file:///tmp/a%20b%FF.pdf")});
}

TEST(FileManagerQt, OpensTheFolderWhereTheFileManagerCannot) {
    const OtherProgram program(service, path, new FakeFileManager1(false));
    FolderOpener desktop;
    QSignalSpy opened(&desktop, &FolderOpener::opened);
    FileManagerQt().reveal("/tmp/folder/a.pdf");
    ASSERT_TRUE(opened.wait());
    EXPECT_EQ(opened[0][0].toUrl(), QUrl(QStringLiteral("file:///tmp/folder")));
}

TEST(FileManagerQt, OpensTheFolderWhereThereIsNoFileManager) {
    FolderOpener desktop;
    QSignalSpy opened(&desktop, &FolderOpener::opened);
    FileManagerQt().reveal("/tmp/folder/a.pdf");
    ASSERT_TRUE(opened.wait());
    EXPECT_EQ(opened[0][0].toUrl(), QUrl(QStringLiteral("file:///tmp/folder")));
}

} // namespace
} // namespace murkwell

#include "FileManagerTests.moc"
