#include "ui/RedactCanvas.h"

#include "tests/support/ModelUnderTest.h"

#include <gtest/gtest.h>

#include <cmath>

namespace murkwell {
namespace {

// A page of 20 x 10 pixels lies at (24, 24) and is 1000 x 500 points large: 0.1 of the page is 100
// points to the right and 50 down.
class Canvas : public testing::Test {
protected:
    Canvas() {
        bench.openPdf();
        canvas.resize({1048, 548});
    }

    static CanvasPoint at(double pageX, double pageY) {
        return {24 + pageX * 1000, 24 + pageY * 500};
    }

    void drag(CanvasPoint from, std::initializer_list<CanvasPoint> over) {
        canvas.press(from);
        for (const CanvasPoint point : over) {
            canvas.drag(point);
        }
        canvas.release(*(over.end() - 1));
    }

    void click(CanvasPoint point) {
        canvas.press(point);
        canvas.release(point);
    }

    Uuid add(const PageRect& rect) { return *model.addRedaction(rect); }

    [[nodiscard]] PageRect rect(std::size_t index) const {
        return model.currentRedactions().at(index).rect;
    }

    // How many steps can be undone, found by undoing them all.
    int undoSteps() {
        int steps = 0;
        for (; model.canUndo(); ++steps) {
            model.undo();
        }
        return steps;
    }

    ModelUnderTest bench;
    RedactModel& model = *bench.model;
    RedactCanvas canvas{model};
};

void expectNear(const PageRect& rect, const PageRect& expected) {
    EXPECT_NEAR(rect.x, expected.x, 1e-9);
    EXPECT_NEAR(rect.y, expected.y, 1e-9);
    EXPECT_NEAR(rect.width, expected.width, 1e-9);
    EXPECT_NEAR(rect.height, expected.height, 1e-9);
}

TEST_F(Canvas, WithoutADocumentNothingIsShownOrHeld) {
    model.closeDocument();
    EXPECT_TRUE(canvas.shapes().empty());
    EXPECT_EQ(canvas.targetAt({100, 100}), std::nullopt);
    drag({100, 100}, {{300, 300}});
    EXPECT_EQ(canvas.draft(), std::nullopt);
}

TEST_F(Canvas, DragDrawsABoxWithADraftUntilTheRelease) {
    canvas.press(at(0.3, 0.6));
    canvas.drag(at(0.1, 0.2));
    ASSERT_TRUE(canvas.draft());
    expectNear(*canvas.draft(), {0.1, 0.2, 0.2, 0.4});
    EXPECT_TRUE(model.currentRedactions().empty());
    canvas.release(at(0.5, 0.2));
    EXPECT_EQ(canvas.draft(), std::nullopt);
    expectNear(rect(0), {0.3, 0.2, 0.2, 0.4});
    EXPECT_EQ(model.selectedID(), model.currentRedactions()[0].id);
    EXPECT_EQ(model.undoTitle(), "Undo Add Redaction");
    EXPECT_EQ(undoSteps(), 1);
}

TEST_F(Canvas, DragFromTheMarginBeginsAtThePagesEdge) {
    drag({2, 100}, {{124, 200}});
    EXPECT_EQ(rect(0).x, 0);
    EXPECT_NEAR(rect(0).width, 0.1, 1e-9);
}

TEST_F(Canvas, DragThatGoesNowhereOrIsThinOnlyClearsTheSelection) {
    for (const CanvasPoint end : {at(0.1, 0.1), CanvasPoint{126.9, 74}, at(0.4, 0.104)}) {
        const Uuid box = add({0.5, 0.5, 0.1, 0.1});
        ASSERT_EQ(model.selectedID(), box);
        drag(at(0.1, 0.1), {end});
        EXPECT_EQ(model.selectedID(), std::nullopt);
        EXPECT_EQ(model.currentRedactions().size(), 1U);
        model.remove(box);
    }
}

TEST_F(Canvas, DragOnThePageBeginsAfterThreePoints) {
    canvas.press({200, 200});
    canvas.drag({202, 202}); // 2.8 points
    EXPECT_EQ(canvas.draft(), std::nullopt);
    canvas.drag({200, 203});
    EXPECT_TRUE(canvas.draft());
    canvas.release({200, 200}); // once begun it stays a drag
    EXPECT_TRUE(model.currentRedactions().empty());
}

TEST_F(Canvas, ClickSelectsTheLaterOfTwoBoxesWithoutAnUndoStep) {
    const Uuid below = add({0.1, 0.1, 0.3, 0.3});
    const Uuid above = add({0.2, 0.2, 0.3, 0.3});
    model.selectedID = std::nullopt;
    click(at(0.3, 0.3));
    EXPECT_EQ(model.selectedID(), above);
    click(at(0.15, 0.15));
    EXPECT_EQ(model.selectedID(), below);
    click(at(0.9, 0.9));
    EXPECT_EQ(model.selectedID(), std::nullopt);
    EXPECT_EQ(undoSteps(), 2);
}

TEST_F(Canvas, DragMovesABoxByTheWholeDistanceAsOneStep) {
    const Uuid box = add({0.1, 0.1, 0.2, 0.2});
    model.selectedID = std::nullopt;
    drag(at(0.2, 0.2), {{225, 124}, at(0.25, 0.2), at(0.4, 0.5)});
    EXPECT_EQ(model.selectedID(), box);
    expectNear(rect(0), {0.3, 0.4, 0.2, 0.2});
    EXPECT_EQ(model.undoTitle(), "Undo Move Redaction");
    EXPECT_EQ(undoSteps(), 2);
}

TEST_F(Canvas, BoxPushedOutAtTheRightIsCroppedAndComesBackWithinTheSameDrag) {
    add({0.5, 0.5, 0.3, 0.2});
    canvas.press(at(0.6, 0.6));
    canvas.drag(at(0.9, 0.6));
    expectNear(rect(0), {0.8, 0.5, 0.2, 0.2});
    canvas.drag(at(-0.4, 0.6)); // over the left edge it stops with its size
    expectNear(rect(0), {0, 0.5, 0.3, 0.2});
    canvas.drag(at(0.65, 0.6));
    canvas.release(at(0.65, 0.6));
    expectNear(rect(0), {0.55, 0.5, 0.3, 0.2});
    EXPECT_EQ(canvas.dragOrigin(), std::nullopt);
}

TEST_F(Canvas, HandleResizesFromThePressOn) {
    add({0.2, 0.2, 0.2, 0.2});
    canvas.press(at(0.4, 0.4));
    EXPECT_TRUE(canvas.dragOrigin());
    canvas.drag(at(0.5, 0.6));
    expectNear(rect(0), {0.2, 0.2, 0.3, 0.4});
    canvas.drag(at(0.1, 0.1)); // past the opposite corner
    expectNear(rect(0), {0.1, 0.1, 0.1, 0.1});
    canvas.release(at(0.1, 0.1));
    EXPECT_EQ(model.undoTitle(), "Undo Resize Redaction");
    EXPECT_EQ(undoSteps(), 2);
}

TEST_F(Canvas, HandlePressedAndReleasedIsAStepAllTheSame) {
    add({0.2, 0.2, 0.2, 0.2});
    click(at(0.2, 0.4));
    EXPECT_EQ(model.undoTitle(), "Undo Resize Redaction");
    EXPECT_EQ(undoSteps(), 2);
}

TEST_F(Canvas, HandleTakesNoMoreThanItsCircle) {
    const Uuid box = add({0.2, 0.2, 0.2, 0.2});
    const CanvasPoint corner = at(0.4, 0.4);
    const auto target = [&](double dx, double dy) {
        return canvas.targetAt({corner.x + dx, corner.y + dy});
    };
    using Target = RedactCanvas::Target;
    EXPECT_EQ(target(5.5, 0), Target(RedactCanvas::Handle{box, Corner::bottomRight}));
    EXPECT_EQ(target(4, 4), Target(RedactCanvas::Catcher{})); // 5.7 points away, outside the box
    EXPECT_EQ(target(-4, -4), Target(RedactCanvas::Box{box}));
    model.selectedID = std::nullopt;
    EXPECT_EQ(target(1, 1), Target(RedactCanvas::Catcher{}));
}

TEST_F(Canvas, LaterBoxCoversAHandle) {
    const Uuid below = add({0.2, 0.2, 0.2, 0.2});
    const Uuid above = add({0.35, 0.35, 0.2, 0.2});
    model.selectedID = below;
    EXPECT_EQ(canvas.targetAt(at(0.4, 0.4)), RedactCanvas::Target(RedactCanvas::Box{above}));
}

TEST_F(Canvas, LastHandleWinsOnASmallBox) {
    const Uuid box = add({0.2, 0.2, 0.006, 0.006});
    EXPECT_EQ(canvas.targetAt(at(0.203, 0.203)),
              RedactCanvas::Target(RedactCanvas::Handle{box, Corner::bottomRight}));
}

TEST_F(Canvas, GestureOutlivesItsBoxAndItsDocument) {
    const Uuid box = add({0.1, 0.1, 0.2, 0.2});
    canvas.press(at(0.2, 0.2));
    canvas.drag(at(0.3, 0.3));
    model.remove(box);
    canvas.drag(at(0.4, 0.4));
    canvas.release(at(0.4, 0.4));
    EXPECT_TRUE(model.currentRedactions().empty());
    canvas.press(at(0.2, 0.2));
    canvas.drag(at(0.3, 0.3));
    model.closeDocument();
    canvas.release(at(0.4, 0.4));
    EXPECT_EQ(canvas.draft(), std::nullopt);
    bench.openPdf();
    drag(at(0.1, 0.1), {at(0.2, 0.2)});
    EXPECT_EQ(model.currentRedactions().size(), 1U);
}

TEST_F(Canvas, UndoAndAnotherPageEndTheGestureFirst) {
    add({0.1, 0.1, 0.2, 0.2});
    struct Case {
        CanvasPoint from;
        std::size_t boxes; // after the undo
    };
    for (const auto& [from, boxes] :
         {Case{at(0.2, 0.2), 1}, {at(0.3, 0.3), 1}, {at(0.6, 0.6), 1}}) {
        canvas.press(from);
        canvas.drag(at(0.7, 0.8));
        model.undo();
        ASSERT_EQ(model.currentRedactions().size(), boxes);
        expectNear(rect(0), {0.1, 0.1, 0.2, 0.2});
        EXPECT_TRUE(model.canRedo());
        canvas.drag(at(0.9, 0.9)); // the button is still down
        canvas.release(at(0.9, 0.9));
        expectNear(rect(0), {0.1, 0.1, 0.2, 0.2});
        EXPECT_FALSE(canvas.draft() || canvas.dragOrigin());
        model.selectedID = model.currentRedactions()[0].id;
    }
    canvas.press(at(0.5, 0.5));
    canvas.drag(at(0.6, 0.6));
    model.goToPage(1);
    canvas.release(at(0.7, 0.7));
    EXPECT_EQ(model.redactionCount(0), 2U);
    EXPECT_EQ(model.redactionCount(1), 0U);
}

TEST_F(Canvas, SavingAndOpeningWaitForTheEndOfTheGesture) {
    add({0.1, 0.1, 0.2, 0.2});
    bench.panels.saved = bench.folder / "work.murkwell";
    for (const CanvasPoint from : {at(0.2, 0.2), at(0.6, 0.6)}) { // a move, a new box
        canvas.press(from);
        canvas.drag(at(0.7, 0.7));
        model.saveSessionAs();
        EXPECT_TRUE(bench.panels.savePanels.empty());
        canvas.release(at(0.8, 0.8));
        EXPECT_EQ(bench.panels.savePanels.size(), 1U);
        EXPECT_FALSE(model.isDirty());
        const auto boxes = model.currentRedactions().size();
        const PageRect last = rect(boxes - 1);
        canvas.press(at(0.01, 0.9));
        bench.openPicture();
        EXPECT_EQ(model.documentTitle(), "work.murkwell");
        canvas.finish();
        EXPECT_EQ(model.documentTitle(), "photo.PNG");
        model.open({*bench.panels.saved});
        ASSERT_EQ(model.currentRedactions().size(), boxes);
        EXPECT_EQ(rect(boxes - 1), last);
        bench.panels.savePanels.clear();
    }
}

TEST_F(Canvas, KeysMoveAndResizeInStepsOfTheirOwn) {
    add({0.2, 0.2, 0.2, 0.2});
    canvas.moveSelected({10, -5});
    expectNear(rect(0), {0.21, 0.19, 0.2, 0.2});
    canvas.resizeSelected({-100, 50});
    expectNear(rect(0), {0.21, 0.19, 0.1, 0.3});
    canvas.resizeSelected({-5000, 0}); // does not flip
    EXPECT_NEAR(rect(0).width, RedactModel::minBox, 1e-12);
    EXPECT_EQ(undoSteps(), 4);
    canvas.moveSelected({1, 1}); // nothing is selected
    canvas.resizeSelected({1, 1});
    EXPECT_FALSE(model.canUndo());
}

TEST_F(Canvas, KeysWalkTheBoxesAndLeaveAtTheEnds) {
    const Uuid first = add({0.1, 0.1, 0.1, 0.1});
    const Uuid second = add({0.5, 0.1, 0.1, 0.1});
    model.selectedID = std::nullopt;
    EXPECT_TRUE(canvas.selectNeighbour(true));
    EXPECT_EQ(model.selectedID(), first);
    EXPECT_TRUE(canvas.selectNeighbour(true));
    EXPECT_EQ(model.selectedID(), second);
    EXPECT_FALSE(canvas.selectNeighbour(true));
    EXPECT_EQ(model.selectedID(), std::nullopt);
    EXPECT_TRUE(canvas.selectNeighbour(false));
    EXPECT_EQ(model.selectedID(), second);
    canvas.addInMiddle();
    EXPECT_EQ(model.selectedID(), model.currentRedactions().at(2).id);
}

TEST_F(Canvas, ShapesLieInTheOrderOfTheBoxes) {
    using Form = CanvasShape::Form;
    model.tool = RedactionStyle::noise;
    const Uuid noise = add({0.1, 0.1, 0.1, 0.1});
    model.tool = RedactionStyle::solidWhite;
    add({0.5, 0.1, 0.1, 0.1});
    model.selectedID = noise;
    canvas.press(at(0.8, 0.8));
    canvas.drag(at(0.9, 0.9)); // which also clears the selection
    model.selectedID = noise;
    std::vector<Form> forms;
    for (const CanvasShape& shape : canvas.shapes()) {
        forms.push_back(shape.form);
    }
    EXPECT_EQ(forms, (std::vector{Form::page, Form::rectangle, Form::noise, Form::rectangle,
                                  Form::rectangle, Form::ellipse, Form::ellipse, Form::ellipse,
                                  Form::ellipse, Form::rectangle, Form::rectangle,
                                  Form::roundedRectangle}));
    const auto shapes = canvas.shapes();
    EXPECT_EQ(shapes[1].fill, (CanvasFill{CanvasInk::midGrey, 1}));
    EXPECT_EQ(shapes[3].outline, (CanvasOutline{CanvasInk::black, 0.25, 0.5}));
    EXPECT_EQ(shapes[4].outline, (CanvasOutline{CanvasInk::accent, 1, 2}));
    EXPECT_NEAR(shapes[5].rect.x, 24 + 100 - 5.5, 1e-9);
    EXPECT_NEAR(shapes[8].rect.maxY(), 24 + 100 + 5.5, 1e-9);
    EXPECT_EQ(shapes[9].fill, (CanvasFill{CanvasInk::white, 1}));
    EXPECT_EQ(shapes[11].outline, (CanvasOutline{CanvasInk::accent, 1, 1.5, {5, 3}}));
}

} // namespace
} // namespace murkwell
