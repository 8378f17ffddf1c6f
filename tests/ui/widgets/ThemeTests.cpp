#include "ui/widgets/Theme.h"

#include <QWidget>

#include <gtest/gtest.h>

namespace murkwell {
namespace {

// The accents that desktops offer, light yellow among them.
const QColor accents[] = {"#3584e4", "#2190a4", "#3a944a", "#c88800", "#ed5b00", "#e62d42",
                          "#d56199", "#9141ac", "#6f8396", "#fff27a", "#101010"};

std::vector<Theme> themes() {
    std::vector<Theme> all;
    for (const bool dark : {false, true}) {
        all.push_back(Theme::make(dark, std::nullopt));
        for (const QColor& accent : accents) {
            all.push_back(Theme::make(dark, accent));
        }
    }
    return all;
}

TEST(Theme, TextCanBeReadOnEverySurface) {
    for (const Theme& theme : themes()) {
        for (const QColor& surface : {theme.bar, theme.canvas, theme.button, theme.field}) {
            EXPECT_GE(contrast(theme.text, surface), 4.5);
            EXPECT_GE(contrast(theme.dimmed, surface), 4.5);
        }
        EXPECT_GE(contrast(theme.success, theme.bar), 4.5);
        EXPECT_GE(contrast(theme.warning, theme.bar), 4.5);
        EXPECT_GE(contrast(theme.accentText, theme.button), 4.5);
        EXPECT_GE(contrast(theme.accentText, theme.bar), 4.5);
        EXPECT_GE(contrast(Qt::white, theme.accentFill), 4.5);
        EXPECT_GE(contrast(readableOn(theme.accent), theme.accent), 4.5);
    }
}

// The figures are those that WCAG 2 gives as examples of its formula.
TEST(Theme, ContrastIsThatOfTheGuidelines) {
    EXPECT_NEAR(contrast(Qt::white, Qt::black), 21, 1e-6);
    EXPECT_NEAR(contrast(QColor("#777777"), Qt::white), 4.48, 0.005);
    EXPECT_EQ(contrast(Qt::red, Qt::blue), contrast(Qt::blue, Qt::red));
}

TEST(Theme, TravelsInThePalette) {
    for (const Theme& theme : themes()) {
        QWidget widget;
        widget.setPalette(theme.palette());
        const Theme read = Theme::of(widget);
        EXPECT_EQ(read.dark, theme.dark);
        EXPECT_EQ(read.accent, theme.accent);
        EXPECT_EQ(read.accentFill, theme.accentFill);
    }
}

} // namespace
} // namespace murkwell
