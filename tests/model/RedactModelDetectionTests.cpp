#include "model/RedactModel.h"

#include "model/WhiteSpace.h"
#include "tests/support/ModelUnderTest.h"

#include <gtest/gtest.h>
#include <set>
#include <thread>
#include <utility>

namespace murkwell {
namespace {

using Operation = RedactModel::Operation;

// Far enough from each other not to be duplicates.
RecognizerRect face(int i) {
    return {0.05 + 0.1 * i, 0.4, 0.04, 0.1};
}

class Detection : public testing::Test {
protected:
    Detection() {
        bench.openPdf();
        bench.faces.answer = {face(0), face(1)};
    }

    void detect() {
        model.autoDetect();
        bench.executor.runAll();
    }

    ModelUnderTest bench;
    RedactModel& model = *bench.model;
};

TEST_F(Detection, FoundBoxesAreOneStepInTheStyleOfTheStart) {
    model.tool = RedactionStyle::noise;
    model.autoDetect();
    EXPECT_EQ(model.activeOperation(), Operation::autoDetect);
    model.tool = RedactionStyle::solidWhite;
    EXPECT_EQ(model.totalRedactionCount(), 0U);
    bench.executor.runAll();
    EXPECT_EQ(model.activeOperation(), std::nullopt);
    ASSERT_EQ(model.currentRedactions().size(), 2U);
    for (const Redaction& redaction : model.currentRedactions()) {
        EXPECT_EQ(redaction.style, RedactionStyle::noise);
        EXPECT_TRUE(redaction.detected);
    }
    EXPECT_EQ(model.statusMessage(), "Added 2 redactions.");
    EXPECT_EQ(model.undoTitle(), "Undo Auto-Detect");
    EXPECT_TRUE(model.isDirty());
    model.undo();
    EXPECT_FALSE(model.canUndo());
    EXPECT_EQ(model.totalRedactionCount(), 0U);
}

TEST_F(Detection, MessagesSpeakOfThePagesThatWereSearched) {
    struct Case {
        const char* what;
        bool allPages;
        std::size_t pages;
        int faces;
        const char* message;
    };
    for (const Case& each : std::vector<Case>{
             {"nothing here", false, 3, 0, "Found nothing to redact on this page."},
             {"nothing anywhere", true, 3, 0, "Found nothing to redact."},
             {"one here", false, 3, 1, "Added 1 redaction."},
             {"three here", false, 3, 3, "Added 3 redactions."},
             {"one on every page", true, 3, 1, "Added 3 redactions across 3 pages."},
             {"all of one page", true, 1, 1, "Added 1 redaction."},
             {"nothing on all of one page", true, 1, 0, "Found nothing to redact on this page."},
         }) {
        ModelUnderTest one(each.pages);
        one.openPdf();
        one.faces.answer->clear();
        for (int i = 0; i < each.faces; ++i) {
            one.faces.answer->push_back(face(i));
        }
        one.model->applyToAllPages = each.allPages;
        one.model->autoDetect();
        one.executor.runAll();
        EXPECT_EQ(one.model->statusMessage(), each.message) << each.what;
        EXPECT_EQ(one.model->isDirty(), each.faces > 0) << each.what;
    }
}

TEST_F(Detection, OneBoxOnOneOfManyPagesStillSpeaksOfPages) {
    model.applyToAllPages = true;
    bench.faces.answer = {face(0)};
    detect();
    model.goToPage(1);
    model.clearCurrentPage();
    detect();
    EXPECT_EQ(model.statusMessage(), "Added 1 redactions across 1 pages.");
}

TEST_F(Detection, WhatIsThereAlreadyIsNotAddedAgain) {
    detect();
    detect();
    EXPECT_EQ(model.statusMessage(), "Found nothing to redact on this page.");
    EXPECT_EQ(model.totalRedactionCount(), 2U);
    model.undo();
    EXPECT_FALSE(model.canUndo());
}

TEST_F(Detection, OfTwoFoundNearDuplicatesTheFirstIsAdded) {
    bench.faces.answer = {{{0.4, 0.4, 0.2, 0.2}, {0.405, 0.4, 0.2, 0.2}, {0.415, 0.4, 0.2, 0.2}}};
    detect();
    ASSERT_EQ(model.totalRedactionCount(), 2U); // the third repeats the dropped second only
    EXPECT_NEAR(model.currentRedactions()[0].rect.x, 0.376, 1e-9);
    EXPECT_NEAR(model.currentRedactions()[1].rect.x, 0.391, 1e-9);
}

TEST_F(Detection, WithoutKindsDocumentOrQueryNothingStarts) {
    model.open({"notes.txt"});
    model.detectKinds = PIIKinds{};
    model.autoDetect();
    for (const char* query : {"", " ", " \t\r\n", "\xC2\xA0\xE3\x80\x80\xE2\x80\xA8"}) {
        model.redactMatches(query, true);
    }
    EXPECT_EQ(model.activeOperation(), std::nullopt);
    EXPECT_TRUE(model.errorMessage()); // not even the messages are touched
    model.detectKinds = PIIKinds{PIIKind::faces};
    model.closeDocument();
    model.autoDetect();
    model.redactMatches("acme", false);
    EXPECT_TRUE(bench.executor.backgroundJobs.empty());
}

TEST_F(Detection, TheQueryIsTrimmedAtBothEndsOnly) {
    EXPECT_EQ(withoutOuterWhiteSpace(" \n a b\t"), "a b");
    EXPECT_EQ(withoutOuterWhiteSpace("\xE2\x80\x89\xC2\x85\xC3\x85\xE1\x9A\x80"), "\xC3\x85");
    bench.text.answer = {asciiLine("call Acme Inc now")};
    model.redactMatches("  acme inc\n", false);
    EXPECT_EQ(model.activeOperation(), Operation::find);
    bench.executor.runAll();
    EXPECT_EQ(model.totalRedactionCount(), 1U);
    EXPECT_EQ(model.undoTitle(), "Undo Redact Matches");
}

TEST_F(Detection, ASecondSearchIsIgnoredUntilTheFirstHasEnded) {
    model.autoDetect();
    model.redactMatches("acme", false);
    model.autoDetect();
    EXPECT_EQ(bench.executor.backgroundJobs.size(), 1U);
    EXPECT_EQ(model.activeOperation(), Operation::autoDetect);
    bench.executor.runAll();
    model.redactMatches("acme", false);
    EXPECT_EQ(model.activeOperation(), Operation::find);
}

TEST_F(Detection, OnlyTheCurrentPageIsSearchedUnlessAllAreWanted) {
    detect();
    EXPECT_EQ(bench.faces.calls, 1);
    model.applyToAllPages = true;
    detect();
    EXPECT_EQ(bench.faces.calls, 4);
}

TEST_F(Detection, WhatCouldNotBeSearchedIsAnErrorAndWhatWasFoundElsewhereIsKept) {
    const PIIKinds all(allPIIKinds.begin(), allPIIKinds.end());
    using Message = std::optional<std::string>;
    struct Case {
        const char* what;
        PIIKinds kinds;
        std::set<int> textFails, facesFail; // page indices
        bool byOneReader, allPages, aFaceOnEach;
        Message status, error;
        bool coversEverything;
    };
    for (const Case& each : std::vector<Case>{
             {"no engine",
              all,
              {0},
              {0},
              false,
              false,
              true,
              {},
              "Couldn’t search this page.",
              false},
             {"the one engine needed",
              {PIIKind::email},
              {0},
              {},
              false,
              false,
              true,
              {},
              "Couldn’t search this page.",
              false},
             {"no faces",
              all,
              {},
              {0},
              false,
              false,
              true,
              {},
              "Couldn’t search this page for faces.",
              false},
             {"no text",
              all,
              {0},
              {},
              false,
              false,
              true,
              "Added 1 redaction.",
              "Added 1 redaction. Couldn’t search this page for text.",
              false},
             {"no faces on one page",
              all,
              {},
              {1},
              false,
              true,
              true,
              "Added 2 redactions across 2 pages.",
              "Added 2 redactions across 2 pages. Couldn’t search 1 of 3 pages for faces (2).",
              false},
             {"each page another way",
              all,
              {0, 2},
              {2},
              false,
              true,
              false,
              {},
              "Couldn’t search 1 of 3 pages (3). Couldn’t search 1 of 3 pages for text (1).",
              false},
             {"another page",
              all,
              {1},
              {2},
              false,
              false,
              false,
              "Found nothing to redact on this page.",
              {},
              true},
             {"one reader",
              all,
              {},
              {},
              true,
              false,
              false,
              "Found nothing to redact on this page.",
              "Found nothing to redact on this page. Only one of two readers read the text of this "
              "page.",
              true},
             {"one reader everywhere but where none",
              all,
              {1},
              {},
              true,
              true,
              false,
              {},
              "Couldn’t search 1 of 3 pages for text (2). Only one of two readers read the text of "
              "2 of 3 pages (1, 3).",
              false},
         }) {
        ModelUnderTest one;
        one.openPdf();
        constexpr int heightOfFirst = 10;
        for (const int page : each.textFails) {
            one.text.failingHeights.insert(heightOfFirst + page);
        }
        for (const int page : each.facesFail) {
            one.faces.failingHeights.insert(heightOfFirst + page);
        }
        one.text.outcome = each.byOneReader ? Outcome::partial : Outcome::whole;
        if (each.aFaceOnEach) {
            one.faces.answer = {face(0)};
        }
        one.model->detectKinds = each.kinds;
        one.model->applyToAllPages = each.allPages;
        one.model->autoDetect();
        one.executor.runAll();
        EXPECT_EQ(one.model->statusMessage(), each.status) << each.what;
        EXPECT_EQ(one.model->errorMessage(), each.error) << each.what;
        EXPECT_EQ(one.model->lastSearch()->coversEverything(), each.coversEverything) << each.what;
        EXPECT_EQ(one.model->isDirty(), one.model->totalRedactionCount() > 0) << each.what;
    }
}

TEST_F(Detection, WhatIsMissingIsLearnedInTheBackground) {
    bench.faces.ready = {Outcome::failed, {"faces.onnx"}};
    model.prepareSearch();
    model.prepareSearch(); // is under way
    EXPECT_EQ(bench.executor.backgroundJobs.size(), 1U);
    EXPECT_EQ(model.searchReadiness().faces.outcome, Outcome::whole);
    bench.executor.runAll();
    EXPECT_EQ(model.searchReadiness().faces.outcome, Outcome::failed);
    EXPECT_EQ(model.searchReadiness().faces.missing, std::vector<std::string>{"faces.onnx"});
    bench.faces.ready = {};
    model.autoDetect();
    model.prepareSearch(); // waits for the search
    EXPECT_EQ(bench.executor.backgroundJobs.size(), 1U);
    bench.executor.runAll();
    model.prepareSearch(); // somebody may have installed it
    bench.executor.runAll();
    EXPECT_EQ(model.searchReadiness().faces.outcome, Outcome::whole);
}

// What the user does between the search and its end.

TEST_F(Detection, BoxesDrawnMeanwhileSuppressAndAreKept) {
    detect();
    const PageRect first = model.currentRedactions()[0].rect;
    model.clearCurrentPage();
    model.autoDetect();
    bench.executor.runBackground();
    const Uuid drawn = model.addRedaction(first).value();
    bench.executor.runMain();
    ASSERT_EQ(model.totalRedactionCount(), 2U);
    EXPECT_EQ(model.currentRedactions()[0].id, drawn);
    EXPECT_EQ(model.selectedID(), drawn);
    model.undo();
    EXPECT_EQ(model.totalRedactionCount(), 1U); // the step holds the state at the end
}

TEST_F(Detection, UndoneMeanwhileTheEndIsANewStep) {
    ASSERT_TRUE(model.addRedaction({0.1, 0.8, 0.1, 0.1}));
    model.autoDetect();
    bench.executor.runBackground();
    model.undo();
    ASSERT_TRUE(model.canRedo());
    bench.executor.runMain();
    EXPECT_FALSE(model.canRedo());
    EXPECT_EQ(model.totalRedactionCount(), 2U);
}

TEST_F(Detection, AnotherPageMeanwhileStillFillsTheOneSearched) {
    model.autoDetect();
    bench.executor.runBackground();
    model.goToPage(2);
    bench.executor.runMain();
    EXPECT_EQ(model.redactionCount(0), 2U);
    model.goToPage(0);
    model.undo();
    EXPECT_EQ(model.currentPage(), 2); // shown when the results arrived
}

TEST_F(Detection, ClosedMeanwhileNothingIsAdded) {
    model.autoDetect();
    bench.executor.runBackground();
    model.closeDocument();
    EXPECT_EQ(model.activeOperation(), Operation::autoDetect);
    bench.executor.runMain();
    EXPECT_EQ(model.activeOperation(), std::nullopt);
    EXPECT_EQ(model.statusMessage(), "Found nothing to redact on this page.");
    EXPECT_FALSE(model.isDirty() || model.canUndo());
}

TEST_F(Detection, AnotherDocumentMeanwhileGetsTheBoxesOfThePagesItHas) {
    model.applyToAllPages = true;
    model.autoDetect();
    bench.openPicture(); // before the search itself, which keeps its own bitmaps
    bench.executor.runAll();
    EXPECT_EQ(bench.faces.calls, 3);
    EXPECT_EQ(model.totalRedactionCount(), 2U);
    EXPECT_EQ(model.statusMessage(), "Added 2 redactions across 1 pages.");
}

TEST_F(Detection, ASearchThatThrowsOrCannotBeginHasFailed) {
    class Thrower final : public FaceDetector {
        std::optional<std::vector<RecognizerRect>> detectFaces(const Bitmap&) override {
            throw std::bad_alloc();
        }
        Readiness readiness() override { return {}; }
    } thrower;
    class Unable final : public Executor {
        bool background(std::function<void()>) override { return false; }
        void onMain(std::function<void()>) override {}
    } unable;
    const Services services = bench.services();
    Services throwing{services.executor,    services.panels,
                      services.preferences, services.fileManager,
                      services.documents,   {bench.text, thrower, bench.engines.random}};
    Services busy{unable,
                  services.panels,
                  services.preferences,
                  services.fileManager,
                  services.documents,
                  services.detection};
    for (const auto& [given, message] : {std::pair(throwing, "Couldn’t search this page."),
                                         std::pair(busy, "The search could not be finished.")}) {
        RedactModel other(given);
        other.open({bench.folder.write("other.pdf", "")});
        other.autoDetect();
        bench.executor.runAll();
        EXPECT_FALSE(other.activeOperation());
        EXPECT_EQ(other.errorMessage(), message);
        EXPECT_FALSE(other.statusMessage());
    }
}

TEST_F(Detection, TheModelGoneMeanwhileNothingHappens) {
    model.autoDetect();
    bench.executor.runBackground();
    bench.model.reset();
    bench.executor.runMain();
}

TEST_F(Detection, ItsEndInsideAPanelIsPartOfWhatIsSaved) {
    model.autoDetect();
    bench.panels.saved = bench.folder / "work.murkwell";
    bench.panels.whileUp = [&] { bench.executor.runAll(); };
    model.saveSessionAs();
    bench.panels.whileUp = [] {};
    model.open({bench.folder / "work.murkwell"});
    EXPECT_EQ(model.totalRedactionCount(), 2U);
}

// A real thread searches while the main one edits: for the thread sanitizer.
class ThreadedExecutor final : public Executor {
public:
    bool background(std::function<void()> job) override {
        thread = std::thread(std::move(job));
        return true;
    }
    void onMain(std::function<void()> job) override { finish = std::move(job); }

    std::thread thread;
    std::function<void()> finish;
};

TEST_F(Detection, TheSearchSharesNothingThatTheUserChanges) {
    ThreadedExecutor threaded;
    const Services services = bench.services();
    RedactModel other({threaded, services.panels, services.preferences, services.fileManager,
                       services.documents, services.detection});
    other.open({bench.folder.write("other.pdf", "")});
    other.applyToAllPages = true;
    other.autoDetect();
    for (int i = 0; i < 200; ++i) {
        other.tool = allRedactionStyles[static_cast<std::size_t>(i) % 3];
        other.detectKinds = PIIKinds{};
        (void)other.addRedaction({0.1, 0.1, 0.2, 0.2});
        other.goToPage(i % 3);
        if (i % 50 == 49) {
            other.closeDocument();
        }
    }
    threaded.thread.join();
    threaded.finish();
    EXPECT_EQ(other.activeOperation(), std::nullopt);
}

} // namespace
} // namespace murkwell
