// A push button with an icon, a text, or both.
#pragma once

#include <QPushButton>
#include <QString>

class QTimer;

namespace murkwell {

class Button final : public QPushButton {
    Q_OBJECT

public:
    enum class Look {
        standard,
        prominent, // filled with the accent: the one thing to do next
        plain,     // no border until it is hovered
    };

    // Either text may be empty, not both. The name for screen readers is the label.
    Button(Look look, const QString& iconName, const QString& label, QWidget* parent = nullptr);

    // Shows the icon alone; name and tooltip stay whole.
    void setCompact(bool compact);

    // Takes a little room from both sides of the content.
    void setTight(bool tight);

    // Dims icon and text.
    void setSecondary(bool secondary);

    // A taller button, for a place of its own.
    void setLarge(bool large);

    // Shows a turning wheel and this text instead; empty for not busy.
    void setBusy(const QString& busyText);

    [[nodiscard]] QString label() const { return label_; }
    // The width that it would have in the other form.
    [[nodiscard]] int width(bool compact, bool tight) const;

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent* event) override;
    void enterEvent(QEnterEvent* event) override;
    void leaveEvent(QEvent* event) override;
    bool event(QEvent* event) override;

private:
    [[nodiscard]] bool showsText(bool compact) const;
    [[nodiscard]] QString shownText() const { return busyText_.isEmpty() ? label_ : busyText_; }
    [[nodiscard]] QFont labelFont() const;
    void paintBackground(QPainter& painter) const;
    void paintContent(QPainter& painter) const;
    void paintWheel(QPainter& painter, const QRectF& square, const QColor& colour) const;

    Look look;
    QString iconName;
    QString label_;
    QString busyText_;
    bool isCompact = false;
    bool isTight = false;
    bool isSecondary = false;
    bool isLarge = false;
    QTimer* turning; // runs while busy
    int wheelStep = 0;
};

} // namespace murkwell
