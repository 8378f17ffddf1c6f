#include "ui/WindowState.h"

#include "tests/support/ModelUnderTest.h"
#include "ui/FileOpenInbox.h"

#include <gtest/gtest.h>

namespace murkwell {
namespace {

using Kind = StatusText::Kind;

TEST(WindowState, WithoutADocumentNothingCanBeDone) {
    ModelUnderTest bench;
    const WindowState state(*bench.model);
    EXPECT_FALSE(state.hasDocument || state.hasManyPages || state.canDelete || state.canClear ||
                 state.canExport || state.canReveal || state.canGoBack || state.canGoForward);
    EXPECT_EQ(state.status, StatusText{});
    EXPECT_EQ(state.title, "");
}

TEST(WindowState, FollowsTheWork) {
    ModelUnderTest bench;
    RedactModel& model = *bench.model;
    bench.openPdf();
    WindowState state(model);
    EXPECT_TRUE(state.hasDocument && state.isPDF && state.hasManyPages && state.canGoForward);
    EXPECT_FALSE(state.canGoBack || state.isDirty || state.canExport || state.canClearPage);
    EXPECT_EQ(state.status.kind, Kind::hint);
    model.addRedaction({0.1, 0.1, 0.1, 0.1});
    model.goToPage(2);
    state = WindowState(model);
    EXPECT_TRUE(state.canGoBack && state.isDirty && state.canExport && state.canClear);
    EXPECT_FALSE(state.canGoForward || state.canClearPage || state.canDelete ||
                 state.canClearDetected || state.canReveal);
    bench.panels.saved = bench.folder.path / "out.pdf";
    model.exportDocument();
    state = WindowState(model);
    EXPECT_TRUE(state.canReveal);
    EXPECT_EQ(state.status, (StatusText{Kind::success, "Redacted out.pdf"}));
}

TEST(WindowState, SinglePageHasNoPagesToWalk) {
    ModelUnderTest bench;
    bench.openPicture();
    const WindowState state(*bench.model);
    EXPECT_FALSE(state.hasManyPages || state.isPDF || state.canGoForward);
    EXPECT_EQ(state.pageCount, 1);
}

TEST(WindowState, ErrorIsShownBeforeWhatSucceeded) {
    ModelUnderTest bench;
    bench.model->open({bench.folder.path / "letter.docx"});
    const WindowState state(*bench.model);
    EXPECT_EQ(state.status.kind, Kind::warning);
    EXPECT_EQ(state.status.text, "No supported file found. Drop an image or a PDF.");
}

TEST(WindowState, WhatDidNotComeWholeIsSaidUntilSomethingElseIs) {
    ModelUnderTest bench;
    bench.engines.renderer.pages->push_back({});
    bench.engines.renderer.pages->front().isComplete = false;
    bench.openPdf();
    EXPECT_EQ(WindowState(*bench.model).status,
              (StatusText{StatusText::Kind::warning,
                          "1 page could not be shown. Page 1 may be incomplete."}));
}

TEST(WindowState, OneSearchAtATime) {
    ModelUnderTest bench;
    RedactModel& model = *bench.model;
    bench.openPdf();
    EXPECT_TRUE(WindowState(model).canDetect);
    EXPECT_TRUE(canRedactMatches(WindowState(model), "word"));
    model.autoDetect();
    const WindowState running(model);
    EXPECT_EQ(running.running, RedactModel::Operation::autoDetect);
    EXPECT_FALSE(running.canSearch || running.canDetect || canRedactMatches(running, "word"));
    bench.executor.runAll();
    model.detectKinds = PIIKinds{};
    EXPECT_TRUE(WindowState(model).canSearch);
    EXPECT_FALSE(WindowState(model).canDetect);
}

TEST(WindowState, QueryOfSpacesIsNone) {
    ModelUnderTest bench;
    for (const char* const query : {"", "   ", " \t "}) {
        EXPECT_FALSE(canRedactMatches(WindowState(*bench.model), query));
    }
}

TEST(WindowState, CountsAreSpokenInTheRightNumber) {
    EXPECT_EQ(redactionCountLabel(1), "1 redaction");
    EXPECT_EQ(redactionCountLabel(0), "0 redactions");
    EXPECT_EQ(redactionCountLabel(12), "12 redactions");
    EXPECT_EQ(pageOfPagesLabel(0, 14), "Page 1 of 14");
}

TEST(WindowState, BoxesHaveNamesToBeReadAloud) {
    using enum RedactionStyle;
    const auto name = [](RedactionStyle style, bool detected) {
        return redactionName(1, {Uuid{}, {}, style, detected});
    };
    EXPECT_EQ(name(solidBlack, true), "Redaction 2, black bar, detected");
    EXPECT_EQ(name(solidBlack, false), "Redaction 2, black bar");
    EXPECT_EQ(name(solidWhite, true), "Redaction 2, white bar, detected");
    EXPECT_EQ(name(noise, false), "Redaction 2, noise");
}

TEST(FileOpenInbox, NewerFilesReplaceThoseThatWait) {
    FileOpenInbox inbox;
    inbox.receive({"a.pdf"});
    inbox.receive({"b.pdf", "c.pdf"});
    EXPECT_EQ(inbox.drain(), (std::vector<std::filesystem::path>{"b.pdf", "c.pdf"}));
    EXPECT_TRUE(inbox.drain().empty());
}

TEST(FileOpenInbox, AnnouncesWhatCanAlreadyBeTaken) {
    FileOpenInbox inbox;
    std::vector<std::filesystem::path> taken;
    auto observation = inbox.observe([&] { taken = inbox.drain(); });
    inbox.receive({"a.pdf"});
    EXPECT_EQ(taken, std::vector<std::filesystem::path>{"a.pdf"});
    observation.reset();
    inbox.receive({"b.pdf"});
    EXPECT_EQ(inbox.pending().size(), 1U);
}

} // namespace
} // namespace murkwell
