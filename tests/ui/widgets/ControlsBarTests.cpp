#include "ui/widgets/ControlsBar.h"

#include "core/Localization.h"
#include "tests/support/WindowUnderTest.h"
#include "ui/widgets/Button.h"
#include "ui/widgets/SegmentedControl.h"

#include <QAbstractButton>
#include <QCheckBox>

#include <gtest/gtest.h>

namespace murkwell {
namespace {

// Resets the language at the end of a test.
struct Language {
    explicit Language(const std::string& name) {
        useCatalogue(findCatalogue(MURKWELL_CATALOGUES, std::vector{name}));
    }
    ~Language() { useCatalogue(std::nullopt); }
    Language(const Language&) = delete;
    Language& operator=(const Language&) = delete;
};

class NarrowWindow : public testing::TestWithParam<std::tuple<std::string, int>> {};

// Nothing is cut and nothing overlaps, with the sidebar and every optional control shown.
TEST_P(NarrowWindow, ControlsRowFits) {
    const auto& [name, width] = GetParam();
    const Language language(name);
    WindowUnderTest window;
    window.openPdf();
    for (int i = 0; i < 1234; ++i) {
        window.model.addRedaction({0.1, 0.1, 0.1, 0.1});
    }
    window.bench.panels.saved = window.bench.folder.path / "out.pdf";
    window.model.exportDocument();
    window.view.resize(width, 480);
    window.settle();
    EXPECT_EQ(window.view.width(), width); // nothing asks for more
    const auto* const bar = window.view.findChild<ControlsBar*>();
    int right = 0;
    for (const QAbstractButton* const button : bar->findChildren<QAbstractButton*>()) {
        if (!button->isVisibleTo(bar)) {
            continue;
        }
        const int left = button->mapTo(bar, QPoint()).x();
        EXPECT_GE(left, right) << button->accessibleName().toStdString();
        EXPECT_GE(button->width(), button->sizeHint().width())
            << button->accessibleName().toStdString();
        EXPECT_FALSE(button->accessibleName().isEmpty());
        right = left + button->width();
    }
    EXPECT_LE(right, bar->width() - 16);
    EXPECT_GT(right, 0);
}

// In every language, with a large font.
TEST_P(NarrowWindow, PopoversCutNoText) {
    const auto& [name, width] = GetParam();
    const Language language(name);
    const QFont usual = QApplication::font();
    QFont large = usual;
    large.setPointSizeF(usual.pointSizeF() * 1.3);
    QApplication::setFont(large);
    {
        WindowUnderTest window;
        window.openPdf();
        window.view.resize(width, 700);
        window.settle();
        window.view.findChild<ControlsBar*>()->autoDetectButton()->click();
        window.settle();
        int rows = 0;
        for (const QAbstractButton* const row : window.view.findChildren<QCheckBox*>()) {
            if (row->isVisibleTo(&window.view)) {
                EXPECT_GE(row->width(), row->sizeHint().width()) << row->text().toStdString();
                ++rows;
            }
        }
        EXPECT_EQ(rows, 6);
    }
    QApplication::setFont(usual);
}

INSTANTIATE_TEST_SUITE_P(Widths, NarrowWindow,
                         testing::Combine(testing::Values("en", "de", "fr", "es"),
                                          testing::Values(700, 800, 960, 1400)));

TEST(ControlsBar, TellsLessTheNarrowerItGets) {
    WindowUnderTest window;
    window.openPdf();
    window.model.addRedaction({0.1, 0.1, 0.1, 0.1});
    const auto widthOf = [&](const QString& name, int windowWidth) {
        window.view.resize(windowWidth, 660);
        window.settle();
        return window.find<QAbstractButton>(name)->width();
    };
    EXPECT_GT(widthOf("White bar", 1600), widthOf("White bar", 960));
    EXPECT_GT(widthOf("Clear", 1600), widthOf("Clear", 700));
    EXPECT_EQ(widthOf("Export…", 1600), widthOf("Export…", 700));
}

} // namespace
} // namespace murkwell
