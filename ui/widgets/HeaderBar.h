// The open document: its name, its pages, and the way out of it.
#pragma once

#include "ui/WindowState.h"

#include <QWidget>

class QLabel;

namespace murkwell {

class Button;
class ElidedLabel;
class IconView;

class HeaderBar final : public QWidget {
    Q_OBJECT

public:
    explicit HeaderBar(RedactModel& model, QWidget* parent = nullptr);

    void refresh(const WindowState& state);

private:
    void addNavigation();

    RedactModel& model;
    IconView* kind; // PDF or picture
    ElidedLabel* title;
    QWidget* dirtyDot;
    QWidget* navigation;
    Button* previous;
    QLabel* position;
    Button* next;
    Button* close;
};

} // namespace murkwell
