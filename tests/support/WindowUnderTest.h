// The content of the window on a model of stand-ins, shown on the offscreen display.
#pragma once

#include "tests/support/ModelUnderTest.h"
#include "ui/FileOpenInbox.h"
#include "ui/widgets/CanvasWidget.h"
#include "ui/widgets/ContentView.h"
#include "ui/widgets/Theme.h"

#include <QAbstractButton>
#include <QApplication>
#include <QtTest/QTest>

#include <gtest/gtest.h>

namespace murkwell {

struct WindowUnderTest {
    explicit WindowUnderTest(std::size_t pdfPages = 3, bool isShown = true) : bench(pdfPages) {
        view.setAnimated(false);
        view.resize(960, 660);
        if (isShown) {
            show();
        }
    }

    void show() {
        view.show();
        view.activateWindow();
        settle();
    }

    // Lets the window read the model again.
    static void settle() {
        for (int i = 0; i < 3; ++i) {
            QApplication::processEvents();
        }
    }

    void openPdf() {
        bench.openPdf();
        settle();
    }

    // The visible widget of that name, whatever its kind; null when there is none.
    template <typename Widget = QWidget>
    [[nodiscard]] Widget* find(const QString& name) const {
        for (Widget* const widget : view.findChildren<Widget*>()) {
            if (widget->accessibleName() == name && widget->isVisibleTo(&view)) {
                return widget;
            }
        }
        return nullptr;
    }

    void click(const QString& name) {
        QWidget* const widget = find<QAbstractButton>(name);
        ASSERT_NE(widget, nullptr) << name.toStdString();
        QTest::mouseClick(widget, Qt::LeftButton);
        settle();
    }

    [[nodiscard]] CanvasWidget* canvas() const { return view.findChild<CanvasWidget*>(); }

    // A point of the canvas, given in fractions of the page.
    [[nodiscard]] QPoint onPage(double x, double y) const {
        const QRect page =
            canvas()->boxRect({Uuid{}, {0, 0, 1, 1}, RedactionStyle::solidBlack, false});
        return page.topLeft() + QPointF(x * page.width(), y * page.height()).toPoint();
    }

    void dragOnPage(QPoint from, QPoint to) {
        QTest::mousePress(canvas(), Qt::LeftButton, {}, from);
        QTest::mouseMove(canvas(), (from + to) / 2);
        QTest::mouseMove(canvas(), to);
        QTest::mouseRelease(canvas(), Qt::LeftButton, {}, to);
        settle();
    }

    void key(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) {
        QWidget* const focus = QApplication::focusWidget();
        QTest::keyClick(focus != nullptr ? focus : &view, key, modifiers);
        settle();
    }

    ModelUnderTest bench;
    RedactModel& model = *bench.model;
    FileOpenInbox inbox;
    ContentView view{model, inbox};
};

} // namespace murkwell
