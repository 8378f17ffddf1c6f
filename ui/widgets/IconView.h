// An icon that is only looked at.
#pragma once

#include <QWidget>

namespace murkwell {

class IconView final : public QWidget {
    Q_OBJECT

public:
    explicit IconView(const QString& name, QWidget* parent = nullptr);

    void setIcon(const QString& name);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QString iconName;
};

} // namespace murkwell
