#include "platform/qt/FileManagerQt.h"

#include "tests/support/PrivateBus.h"
#include "tests/support/RecordedDesktop.h"

#include <QDBusContext>
#include <QDBusError>
#include <QSemaphore>
#include <QSignalSpy>

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
    RecordedDesktop desktop;
    QSignalSpy opened(&desktop, &RecordedDesktop::opened);
    FileManagerQt().reveal("/tmp/folder/a.pdf");
    ASSERT_TRUE(opened.wait());
    EXPECT_EQ(desktop.addresses, QStringList{QStringLiteral("file:///tmp/folder")});
}

TEST(FileManagerQt, OpensTheFolderWhereThereIsNoFileManager) {
    RecordedDesktop desktop;
    QSignalSpy opened(&desktop, &RecordedDesktop::opened);
    FileManagerQt().reveal("/tmp/folder/a.pdf");
    ASSERT_TRUE(opened.wait());
    EXPECT_EQ(desktop.addresses, QStringList{QStringLiteral("file:///tmp/folder")});
}

} // namespace
} // namespace murkwell

#include "FileManagerTests.moc"
