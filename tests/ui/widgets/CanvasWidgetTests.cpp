#include "ui/widgets/CanvasWidget.h"

#include "tests/support/WindowUnderTest.h"
#include "ui/NoisePreview.h"

#include <QAccessible>
#include <QImage>

#include <gtest/gtest.h>

namespace murkwell {
namespace {

class CanvasOnScreen : public testing::Test {
protected:
    CanvasOnScreen() { window.openPdf(); }

    [[nodiscard]] QColor colourAt(QPoint point) const {
        return window.canvas()->grab().toImage().pixelColor(point);
    }

    WindowUnderTest window;
    RedactModel& model = window.model;
};

TEST_F(CanvasOnScreen, MouseDrawsMovesSelectsAndClears) {
    window.dragOnPage(window.onPage(0.2, 0.2), window.onPage(0.4, 0.6));
    ASSERT_EQ(model.currentRedactions().size(), 1U);
    EXPECT_NEAR(model.currentRedactions()[0].rect.width, 0.2, 0.01);
    EXPECT_TRUE(model.hasSelection());
    window.dragOnPage(window.onPage(0.3, 0.4), window.onPage(0.5, 0.4));
    EXPECT_NEAR(model.currentRedactions()[0].rect.x, 0.4, 0.01);
    QTest::mouseClick(window.canvas(), Qt::LeftButton, {}, window.onPage(0.9, 0.9));
    EXPECT_FALSE(model.hasSelection());
    QTest::mouseClick(window.canvas(), Qt::LeftButton, {}, window.onPage(0.5, 0.4));
    EXPECT_TRUE(model.hasSelection());
    QTest::mouseClick(window.canvas(), Qt::RightButton, {}, window.onPage(0.9, 0.9));
    EXPECT_TRUE(model.hasSelection());
}

TEST_F(CanvasOnScreen, ShowsThePageAndItsBoxes) {
    const QColor page(200, 100, 50); // of the stand-in
    const QPoint middle = window.onPage(0.5, 0.5);
    EXPECT_EQ(colourAt(middle), page);
    const RedactionStyle styles[] = {RedactionStyle::solidBlack, RedactionStyle::solidWhite};
    const QColor expected[] = {Qt::black, Qt::white};
    for (int i = 0; i < 2; ++i) {
        model.tool = styles[i];
        model.addRedaction({0.3, 0.3, 0.4, 0.4});
        window.settle();
        EXPECT_EQ(colourAt(middle), expected[i]);
    }
    model.undo();
    model.undo();
    window.settle();
    EXPECT_EQ(colourAt(middle), page);
}

TEST_F(CanvasOnScreen, NoiseIsThePreviewPattern) {
    model.tool = RedactionStyle::noise;
    model.addRedaction({0, 0, 1, 1});
    model.selectedID = std::nullopt;
    window.settle();
    const QRect box = window.canvas()->boxRect(model.currentRedactions()[0]);
    const QImage shown = window.canvas()->grab().toImage();
    for (int column = 1; column < 30; column += 3) {
        for (int row = 1; row < 30; row += 3) {
            const QPoint inside = box.topLeft() + QPoint(4 * column + 2, 4 * row + 2);
            const double grey = NoisePreview::grey(static_cast<std::uint64_t>(column),
                                                   static_cast<std::uint64_t>(row));
            EXPECT_NEAR(shown.pixelColor(inside).redF(), grey, 0.01) << column << ", " << row;
        }
    }
}

// What a change repaints must be what a whole repaint shows.
TEST_F(CanvasOnScreen, PartialRepaintsLeaveNothingBehind) {
    model.addRedaction({0.1, 0.1, 0.3, 0.3});
    model.addRedaction({0.3, 0.3, 0.3, 0.3});
    window.settle();
    CanvasWidget& canvas = *window.canvas();
    QTest::mousePress(&canvas, Qt::LeftButton, {}, window.onPage(0.5, 0.5));
    QTest::mouseMove(&canvas, window.onPage(0.6, 0.6));
    QTest::mouseMove(&canvas, window.onPage(0.7, 0.4));
    window.settle();
    const QImage kept = window.view.screen()
                            ->grabWindow(window.view.winId())
                            .toImage()
                            .copy(QRect(canvas.mapTo(&window.view, QPoint()), canvas.size()));
    EXPECT_EQ(kept.convertToFormat(QImage::Format_RGB32),
              canvas.grab().toImage().convertToFormat(QImage::Format_RGB32));
    QTest::mouseRelease(&canvas, Qt::LeftButton, {}, window.onPage(0.7, 0.4));
}

TEST_F(CanvasOnScreen, KeysEditTheSelectedBox) {
    window.canvas()->setFocus();
    window.key(Qt::Key_Insert);
    ASSERT_EQ(model.currentRedactions().size(), 1U);
    const auto rect = [&] { return model.currentRedactions()[0].rect; };
    const PageRect before = rect();
    window.key(Qt::Key_Right);
    EXPECT_GT(rect().x, before.x);
    const double step = rect().x - before.x;
    window.key(Qt::Key_Left, Qt::ShiftModifier);
    EXPECT_NEAR(rect().x, before.x - 9 * step, 1e-9);
    window.key(Qt::Key_Down, Qt::ShiftModifier | Qt::AltModifier);
    EXPECT_GT(rect().height, before.height);
    EXPECT_EQ(model.undoTitle(), "Undo Resize Redaction");
    window.key(Qt::Key_Escape);
    EXPECT_FALSE(model.hasSelection());
}

TEST_F(CanvasOnScreen, TabWalksTheBoxesAndThenLeaves) {
    model.addRedaction({0.1, 0.1, 0.2, 0.2});
    model.addRedaction({0.5, 0.1, 0.2, 0.2});
    model.selectedID = std::nullopt;
    window.canvas()->setFocus();
    window.key(Qt::Key_Tab);
    EXPECT_EQ(model.selectedID(), model.currentRedactions()[0].id);
    window.key(Qt::Key_Tab);
    EXPECT_EQ(model.selectedID(), model.currentRedactions()[1].id);
    window.key(Qt::Key_Tab);
    EXPECT_NE(QApplication::focusWidget(), window.canvas());
}

TEST_F(CanvasOnScreen, ScreenReaderFindsABoxForEveryRedaction) {
    model.addRedaction({0.1, 0.1, 0.2, 0.2});
    model.tool = RedactionStyle::noise;
    model.addRedaction({0.5, 0.1, 0.2, 0.2});
    window.settle();
    QAccessibleInterface* const list = QAccessible::queryAccessibleInterface(window.canvas());
    ASSERT_EQ(list->role(), QAccessible::List);
    ASSERT_EQ(list->childCount(), 2);
    QAccessibleInterface* const first = list->child(0);
    EXPECT_EQ(first, list->child(0)); // the same object for the same box
    EXPECT_EQ(first->role(), QAccessible::ListItem);
    EXPECT_EQ(first->text(QAccessible::Name), "Redaction 1, black bar");
    EXPECT_EQ(list->child(1)->text(QAccessible::Name), "Redaction 2, noise");
    EXPECT_TRUE(list->child(1)->state().selected);
    EXPECT_EQ(list->indexOfChild(first), 0);
    EXPECT_EQ(list->childAt(first->rect().center().x(), first->rect().center().y()), first);
    first->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    EXPECT_EQ(model.selectedID(), model.currentRedactions()[0].id);
    EXPECT_EQ(QApplication::focusWidget(), window.canvas());
    EXPECT_EQ(list->focusChild(), first);
    model.remove(model.currentRedactions()[0].id);
    EXPECT_FALSE(first->isValid());
    window.settle();
    ASSERT_EQ(list->childCount(), 1);
    EXPECT_EQ(list->child(0)->text(QAccessible::Name), "Redaction 1, noise");
}

TEST_F(CanvasOnScreen, ManyBoxesAndAWidePageAreShown) {
    window.bench.engines.renderer.pages = {{plainPage(20000, 500)}};
    window.openPdf();
    for (int i = 0; i < 5000; ++i) {
        model.addRedaction({0.0001 * i, 0, 0.01, 0.9});
    }
    window.settle();
    EXPECT_EQ(colourAt(window.onPage(0.2, 0.45)), QColor(Qt::black));
}

} // namespace
} // namespace murkwell
