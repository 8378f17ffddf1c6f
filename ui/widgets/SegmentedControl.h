// A row of choices of which one is chosen, on a common track. Each is a radio button to the
// keyboard and to screen readers.
#pragma once

#include <QAbstractButton>
#include <QList>
#include <QWidget>

namespace murkwell {

// Which segments show their text besides their icon. Those without an icon always do.
enum class SegmentTexts { all, chosenOnly, none };

class Segment final : public QAbstractButton {
    Q_OBJECT

public:
    Segment(const QString& iconName, const QString& label, QWidget* parent);

    void setTexts(SegmentTexts texts);
    void setTight(bool tight);
    [[nodiscard]] int width(SegmentTexts texts, bool tight) const;
    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    [[nodiscard]] bool showsText(SegmentTexts texts) const;

    QString iconName;
    QString label;
    SegmentTexts shownTexts = SegmentTexts::all;
    bool isTight = false;
};

class SegmentedControl final : public QWidget {
    Q_OBJECT

public:
    // The name is for screen readers.
    explicit SegmentedControl(const QString& name, QWidget* parent = nullptr);

    void addSegment(const QString& iconName, const QString& label);
    // Does not emit chosen().
    void setChosen(int index);
    void setTexts(SegmentTexts texts);
    // Takes a little room from both sides of every segment.
    void setTight(bool tight);
    // The width that it would have in that form.
    [[nodiscard]] int width(SegmentTexts texts, bool tight) const;

signals:
    void chosen(int index); // by the user

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QList<Segment*> segments;
};

} // namespace murkwell
