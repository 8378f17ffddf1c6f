// A small panel over the window that belongs to a button, which opens and closes it. Lies above all
// its siblings; a click elsewhere or Escape closes it.
#pragma once

#include <QPointer>
#include <QWidget>

#include <string_view>

class QLabel;
class QVBoxLayout;

namespace murkwell {

class Popover : public QWidget {
    Q_OBJECT

public:
    // The owner is the widget in which it may lie; the anchor is its button, inside the owner.
    Popover(const QString& name, QWidget* anchor, QWidget* owner);

    void open();
    void dismiss();
    [[nodiscard]] bool isOpen() const { return isVisible(); }

signals:
    void closed();

protected:
    // Where the content goes, from top to bottom.
    [[nodiscard]] QVBoxLayout* column() const { return content; }
    // Adds a place for a warning below what is in the column; there is none until one is set.
    void addWarning();
    void setWarning(std::string_view sentence); // in the user's language
    // Takes the keyboard when the popover opens.
    void setFirstFocus(QWidget* control) { firstFocus = control; }

    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;
    bool event(QEvent* event) override;
    bool focusNextPrevChild(bool next) override;

private:
    void place();
    [[nodiscard]] int widthIn(const QSize& window) const;
    [[nodiscard]] QRectF panel() const; // without shadow and pointer

    QVBoxLayout* content;
    QLabel* warning = nullptr;
    QPointer<QWidget> anchor;
    QPointer<QWidget> firstFocus;
    int pointerX = 0; // of the tip, in the popover
};

} // namespace murkwell
