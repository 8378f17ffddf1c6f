#include "app/MainWindow.h"

#include "tests/support/ModelUnderTest.h"
#include "ui/FileOpenInbox.h"
#include "ui/widgets/CanvasWidget.h"
#include "ui/widgets/Theme.h"

#include <QAction>
#include <QCoreApplication>
#include <QImage>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QtTest/QTest>

#include <gmock/gmock.h>

namespace murkwell {
namespace {

using testing::ElementsAre;

struct MainWindowTest : testing::Test {
    // What a menu holds, in its order: titles with their shortcuts, and lines between the groups.
    static std::vector<std::string> entriesOf(const QMenu& menu) {
        std::vector<std::string> entries;
        for (const QAction* const action : menu.actions()) {
            const QString keys = action->shortcut().toString(QKeySequence::PortableText);
            entries.push_back(action->isSeparator()
                                  ? "-"
                                  : (action->text() + QStringLiteral("|") + keys).toStdString());
        }
        return entries;
    }
    QMenu& menu(int index) const { return *window.menuBar()->actions()[index]->menu(); }
    QAction& command(int menuIndex, int index) const { return *menu(menuIndex).actions()[index]; }

    QAction& open() const { return command(0, 0); }
    QAction& save() const { return command(0, 2); }
    QAction& saveAs() const { return command(0, 3); }
    QAction& undo() const { return command(1, 0); }
    QAction& redo() const { return command(1, 1); }

    static void settle() { QCoreApplication::processEvents(); }

    ModelUnderTest under;
    RedactModel& model = *under.model;
    FileOpenInbox inbox;
    std::optional<std::string> notice;
    MainWindow window{model, inbox, [this] { return notice; }};
};

TEST_F(MainWindowTest, IsOneWindowOfTheGivenSize) {
    EXPECT_EQ(window.windowTitle(), QStringLiteral("Murkwell"));
    EXPECT_EQ(window.objectName(), QStringLiteral("main"));
    window.show();
    EXPECT_EQ(window.size(), QSize(960, 660));
    window.resize(1, 1);
    EXPECT_GE(window.centralWidget()->width(), 700);
    EXPECT_GE(window.centralWidget()->height(), 480);
}

TEST_F(MainWindowTest, MenusHoldTheCommandsAndNoOthers) {
    EXPECT_EQ(window.menuBar()->actions().size(), 3);
    EXPECT_THAT(entriesOf(menu(0)), ElementsAre("Open…|Ctrl+O", "-", "Save|Ctrl+S",
                                                "Save As…|Ctrl+Shift+S", "-", "Quit|Ctrl+Q"));
    EXPECT_THAT(entriesOf(menu(1)), ElementsAre("Undo|Ctrl+Z", "Redo|Ctrl+Shift+Z"));
    EXPECT_THAT(entriesOf(menu(2)),
                ElementsAre("Murkwell Help|F1", "-", "About Murkwell|", "Check for Updates…|"));
}

TEST_F(MainWindowTest, WithoutADocumentThereIsNothingToSaveOrUndo) {
    EXPECT_TRUE(open().isEnabled());
    for (const QAction* const action : {&save(), &saveAs(), &undo(), &redo()}) {
        EXPECT_FALSE(action->isEnabled()) << action->text().toStdString();
    }
}

TEST_F(MainWindowTest, SavingFollowsTheDocument) {
    under.openPdf();
    settle();
    EXPECT_TRUE(save().isEnabled());
    EXPECT_TRUE(saveAs().isEnabled());
    model.closeDocument();
    settle();
    EXPECT_FALSE(save().isEnabled());
    EXPECT_FALSE(saveAs().isEnabled());
}

TEST_F(MainWindowTest, UndoAndRedoFollowTheHistory) {
    under.openPdf();
    model.addRedaction({0.1, 0.1, 0.2, 0.2});
    settle();
    EXPECT_TRUE(undo().isEnabled());
    EXPECT_EQ(undo().text(), QStringLiteral("Undo Add Redaction"));
    EXPECT_FALSE(redo().isEnabled());
    undo().trigger();
    settle();
    EXPECT_EQ(model.totalRedactionCount(), 0U);
    EXPECT_FALSE(undo().isEnabled());
    EXPECT_EQ(undo().text(), QStringLiteral("Undo"));
    EXPECT_TRUE(redo().isEnabled());
    EXPECT_EQ(redo().text(), QStringLiteral("Redo Add Redaction"));
    redo().trigger();
    settle();
    EXPECT_EQ(model.totalRedactionCount(), 1U);
    EXPECT_TRUE(undo().isEnabled());
    EXPECT_FALSE(redo().isEnabled());
}

TEST_F(MainWindowTest, OpenShowsThePanelAlsoOverADocument) {
    under.panels.opened = {under.folder.write("photo.png", "a picture")};
    under.openPdf();
    open().trigger();
    EXPECT_EQ(under.panels.openPanels.size(), 1U);
    EXPECT_EQ(model.fileName(), "photo.png");
}

TEST_F(MainWindowTest, CancelledPanelsChangeNothing) {
    under.openPdf();
    settle();
    open().trigger();
    save().trigger();
    saveAs().trigger();
    EXPECT_EQ(under.panels.openPanels.size(), 1U);
    EXPECT_EQ(under.panels.savePanels.size(), 2U);
    EXPECT_EQ(model.fileName(), "scan.pdf");
    EXPECT_EQ(model.errorMessage(), std::nullopt);
    EXPECT_EQ(model.statusMessage(), std::nullopt);
}

TEST_F(MainWindowTest, SaveAsksForALocationOnlyOnce) {
    under.openPdf();
    settle();
    under.panels.saved = under.folder / "work.murkwell";
    save().trigger();
    save().trigger();
    EXPECT_EQ(under.panels.savePanels.size(), 1U);
    saveAs().trigger();
    EXPECT_EQ(under.panels.savePanels.size(), 2U);
}

TEST_F(MainWindowTest, KeysDuringADragWaitForItsEndOrBringItAbout) {
    under.openPdf();
    under.panels.saved = under.folder / "work.murkwell";
    model.addRedaction({0, 0, 0.1, 0.1});
    window.show();
    window.activateWindow();
    settle();
    auto* const canvas = window.findChild<CanvasWidget*>();
    const QPoint from = canvas->rect().center();
    const auto press = [&](Qt::Key key) {
        QTest::keyClick(canvas, key, Qt::ControlModifier);
        settle();
    };
    QTest::mousePress(canvas, Qt::LeftButton, {}, from);
    QTest::mouseMove(canvas, from + QPoint(40, 40));
    press(Qt::Key_S);
    EXPECT_TRUE(under.panels.savePanels.empty());
    press(Qt::Key_Z);
    EXPECT_EQ(under.panels.savePanels.size(), 1U);
    QTest::mouseMove(canvas, from + QPoint(60, 60));
    QTest::mouseRelease(canvas, Qt::LeftButton, {}, from + QPoint(60, 60));
    EXPECT_EQ(model.totalRedactionCount(), 1U);
    QTest::mousePress(canvas, Qt::LeftButton, {}, from);
    QTest::mouseMove(canvas, from + QPoint(40, 40));
    press(Qt::Key_S);
    EXPECT_TRUE(model.isDirty()); // by the undo
    QTest::mouseRelease(canvas, Qt::LeftButton, {}, from + QPoint(60, 60));
    EXPECT_EQ(model.totalRedactionCount(), 2U);
    EXPECT_FALSE(model.isDirty()); // saved with its box
}

TEST_F(MainWindowTest, ShowsWhatWaitsInTheInboxAndWhatComesLater) {
    inbox.receive({under.folder.write("first.pdf", "the PDF")});
    inbox.receive({under.folder.write("second.pdf", "the PDF")});
    window.show();
    settle();
    EXPECT_EQ(model.fileName(), "second.pdf");
    EXPECT_TRUE(inbox.pending().empty());
    inbox.receive({under.folder.write("notes.txt", "no document")});
    settle();
    EXPECT_EQ(model.fileName(), "second.pdf");
    EXPECT_EQ(model.errorMessage(), "No supported file found. Drop an image or a PDF.");
}

TEST_F(MainWindowTest, QuitClosesTheWindow) {
    window.show();
    command(0, 5).trigger();
    EXPECT_FALSE(window.isVisible());
}

TEST_F(MainWindowTest, ClosingDuringASearchIsNotAskedAbout) {
    under.openPdf();
    model.autoDetect();
    window.show();
    EXPECT_TRUE(window.close());
    under.executor.runAll();
    settle();
    EXPECT_EQ(model.activeOperation(), std::nullopt);
}

TEST_F(MainWindowTest, AboutSaysWhatThisIsAndStaysOutOfTheWay) {
    window.show();
    for (const bool lacksSomething : {false, true}) {
        notice = lacksSomething ? std::optional<std::string>("less protection") : std::nullopt;
        command(2, 2).trigger();
        auto* const about = window.findChild<QMessageBox*>();
        ASSERT_TRUE(about);
        EXPECT_TRUE(about->text().startsWith(QStringLiteral("Murkwell ")));
        EXPECT_EQ(about->informativeText().endsWith(QStringLiteral("less protection")),
                  lacksSomething);
        delete about;
    }
}

TEST_F(MainWindowTest, TheIconOfUpdatesHasTheColourOfTheMenusText) {
    // In the middle of a stroke the icon has the colour of the text; elsewhere it is clear.
    const auto hasColour = [&](const QColor& colour) {
        const QImage drawing = command(2, 3).icon().pixmap(16).toImage();
        for (int y = 0; y < drawing.height(); ++y) {
            for (int x = 0; x < drawing.width(); ++x) {
                if (drawing.pixelColor(x, y) == colour) {
                    return true;
                }
            }
        }
        return false;
    };
    for (const bool dark : {false, true}) {
        const Theme theme = Theme::make(dark, std::nullopt);
        window.setPalette(theme.palette());
        EXPECT_TRUE(hasColour(theme.text)) << dark;
    }
}

} // namespace
} // namespace murkwell
