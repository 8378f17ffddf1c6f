// What has happened, what went wrong, or what can be done: an icon and a sentence.
#pragma once

#include "ui/WindowState.h"

#include <QWidget>

namespace murkwell {

class StatusLine final : public QWidget {
    Q_OBJECT

public:
    explicit StatusLine(QWidget* parent = nullptr);

    void setStatus(const StatusText& text);

    [[nodiscard]] const StatusText& shown() const { return status; }
    [[nodiscard]] bool hasHeightForWidth() const override { return true; }
    // The hint's height is kept for every text, so that the window does not jump when they change.
    [[nodiscard]] int heightForWidth(int width) const override;
    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    [[nodiscard]] int textHeight(const QString& text, int width) const;

    StatusText status;
};

} // namespace murkwell
