#include "model/RedactModel.h"

#include "tests/support/ModelUnderTest.h"

#include <gtest/gtest.h>
#include <limits>
#include <set>
#include <type_traits>

namespace murkwell {
namespace {

// The window owns four fields; the others are the model's.
template <typename Field, typename Value>
constexpr bool canBeWritten = std::is_assignable_v<Field&, Value>;
static_assert(canBeWritten<decltype(RedactModel::tool), RedactionStyle>);
static_assert(canBeWritten<decltype(RedactModel::detectKinds), PIIKinds>);
static_assert(canBeWritten<decltype(RedactModel::applyToAllPages), bool>);
static_assert(canBeWritten<decltype(RedactModel::selectedID), Uuid>);
static_assert(!canBeWritten<decltype(RedactModel::document), std::optional<DocumentIO::Document>>);
static_assert(!canBeWritten<decltype(RedactModel::redactionsByPage), PageLists>);
static_assert(!canBeWritten<decltype(RedactModel::currentPage), std::int64_t>);
static_assert(!canBeWritten<decltype(RedactModel::activeOperation), RedactModel::Operation>);
static_assert(!canBeWritten<decltype(RedactModel::sessionURL), std::filesystem::path>);
static_assert(!canBeWritten<decltype(RedactModel::isDirty), bool>);
static_assert(!canBeWritten<decltype(RedactModel::errorMessage), std::string>);
static_assert(!canBeWritten<decltype(RedactModel::statusMessage), std::string>);
static_assert(!canBeWritten<decltype(RedactModel::lastExportURL), std::filesystem::path>);
static_assert(!std::is_copy_constructible_v<decltype(RedactModel::tool)>);

class Editing : public testing::Test {
protected:
    Editing() { bench.openPdf(); }

    // The rectangles of the page that is shown.
    [[nodiscard]] std::vector<PageRect> rects() const {
        std::vector<PageRect> all;
        for (const Redaction& redaction : model.currentRedactions()) {
            all.push_back(redaction.rect);
        }
        return all;
    }

    // A page with one found box.
    void detectOneFace() {
        bench.faces.answer = {{{0.4, 0.4, 0.2, 0.2}}};
        model.autoDetect();
        bench.executor.runAll();
    }

    ModelUnderTest bench;
    RedactModel& model = *bench.model;
};

TEST_F(Editing, AFreshModelHasItsSettingsAndNothingElse) {
    const ModelUnderTest fresh;
    RedactModel& empty = *fresh.model;
    EXPECT_EQ(empty.tool(), RedactionStyle::solidBlack);
    EXPECT_EQ(empty.detectKinds().size(), 6U);
    EXPECT_FALSE(empty.applyToAllPages());
    EXPECT_TRUE(empty.currentRedactions().empty());
    EXPECT_EQ(empty.addRedaction({0.1, 0.1, 0.5, 0.5}), std::nullopt);
    EXPECT_EQ(empty.currentImage(), nullptr);
    EXPECT_EQ(empty.currentPixelSize(), std::nullopt);
    EXPECT_EQ(empty.fileName(), std::nullopt);
    EXPECT_EQ(empty.documentTitle(), std::nullopt);
    EXPECT_FALSE(empty.isDirty() || empty.canUndo() || empty.hasDetectedRedactions());
}

TEST_F(Editing, DrawnBoxesAreClampedByTheAsymmetricRule) {
    struct Case {
        const char* what;
        PageRect drawn, stored;
    };
    for (const Case& each : std::vector<Case>{
             {"inside", {0.1, 0.2, 0.3, 0.4}, {0.1, 0.2, 0.3, 0.4}},
             {"past the right and bottom edge", {0.75, 0.75, 0.5, 2}, {0.75, 0.75, 0.25, 0.25}},
             {"past the left edge", {-0.2, 0.1, 0.5, 0.2}, {0, 0.1, 0.5, 0.2}},
             {"past the top edge", {0.1, -3, 0.5, 0.2}, {0.1, 0, 0.5, 0.2}},
             {"drawn up and left", {0.5, 0.75, -0.25, -0.5}, {0.25, 0.25, 0.25, 0.5}},
             {"around the page", {-1, -1, 5, 5}, {0, 0, 1, 1}},
             {"a side of exactly the least", {0.2, 0.2, 0.005, 0.3}, {0.2, 0.2, 0.005, 0.3}},
         }) {
        const auto id = model.addRedaction(each.drawn);
        ASSERT_TRUE(id) << each.what;
        EXPECT_EQ(model.currentRedactions().back(),
                  (Redaction{*id, each.stored, RedactionStyle::solidBlack, false}))
            << each.what;
        EXPECT_EQ(model.selectedID(), id);
    }
}

TEST_F(Editing, ABoxTooSmallChangesNothing) {
    const auto before = model.addRedaction({0.1, 0.1, 0.1, 0.1});
    const double nan = std::numeric_limits<double>::quiet_NaN();
    for (const PageRect& rect : std::vector<PageRect>{{0.2, 0.2, 0.004, 0.3},
                                                      {0.2, 0.2, 0.3, 0.004},
                                                      {0.2, 0.2, 0, 0},
                                                      {0.998, 0.2, 0.3, 0.3},
                                                      {1.5, 0.5, 1, 1},
                                                      {nan, nan, 0, nan}}) {
        EXPECT_EQ(model.addRedaction(rect), std::nullopt);
    }
    EXPECT_EQ(model.totalRedactionCount(), 1U);
    EXPECT_EQ(model.selectedID(), before);
    model.undo();
    EXPECT_FALSE(model.canUndo());
}

TEST_F(Editing, AddingClearsTheStatusAndKeepsTheError) {
    detectOneFace();
    model.open({"notes.txt"});
    ASSERT_TRUE(model.statusMessage() && model.errorMessage());
    ASSERT_TRUE(model.addRedaction({0, 0, 0.1, 0.1}));
    EXPECT_FALSE(model.statusMessage());
    EXPECT_TRUE(model.errorMessage());
}

TEST_F(Editing, UpdatingClampsHasNoLeastSizeAndIsNoStep) {
    const Uuid id = model.addRedaction({0.1, 0.1, 0.2, 0.2}).value();
    model.undo();
    model.redo();
    const bool dirtyBefore = model.isDirty();
    model.updateRedaction(id, {0.5, -0.5, 0, 0.25});
    EXPECT_EQ(rects(), (std::vector<PageRect>{{0.5, 0, 0, 0.25}}));
    EXPECT_EQ(model.isDirty(), dirtyBefore);
    model.updateRedaction(Uuid{}, {0, 0, 1, 1});
    EXPECT_EQ(rects(), (std::vector<PageRect>{{0.5, 0, 0, 0.25}}));
    model.undo();
    EXPECT_FALSE(model.canUndo());
}

TEST_F(Editing, ABoxOfAnotherPageIsOutOfReach) {
    const Uuid id = model.addRedaction({0.1, 0.1, 0.2, 0.2}).value();
    model.goToPage(1);
    model.remove(id);
    model.updateRedaction(id, {0, 0, 1, 1});
    model.selectedID = id;
    model.tool = RedactionStyle::noise;
    model.applyToolToSelection();
    model.goToPage(0);
    EXPECT_EQ(model.currentRedactions(),
              (PageLists::Page{{id, {0.1, 0.1, 0.2, 0.2}, RedactionStyle::solidBlack, false}}));
    model.undo();
    EXPECT_FALSE(model.canUndo());
}

TEST_F(Editing, RemovingKeepsTheOthersInOrderAndTheirSelection) {
    const Uuid first = model.addRedaction({0.1, 0.1, 0.2, 0.2}).value();
    const Uuid second = model.addRedaction({0.2, 0.1, 0.2, 0.2}).value();
    const Uuid third = model.addRedaction({0.3, 0.1, 0.2, 0.2}).value();
    model.remove(second);
    EXPECT_EQ(model.selectedID(), third);
    model.remove(third);
    EXPECT_FALSE(model.hasSelection());
    ASSERT_EQ(model.currentRedactions().size(), 1U);
    EXPECT_EQ(model.currentRedactions().front().id, first);
}

TEST_F(Editing, TheToolRestylesTheSelectionOnceAndKeepsDetected) {
    detectOneFace();
    const Uuid id = model.currentRedactions().front().id;
    model.selectedID = id;
    model.applyToolToSelection(); // already black
    EXPECT_EQ(model.undoTitle(), "Undo Auto-Detect");
    model.tool = RedactionStyle::noise;
    model.applyToolToSelection();
    EXPECT_EQ(model.undoTitle(), "Undo Change Style");
    EXPECT_EQ(model.currentRedactions().front().style, RedactionStyle::noise);
    EXPECT_TRUE(model.currentRedactions().front().detected);
    model.undo();
    EXPECT_EQ(model.currentRedactions().front().style, RedactionStyle::solidBlack);
    EXPECT_EQ(model.tool(), RedactionStyle::noise);
}

TEST_F(Editing, ClearingDetectedGoesOverAllPagesAndDropsTheSelection) {
    model.applyToAllPages = true;
    detectOneFace();
    model.applyToAllPages = false;
    ASSERT_TRUE(model.addRedaction({0, 0, 0.1, 0.1}));
    ASSERT_EQ(model.totalRedactionCount(), 4U);
    model.clearDetected();
    EXPECT_EQ(model.totalRedactionCount(), 1U);
    EXPECT_FALSE(model.hasSelection());
    EXPECT_FALSE(model.hasDetectedRedactions());
    const std::string title = model.undoTitle();
    model.clearDetected();
    EXPECT_EQ(title, "Undo Clear Detected");
    model.undo();
    EXPECT_EQ(model.totalRedactionCount(), 4U);
}

TEST_F(Editing, ClearingThePageLeavesTheOthers) {
    model.clearCurrentPage();
    EXPECT_FALSE(model.canUndo());
    ASSERT_TRUE(model.addRedaction({0, 0, 0.1, 0.1}));
    model.goToPage(1);
    ASSERT_TRUE(model.addRedaction({0, 0, 0.1, 0.1}));
    model.clearCurrentPage();
    EXPECT_FALSE(model.hasSelection());
    EXPECT_EQ(model.redactionCount(0), 1U);
    EXPECT_EQ(model.redactionCount(1), 0U);
    EXPECT_EQ(model.undoTitle(), "Undo Clear Page");
}

TEST_F(Editing, GoingToAPageDropsTheSelectionAlsoWhenItIsTheSame) {
    ASSERT_TRUE(model.addRedaction({0, 0, 0.1, 0.1}));
    for (const std::int64_t nowhere : {-1L, 3L, std::numeric_limits<std::int64_t>::max()}) {
        model.goToPage(nowhere);
        EXPECT_EQ(model.currentPage(), 0);
        EXPECT_TRUE(model.hasSelection());
    }
    model.goToPage(0);
    EXPECT_FALSE(model.hasSelection());
    model.goToPage(2);
    EXPECT_EQ(model.currentPixelSize(), (PixelSize{20, 12}));
    EXPECT_EQ(model.image(3), nullptr);
    EXPECT_EQ(model.image(-1), nullptr);
    EXPECT_EQ(model.redactionCount(-1), 0U);
}

TEST_F(Editing, ObserversHearOfEveryAssignmentBeforeItIsStored) {
    std::vector<RedactionStyle> seen;
    auto observation = model.observe([&] { seen.push_back(model.tool()); });
    model.tool = RedactionStyle::noise;
    model.tool = RedactionStyle::noise;
    EXPECT_EQ(seen, (std::vector{RedactionStyle::solidBlack, RedactionStyle::noise}));
    observation.reset();
    model.tool = RedactionStyle::solidWhite;
    EXPECT_EQ(seen.size(), 2U);
}

TEST_F(Editing, AnObserverHearsOfEachFieldThatAnOperationAssigns) {
    std::set<std::size_t> counts;
    std::vector<bool> dirty;
    const auto observation = model.observe([&] {
        counts.insert(model.totalRedactionCount());
        dirty.push_back(model.isDirty());
    });
    ASSERT_TRUE(model.addRedaction({0, 0, 0.1, 0.1}));
    // The dirty flag, the list, the selection, the message; the list is told with its old content.
    EXPECT_EQ(dirty, (std::vector{false, true, true, true}));
    EXPECT_EQ(counts, (std::set<std::size_t>{0, 1}));
}

TEST_F(Editing, ObserversMayLeaveWhileTheyAreNotified) {
    Observers::Observation first;
    Observers::Observation second;
    int heard = 0;
    first = model.observe([&] {
        ++heard;
        first.reset();
        second.reset();
    });
    second = model.observe([&] { ++heard; });
    model.applyToAllPages = true;
    model.applyToAllPages = false;
    EXPECT_EQ(heard, 1);
}

TEST(PageLists, CopiesShareUntilOneOfThemChanges) {
    PageLists lists(3);
    lists.edit(1).push_back({Uuid{}, {0, 0, 1, 1}, RedactionStyle::noise, true});
    const PageLists copy = lists;
    EXPECT_EQ(&copy[1], &lists[1]);
    lists.edit(1).clear();
    lists.edit(0).push_back({Uuid{}, {0, 0, 1, 1}, RedactionStyle::noise, true});
    EXPECT_EQ(copy[1].size(), 1U);
    EXPECT_EQ(copy[0].size(), 0U);
    EXPECT_EQ(lists[2].size(), 0U);
    EXPECT_EQ(&copy[2], &lists[2]);
}

} // namespace
} // namespace murkwell
