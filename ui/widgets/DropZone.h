// What the window shows while no document is open. A click anywhere asks for a file.
#pragma once

#include <QWidget>

class QLabel;

namespace murkwell {

class DropZone final : public QWidget {
    Q_OBJECT

public:
    explicit DropZone(QWidget* parent = nullptr);

    // From 0, nothing over the window, to 1, files to be dropped: between them while it changes.
    void setTargeted(double share);

signals:
    void chooseFile();

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    void paintZone(QPainter& painter) const;

    QWidget* symbol;
    QLabel* heading;
    QLabel* explanation;
    double targeted = 0;
    bool isPressed = false;
};

} // namespace murkwell
