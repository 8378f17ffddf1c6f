#include "ui/widgets/ContentView.h"

#include "io/FileAddress.h"
#include "tests/support/WindowUnderTest.h"
#include "ui/widgets/PageSidebar.h"
#include "ui/widgets/StatusLine.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QLabel>
#include <QLineEdit>
#include <QMimeData>
#include <QPushButton>
#include <QSignalSpy>
#include <QUrl>

#include <gtest/gtest.h>

namespace murkwell {
namespace {

class Window : public testing::Test {
protected:
    [[nodiscard]] bool isThere(const QString& name) const { return window.find(name) != nullptr; }
    [[nodiscard]] bool isEnabled(const QString& name) const {
        const QWidget* const widget = window.find(name);
        return widget != nullptr && widget->isEnabled();
    }
    [[nodiscard]] QString status() const {
        const auto* const line = window.view.findChild<StatusLine*>();
        return line->isVisibleTo(&window.view) ? line->accessibleName() : QString();
    }
    void addBox(const PageRect& rect = {0.2, 0.2, 0.3, 0.3}) {
        window.model.addRedaction(rect);
        window.settle();
    }
    // A drop of these items on the window, from enter to release. True when it was accepted.
    bool drop(const QList<QUrl>& urls) {
        QMimeData items;
        items.setUrls(urls);
        QDragEnterEvent enter({400, 300}, Qt::CopyAction, &items, Qt::LeftButton, {});
        enter.setAccepted(false);
        QApplication::sendEvent(&window.view, &enter);
        if (!enter.isAccepted()) {
            return false;
        }
        QDropEvent drop({400, 300}, Qt::CopyAction, &items, Qt::LeftButton, {});
        QApplication::sendEvent(&window.view, &drop);
        window.settle();
        return true;
    }
    [[nodiscard]] QUrl file(const QString& name) {
        const auto path = window.bench.folder.write(name.toStdString(), "content");
        return QUrl::fromLocalFile(QString::fromStdString(path.string()));
    }

    WindowUnderTest window;
    RedactModel& model = window.model;
};

TEST_F(Window, WithoutADocumentAsksForOne) {
    EXPECT_FALSE(isThere("Close") || isThere("Export…") || isThere("Find & Redact"));
    EXPECT_EQ(status(), "");
    window.click("Open…");
    window.click("Choose File…");
    QTest::mouseClick(window.view.childAt(200, 40), Qt::LeftButton); // the margin of the drop zone
    EXPECT_EQ(window.bench.panels.openPanels.size(), 3U);
    EXPECT_FALSE(model.document());
}

TEST_F(Window, SinglePageShowsNeitherSidebarNorNavigationNorScope) {
    window.bench.openPicture();
    window.settle();
    EXPECT_TRUE(isThere("Close") && isThere("Export…"));
    EXPECT_FALSE(isThere("Pages") || isThere("Next page"));
    window.click("Auto-Detect");
    EXPECT_FALSE(isThere("Apply to"));
}

TEST_F(Window, PagesAreTurnedByButtonsAndKeys) {
    window.openPdf();
    EXPECT_FALSE(isEnabled("Previous page"));
    window.click("Next page");
    window.key(Qt::Key_PageDown);
    EXPECT_EQ(model.currentPage(), 2);
    EXPECT_FALSE(isEnabled("Next page"));
    window.key(Qt::Key_PageUp);
    EXPECT_EQ(model.currentPage(), 1);
    window.click("Close");
    EXPECT_FALSE(model.document());
    EXPECT_TRUE(isThere("Choose File…"));
}

TEST_F(Window, ControlsFollowTheWork) {
    window.openPdf();
    EXPECT_FALSE(isEnabled("Export…") || isEnabled("Clear") || isEnabled("Delete"));
    EXPECT_FALSE(isThere("1 redaction") || isThere("Reveal"));
    addBox();
    EXPECT_TRUE(isEnabled("Export…") && isEnabled("Clear") && isEnabled("Delete"));
    EXPECT_TRUE(isThere("1 redaction") && isThere("Unsaved changes"));
    addBox();
    EXPECT_TRUE(isThere("2 redactions"));
    window.click("Delete");
    EXPECT_TRUE(isThere("1 redaction"));
    EXPECT_FALSE(isEnabled("Delete"));
}

TEST_F(Window, ExportKeyWritesAndOffersToReveal) {
    window.openPdf();
    addBox();
    window.bench.panels.saved = window.bench.folder.path / "out.pdf";
    window.key(Qt::Key_E, Qt::ControlModifier);
    EXPECT_EQ(status(), "Redacted out.pdf");
    window.click("Reveal");
    EXPECT_EQ(window.bench.fileManager.revealed.size(), 1U);
}

TEST_F(Window, ChosenStyleAlsoChangesTheSelectedBox) {
    window.openPdf();
    addBox();
    window.click("Noise");
    EXPECT_EQ(model.tool(), RedactionStyle::noise);
    EXPECT_EQ(model.currentRedactions()[0].style, RedactionStyle::noise);
    EXPECT_EQ(model.undoTitle(), "Undo Change Style");
    window.key(Qt::Key_Left); // the next radio button, to the left
    EXPECT_EQ(model.tool(), RedactionStyle::solidWhite);
}

TEST_F(Window, StyleChosenElsewhereIsShownWithoutAChangeOfTheBox) {
    window.openPdf();
    addBox();
    model.tool = RedactionStyle::solidWhite;
    window.settle();
    EXPECT_TRUE(window.find<QAbstractButton>("White bar")->isChecked());
    EXPECT_EQ(model.currentRedactions()[0].style, RedactionStyle::solidBlack);
}

TEST_F(Window, DeleteKeysRemoveTheSelectedBoxButEditInTheFindField) {
    for (const Qt::Key deleting : {Qt::Key_Backspace, Qt::Key_Delete}) {
        window.openPdf();
        addBox();
        window.click("Find & Redact");
        auto* const field = window.find<QLineEdit>("Text to redact");
        QTest::keyClicks(field, "ab");
        field->setCursorPosition(1);
        window.key(deleting);
        EXPECT_EQ(field->text().size(), 1);
        EXPECT_EQ(model.currentRedactions().size(), 1U);
        window.key(Qt::Key_Escape);
        window.canvas()->setFocus();
        window.key(deleting);
        EXPECT_TRUE(model.currentRedactions().empty());
        window.key(deleting); // nothing is selected
        EXPECT_EQ(model.undoTitle(), "Undo Delete Redaction");
        field->clear();
    }
}

TEST_F(Window, DeleteKeyAlsoWorksFromTheSidebar) {
    window.openPdf();
    window.find("Pages")->setFocus();
    addBox();
    window.key(Qt::Key_Delete);
    EXPECT_TRUE(model.currentRedactions().empty());
}

TEST_F(Window, FileThatGoesBetweenChoosingAndOpeningIsTold) {
    window.openPdf();
    window.bench.panels.opened = {window.bench.folder.path / "gone.pdf"};
    model.openPanel();
    window.settle();
    EXPECT_EQ(status(), "Couldn’t open “gone.pdf”.");
    EXPECT_EQ(model.documentTitle(), "scan.pdf");
    window.bench.panels.opened.clear(); // cancelled
    model.openPanel();
    EXPECT_EQ(model.documentTitle(), "scan.pdf");
}

TEST_F(Window, DroppedFilesThatHaveALocationAreOpenedInTheirOrder) {
    EXPECT_TRUE(drop({file("notes.txt"), QUrl("https://example.org/a.pdf"), file("b.pdf")}));
    ASSERT_TRUE(model.document());
    EXPECT_EQ(model.documentTitle(), "b.pdf");
    EXPECT_FALSE(drop({QUrl("https://example.org/a.pdf"), QUrl("file://otherhost/tmp/a.pdf")}));
    EXPECT_TRUE(drop({file("notes.txt")}));
    EXPECT_EQ(status(), "No supported file found. Drop an image or a PDF.");
    EXPECT_TRUE(model.document()); // as it was
}

TEST_F(Window, DroppedNamesNeedNotBeUtf8) {
    const auto name = window.bench.folder.write("latin1-\xe9.png", "content");
    EXPECT_TRUE(drop({QUrl::fromEncoded(QByteArray::fromStdString(fileAddress(name)))}));
    ASSERT_TRUE(model.document());
    EXPECT_EQ(model.document()->url, name);
}

TEST_F(Window, SavedDocumentComesFirstAmongDroppedFiles) {
    const QUrl missing = QUrl::fromLocalFile("/nowhere/letter.murkwell");
    EXPECT_TRUE(drop({file("a.pdf"), missing}));
    EXPECT_FALSE(model.document());
    EXPECT_FALSE(status().isEmpty());
}

TEST_F(Window, FilesThatArriveWhileItIsShownAreOpened) {
    window.inbox.receive({window.bench.folder.write("late.pdf", "x")});
    window.settle();
    EXPECT_EQ(model.documentTitle(), "late.pdf");
    EXPECT_TRUE(window.inbox.pending().empty());
}

TEST(WindowBeforeItIsShown, KeepsFilesWaiting) {
    WindowUnderTest window(3, false);
    window.inbox.receive({window.bench.folder.write("first.pdf", "x")});
    window.inbox.receive({window.bench.folder.write("second.pdf", "x")});
    window.settle();
    EXPECT_FALSE(window.model.document());
    window.show();
    EXPECT_EQ(window.model.documentTitle(), "second.pdf");
}

TEST_F(Window, SidebarTurnsPagesAndFollowsThem) {
    window.openPdf();
    auto* const list = window.find<QAbstractItemView>("Pages");
    ASSERT_NE(list, nullptr);
    EXPECT_EQ(list->model()->rowCount(), 3);
    QTest::mouseClick(list->viewport(), Qt::LeftButton, {},
                      list->visualRect(list->model()->index(1, 0)).center());
    window.settle();
    EXPECT_EQ(model.currentPage(), 1);
    addBox();
    const auto spoken = [&](int row) {
        return list->model()->index(row, 0).data(Qt::AccessibleTextRole).toString();
    };
    EXPECT_EQ(spoken(1), "Page 2, 1 redaction");
    EXPECT_EQ(spoken(2), "Page 3");
    model.goToPage(2);
    window.settle();
    EXPECT_EQ(list->currentIndex().row(), 2);
}

TEST_F(Window, SidebarRepaintsOnlyRowsThatDiffer) {
    window.openPdf();
    auto* const list = window.find<QAbstractItemView>("Pages");
    QSignalSpy repainted(list->model(), &QAbstractItemModel::dataChanged);
    addBox();
    ASSERT_EQ(repainted.size(), 1);
    EXPECT_EQ(repainted[0][0].toModelIndex().row(), 0);
    model.updateRedaction(*model.selectedID(), {0.3, 0.3, 0.2, 0.2});
    window.settle();
    EXPECT_EQ(repainted.size(), 1);
    window.bench.engines.renderer.pages = std::vector<RenderedPage>(3, {plainPage(9, 9)});
    window.openPdf(); // as many pages, others
    EXPECT_EQ(repainted.size(), 4);
}

TEST(WindowWithManyPages, LastPageIsScrolledIntoTheSidebar) {
    WindowUnderTest window(1000);
    window.openPdf();
    window.model.goToPage(999);
    window.settle();
    auto* const list = window.find<QAbstractItemView>("Pages");
    const QRect row = list->visualRect(list->model()->index(999, 0));
    EXPECT_TRUE(list->viewport()->rect().contains(row));
    window.openPdf(); // another document begins at its first page
    EXPECT_EQ(list->currentIndex().row(), 0);
}

TEST_F(Window, DocumentThatGoesTakesItsPopoverAlong) {
    window.openPdf();
    window.click("Find & Redact");
    model.closeDocument();
    window.settle();
    EXPECT_FALSE(isThere("Text to redact"));
}

TEST_F(Window, EveryControlHasANameATipAndAPlaceInTheTabOrder) {
    window.openPdf();
    addBox();
    window.click("Auto-Detect");
    int seen = 0;
    for (const QWidget* const widget : window.view.findChildren<QWidget*>()) {
        const bool isControl = qobject_cast<const QAbstractButton*>(widget) != nullptr ||
                               qobject_cast<const QLineEdit*>(widget) != nullptr;
        if (!isControl) {
            continue;
        }
        ++seen;
        const std::string name = widget->accessibleName().toStdString();
        EXPECT_NE(name, "");
        const bool isSegment = qobject_cast<const QWidget*>(widget->parent()) != nullptr &&
                               widget->parentWidget()->accessibleName() != "";
        EXPECT_TRUE(!widget->toolTip().isEmpty() || isSegment) << name;
        EXPECT_NE(widget->focusPolicy() & Qt::TabFocus, 0) << name;
        EXPECT_GE(widget->sizeHint().height(), 24) << name;
        EXPECT_GE(widget->sizeHint().width(), 24) << name;
    }
    EXPECT_GE(seen, 20);
}

} // namespace
} // namespace murkwell
