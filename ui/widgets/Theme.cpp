#include "ui/widgets/Theme.h"

#include <QWidget>

#include <algorithm>
#include <cmath>

namespace murkwell {
namespace {

// The relative luminance of WCAG 2.
double luminance(const QColor& colour) {
    const auto linear = [](double channel) {
        return channel <= 0.04045 ? channel / 12.92 : std::pow((channel + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(colour.redF()) + 0.7152 * linear(colour.greenF()) +
           0.0722 * linear(colour.blueF());
}

QColor mixed(const QColor& one, const QColor& other, double share) {
    const auto channel = [share](int a, int b) {
        return static_cast<int>(std::lround(a + (b - a) * share));
    };
    return {channel(one.red(), other.red()), channel(one.green(), other.green()),
            channel(one.blue(), other.blue())};
}

// The colour moved towards black or white until it is text that can be read on the background.
QColor legible(const QColor& colour, const QColor& background) {
    constexpr double textContrast = 4.5;
    const QColor pole = readableOn(background);
    QColor result = colour;
    for (double share = 0; share < 1 && contrast(result, background) < textContrast;
         share += 0.05) {
        result = mixed(colour, pole, share);
    }
    return result;
}

Theme lightColours() {
    Theme theme{};
    theme.dark = false;
    theme.window = QColor("#fafafb");
    theme.bar = QColor("#f3f3f5");
    theme.canvas = QColor("#ececef");
    theme.line = QColor("#dcdce0");
    theme.text = QColor("#1d1d21");
    theme.dimmed = QColor("#5f6068");
    theme.faintest = QColor("#c9cad0");
    theme.button = QColor("#ffffff");
    theme.field = QColor("#ffffff");
    theme.track = QColor("#e6e6e9");
    theme.chosenSegment = QColor("#ffffff");
    theme.accent = QColor("#1a5fb4");
    theme.success = QColor("#1b7f37");
    theme.warning = QColor("#a85200");
    return theme;
}

Theme darkColours() {
    Theme theme{};
    theme.dark = true;
    theme.window = QColor("#1f1f23");
    theme.bar = QColor("#27272b");
    theme.canvas = QColor("#18181b");
    theme.line = QColor("#38383e");
    theme.text = QColor("#f1f1f4");
    theme.dimmed = QColor("#a5a6ae");
    theme.faintest = QColor("#4a4a52");
    theme.button = QColor("#2d2d32");
    theme.field = QColor("#1f1f23");
    theme.track = QColor("#1b1b1f");
    theme.chosenSegment = QColor("#404047");
    theme.accent = QColor("#62a0ea");
    theme.success = QColor("#57e389");
    theme.warning = QColor("#ffb454");
    return theme;
}

} // namespace

Theme Theme::make(bool dark, const std::optional<QColor>& accent) {
    Theme theme = dark ? darkColours() : lightColours();
    if (accent) {
        theme.accent = *accent;
    }
    theme.accentText = legible(theme.accent, dark ? theme.button : theme.canvas);
    theme.accentFill = accent || !dark ? legible(theme.accent, Qt::white) : QColor("#1a5fb4");
    return theme;
}

Theme Theme::of(const QWidget& widget) {
    const QPalette palette = widget.palette();
    const bool dark = palette.color(QPalette::Window).lightness() < 128;
    const QColor accent = palette.color(QPalette::Active, QPalette::Highlight);
    // The default accent of the dark form has a fill of its own, which make() knows.
    const bool isDefault = accent == (dark ? darkColours() : lightColours()).accent;
    return make(dark, isDefault ? std::nullopt : std::optional(accent));
}

QPalette Theme::palette() const {
    QPalette palette;
    palette.setColor(QPalette::Window, bar);
    palette.setColor(QPalette::WindowText, text);
    palette.setColor(QPalette::Base, field);
    palette.setColor(QPalette::AlternateBase, bar);
    palette.setColor(QPalette::Text, text);
    palette.setColor(QPalette::PlaceholderText, dimmed);
    palette.setColor(QPalette::Button, button);
    palette.setColor(QPalette::ButtonText, text);
    palette.setColor(QPalette::BrightText, warning);
    palette.setColor(QPalette::Light, window);
    palette.setColor(QPalette::Midlight, line);
    palette.setColor(QPalette::Mid, faintest);
    palette.setColor(QPalette::Dark, dimmed);
    palette.setColor(QPalette::Shadow, Qt::black);
    palette.setColor(QPalette::Highlight, accent);
    palette.setColor(QPalette::HighlightedText, readableOn(accent));
    palette.setColor(QPalette::Link, accentText);
    palette.setColor(QPalette::LinkVisited, accentText);
    palette.setColor(QPalette::ToolTipBase, button);
    palette.setColor(QPalette::ToolTipText, text);
    const QColor disabled = mixed(text, bar, 0.6);
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) {
        palette.setColor(QPalette::Disabled, role, disabled);
    }
    return palette;
}

QColor readableOn(const QColor& background) {
    return contrast(Qt::white, background) >= contrast(Qt::black, background) ? Qt::white
                                                                              : Qt::black;
}

double contrast(const QColor& one, const QColor& other) {
    const double a = luminance(one);
    const double b = luminance(other);
    return (std::max(a, b) + 0.05) / (std::min(a, b) + 0.05);
}

QColor withOpacity(QColor colour, double opacity) {
    colour.setAlphaF(static_cast<float>(opacity));
    return colour;
}

} // namespace murkwell
