#include "model/RedactModel.h"

#include "tests/support/ModelUnderTest.h"

#include <gtest/gtest.h>

namespace murkwell {
namespace {

class History : public testing::Test {
protected:
    History() { bench.openPdf(); }

    Uuid add(double x = 0.1) { return model.addRedaction({x, 0.1, 0.2, 0.2}).value(); }

    ModelUnderTest bench;
    RedactModel& model = *bench.model;
};

TEST_F(History, KeepsAHundredSteps) {
    for (int i = 0; i < 101; ++i) {
        add();
    }
    int steps = 0;
    for (; model.canUndo(); model.undo()) {
        ++steps;
    }
    EXPECT_EQ(steps, 100);
    EXPECT_EQ(model.totalRedactionCount(), 1U); // the first can no longer be undone
    for (; model.canRedo(); model.redo()) {
        --steps;
    }
    EXPECT_EQ(steps, 0);
    EXPECT_EQ(model.totalRedactionCount(), 101U);
}

TEST_F(History, TitlesNameTheStepThatWouldMove) {
    EXPECT_EQ(model.undoTitle(), "Undo");
    EXPECT_EQ(model.redoTitle(), "Redo");
    const Uuid id = add();
    model.remove(id);
    EXPECT_EQ(model.undoTitle(), "Undo Delete Redaction");
    model.undo();
    EXPECT_EQ(model.undoTitle(), "Undo Add Redaction");
    EXPECT_EQ(model.redoTitle(), "Redo Delete Redaction");
    model.undo();
    EXPECT_EQ(model.undoTitle(), "Undo");
    EXPECT_EQ(model.redoTitle(), "Redo Add Redaction");
}

TEST_F(History, ANewChangeDiscardsTheRedoSteps) {
    add();
    model.undo();
    add();
    EXPECT_FALSE(model.canRedo());
    EXPECT_EQ(model.redoTitle(), "Redo");
}

TEST_F(History, UndoComesBackToThePageOfTheChangeAndItsSelection) {
    model.goToPage(2);
    const Uuid id = add();
    model.clearCurrentPage();
    model.goToPage(0);
    model.undo();
    EXPECT_EQ(model.currentPage(), 2);
    EXPECT_EQ(model.selectedID(), id);
    model.undo();
    EXPECT_FALSE(model.hasSelection()); // nothing was selected before the box was drawn
    model.redo();
    EXPECT_EQ(model.selectedID(), id);
}

TEST_F(History, ASelectionThatIsNotOnTheRestoredPageIsDropped) {
    const Uuid onFirst = add();
    model.goToPage(1);
    model.selectedID = onFirst; // as only a mistaken window would
    add();
    model.undo();
    EXPECT_EQ(model.currentPage(), 1);
    EXPECT_FALSE(model.hasSelection());
}

TEST_F(History, EveryStepCountsAsAChange) {
    add();
    bench.panels.saved = bench.folder / "work.murkwell";
    model.saveSession();
    ASSERT_FALSE(model.isDirty());
    ASSERT_TRUE(model.canUndo());
    model.undo();
    EXPECT_TRUE(model.isDirty());
    model.redo();
    EXPECT_TRUE(model.isDirty());
}

TEST_F(History, NothingToUndoChangesNothing) {
    model.open({"notes.txt"});
    model.undo();
    model.redo();
    EXPECT_TRUE(model.errorMessage());
    EXPECT_FALSE(model.isDirty());
    add();
    model.undo();
    EXPECT_FALSE(model.errorMessage());
}

TEST_F(History, AGestureIsOneStepHoldingTheStateBeforeIt) {
    const Uuid id = add();
    for (int i = 1; i <= 50; ++i) {
        model.beginInteractiveChange("Move Redaction");
        model.updateRedaction(id, {i / 100.0, 0.1, 0.2, 0.2});
    }
    model.endInteractiveChange();
    EXPECT_EQ(model.undoTitle(), "Undo Move Redaction");
    model.undo();
    EXPECT_EQ(model.currentRedactions().front().rect.x, 0.1);
    EXPECT_EQ(model.undoTitle(), "Undo Add Redaction");
    model.redo();
    EXPECT_EQ(model.currentRedactions().front().rect.x, 0.5);
}

TEST_F(History, AGestureWithoutMotionIsAStepToo) {
    model.beginInteractiveChange("Resize Redaction");
    model.endInteractiveChange();
    EXPECT_TRUE(model.isDirty());
    EXPECT_EQ(model.undoTitle(), "Undo Resize Redaction");
}

TEST_F(History, UntilItsEndAGestureKeepsOtherWorkOut) {
    model.beginInteractiveChange("Move Redaction");
    bench.openPicture();
    EXPECT_EQ(model.documentTitle(), "scan.pdf");
    model.endInteractiveChange();
    EXPECT_EQ(model.documentTitle(), "photo.PNG");
    EXPECT_FALSE(model.canUndo());
    model.beginInteractiveChange("Move Redaction");
    EXPECT_TRUE(model.canUndo());
    model.undo(); // which ends it
    model.beginInteractiveChange("Move Redaction");
    EXPECT_TRUE(model.canUndo());
}

TEST_F(History, SettingsAreNotUndone) {
    add();
    model.tool = RedactionStyle::noise;
    model.detectKinds = PIIKinds{PIIKind::faces};
    model.applyToAllPages = true;
    model.undo();
    EXPECT_EQ(model.tool(), RedactionStyle::noise);
    EXPECT_EQ(model.detectKinds(), PIIKinds{PIIKind::faces});
    EXPECT_TRUE(model.applyToAllPages());
}

} // namespace
} // namespace murkwell
