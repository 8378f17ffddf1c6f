#include "ui/widgets/Popover.h"

#include "tests/support/WindowUnderTest.h"
#include "ui/widgets/Button.h"
#include "ui/widgets/PillButton.h"

#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>

#include <gtest/gtest.h>

namespace murkwell {
namespace {

class Popovers : public testing::Test {
protected:
    Popovers() { window.openPdf(); }

    [[nodiscard]] QLineEdit* field() const { return window.view.findChild<QLineEdit*>(); }
    [[nodiscard]] bool findIsOpen() const { return field()->isVisibleTo(&window.view); }
    [[nodiscard]] bool isEnabled(const QString& name) const {
        const auto* const button = window.find<QAbstractButton>(name);
        return button != nullptr && button->isEnabled();
    }

    WindowUnderTest window;
    RedactModel& model = window.model;
};

TEST_F(Popovers, OpenAndCloseByTheirButtonEscapeAndClicksElsewhere) {
    const QString find = "Find & Redact";
    window.click(find);
    EXPECT_TRUE(findIsOpen());
    EXPECT_EQ(QApplication::focusWidget(), field());
    window.click(find);
    EXPECT_FALSE(findIsOpen());
    window.click(find);
    window.key(Qt::Key_Escape);
    EXPECT_FALSE(findIsOpen());
    EXPECT_EQ(QApplication::focusWidget(), window.find<QAbstractButton>(find));
    window.click(find);
    QTest::mouseClick(window.canvas(), Qt::LeftButton, {}, {10, 10});
    EXPECT_FALSE(findIsOpen());
    window.click(find);
    QTest::mouseClick(window.find("Black out every match of a word or number.") != nullptr
                          ? window.find("Black out every match of a word or number.")
                          : field()->parentWidget(),
                      Qt::LeftButton);
    EXPECT_TRUE(findIsOpen());
}

TEST_F(Popovers, OpeningOneClosesTheOther) {
    window.click("Find & Redact");
    window.click("Auto-Detect");
    EXPECT_FALSE(findIsOpen());
    EXPECT_NE(window.find("Emails"), nullptr);
}

TEST_F(Popovers, TabStaysInside) {
    window.click("Find & Redact");
    QTest::keyClicks(field(), "word");
    for (int i = 0; i < 12; ++i) {
        window.key(i < 6 ? Qt::Key_Tab : Qt::Key_Backtab);
        EXPECT_TRUE(field()->parentWidget()->isAncestorOf(QApplication::focusWidget()));
    }
}

TEST_F(Popovers, ReturnSearchesForTheTrimmedTextAndKeepsIt) {
    window.click("Find & Redact");
    window.key(Qt::Key_Return); // nothing typed
    EXPECT_TRUE(findIsOpen());
    QTest::keyClicks(field(), "   ");
    EXPECT_FALSE(isEnabled("Redact Matches"));
    field()->setText("  word ");
    EXPECT_TRUE(isEnabled("Redact Matches"));
    QTest::keyClick(field(), Qt::Key_Return);
    window.settle();
    EXPECT_FALSE(findIsOpen());
    EXPECT_EQ(model.activeOperation(), RedactModel::Operation::find);
    EXPECT_EQ(field()->text(), "  word ");
    window.bench.executor.runAll();
    EXPECT_EQ(model.statusMessage(), "Found nothing to redact on this page.");
}

TEST_F(Popovers, KindsAreChosenOneByOneOrTogether) {
    window.click("Auto-Detect");
    window.click("None");
    EXPECT_TRUE(model.detectKinds().empty());
    EXPECT_FALSE(isEnabled("Detect & Redact"));
    window.click("Faces");
    EXPECT_EQ(model.detectKinds(), PIIKinds{PIIKind::faces});
    window.click("All");
    EXPECT_EQ(model.detectKinds().size(), 6U);
    window.click("Emails");
    EXPECT_FALSE(model.detectKinds().contains(PIIKind::email));
}

TEST_F(Popovers, WhatCannotBeFoundHereIsSaidBeforehand) {
    const auto shown = [&] {
        QStringList texts;
        for (const QLabel* const label : window.view.findChildren<QLabel*>()) {
            if (label->isVisible() && label->foregroundRole() == QPalette::BrightText) {
                texts << label->text();
            }
        }
        return texts.join("|");
    };
    const auto opened = [&](const QString& popover) {
        window.click(popover);
        window.bench.executor.runAll();
        window.settle();
        return shown();
    };
    const QString noFaces = "Faces cannot be found. Missing or damaged: faces.onnx.";
    const QString lessText = "More text than usual will be missed. Missing or damaged: a, b.";
    EXPECT_EQ(opened("Auto-Detect"), "");
    window.click("Auto-Detect");
    window.bench.faces.ready = {Outcome::failed, {"faces.onnx"}};
    EXPECT_EQ(opened("Auto-Detect"), noFaces);
    EXPECT_EQ(opened("Find & Redact"), "");
    window.bench.text.ready = {Outcome::partial, {"a", "b"}};
    EXPECT_EQ(opened("Auto-Detect"), lessText + "\n" + noFaces);
    EXPECT_EQ(opened("Find & Redact"), lessText);

    // In the smallest window a long note pushes no button out.
    window.view.resize(window.view.minimumSize());
    window.bench.text.ready.missing.assign(12, "text-lines.onnx");
    opened("Auto-Detect");
    const auto* const button = window.find<QAbstractButton>("Detect & Redact");
    EXPECT_LT(button->mapTo(&window.view, button->rect().bottomLeft()).y(), window.view.height());
}

TEST_F(Popovers, ScopeIsSharedByBoth) {
    window.click("Auto-Detect");
    window.click("All Pages");
    EXPECT_TRUE(model.applyToAllPages());
    window.click("Find & Redact");
    EXPECT_TRUE(window.find<QAbstractButton>("All Pages")->isChecked());
}

TEST_F(Popovers, RunningSearchIsShownAndHoldsBothButtons) {
    window.click("Auto-Detect");
    window.click("Detect & Redact");
    auto* const running = window.find<Button>("Auto-Detect");
    EXPECT_FALSE(running->isEnabled() || isEnabled("Find & Redact"));
    EXPECT_EQ(running->accessibleDescription(), "Scanning…");
    EXPECT_EQ(window.find<Button>("Find & Redact")->accessibleDescription(), "");
    EXPECT_EQ(window.find("Emails"), nullptr); // the popover has closed
    window.bench.executor.runAll();
    window.settle();
    EXPECT_TRUE(running->isEnabled() && isEnabled("Find & Redact"));
    EXPECT_EQ(running->accessibleDescription(), "");
}

TEST_F(Popovers, DocumentMayBeReplacedWhileASearchRuns) {
    window.click("Auto-Detect");
    window.click("Detect & Redact");
    window.inbox.receive({window.bench.folder.write("other.pdf", "x")});
    window.settle();
    window.bench.executor.runAll();
    window.settle();
    EXPECT_EQ(model.documentTitle(), "other.pdf");
    EXPECT_TRUE(isEnabled("Auto-Detect"));
}

TEST_F(Popovers, PillFadesWhenPressedOrDisabled) {
    EXPECT_EQ(PillButton::opacity(true, false), 1.0);
    EXPECT_EQ(PillButton::opacity(true, true), 0.8);
    EXPECT_EQ(PillButton::opacity(false, true), 0.4);
}

} // namespace
} // namespace murkwell
