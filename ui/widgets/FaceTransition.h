// Lets the window's old face fade into its new one.
#pragma once

#include <QPixmap>
#include <QVariantAnimation>
#include <QWidget>

namespace murkwell {

class FaceTransition final : public QWidget {
    Q_OBJECT

public:
    // Covers the owner with a picture of how it looks now, which fades and then goes.
    static void start(QWidget* owner);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    explicit FaceTransition(QWidget* owner);

    QPixmap before;
    QVariantAnimation fading; // of its opacity
};

} // namespace murkwell
