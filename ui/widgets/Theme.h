// The colours of the window in its light and its dark form. They travel in the widgets' palette, so
// that a widget needs nothing but its palette to paint itself, and repaints when that changes.
#pragma once

#include <QColor>
#include <QPalette>

#include <optional>

class QWidget;

namespace murkwell {

struct Theme {
    // The accent is the desktop's, or none when it names none.
    [[nodiscard]] static Theme make(bool dark, const std::optional<QColor>& accent);

    // The one whose palette() the widget has.
    [[nodiscard]] static Theme of(const QWidget& widget);

    [[nodiscard]] QPalette palette() const;

    bool dark;
    QColor window;
    QColor bar;    // header, controls, sidebar, menus
    QColor canvas; // under the hatch
    QColor line;   // between areas, 1 px
    QColor text;
    QColor dimmed;
    QColor faintest;
    QColor button; // and popovers
    QColor field;
    QColor track; // of a segmented control
    QColor chosenSegment;
    QColor accent;     // outlines and switches
    QColor accentText; // the accent where it is text: at least 4.5:1 on bars and popovers
    QColor accentFill; // the accent under white text: at least 4.5:1
    QColor success;
    QColor warning;
};

// Black or white, whichever reads better on the background.
[[nodiscard]] QColor readableOn(const QColor& background);

// WCAG 2 contrast ratio, 1 to 21. Both colours opaque.
[[nodiscard]] double contrast(const QColor& one, const QColor& other);

[[nodiscard]] QColor withOpacity(QColor colour, double opacity);

} // namespace murkwell
