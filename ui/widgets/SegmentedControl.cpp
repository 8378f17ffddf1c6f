#include "ui/widgets/SegmentedControl.h"

#include "ui/widgets/ControlPainting.h"
#include "ui/widgets/Icons.h"
#include "ui/widgets/Text.h"

#include <QHBoxLayout>
#include <QPainter>

namespace murkwell {
namespace {

constexpr int inset = 2; // of the segments in the track
constexpr int padding = 12;
constexpr int tightPadding = 8;
constexpr double segmentRadius = 5.5;

} // namespace

Segment::Segment(const QString& icon, const QString& text, QWidget* parent)
    : QAbstractButton(parent), iconName(icon), label(text) {
    setText(escaped(text));
    setAccessibleName(text);
    setCheckable(true);
    setAutoExclusive(true);
    setFocusPolicy(Qt::StrongFocus);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    connect(this, &QAbstractButton::toggled, this, &QWidget::updateGeometry);
}

void Segment::setTexts(SegmentTexts texts) {
    if (shownTexts != texts) {
        shownTexts = texts;
        updateGeometry();
        update();
    }
}

bool Segment::showsText(SegmentTexts texts) const {
    return iconName.isEmpty() || texts == SegmentTexts::all ||
           (texts == SegmentTexts::chosenOnly && isChecked());
}

void Segment::setTight(bool tight) {
    if (isTight != tight) {
        isTight = tight;
        updateGeometry();
    }
}

int Segment::width(SegmentTexts texts, bool tight) const {
    const int textWidth = showsText(texts) ? fontMetrics().horizontalAdvance(label) : 0;
    const int iconWidth = iconName.isEmpty() ? 0 : iconSide;
    const int gap = textWidth > 0 && iconWidth > 0 ? iconGap : 0;
    return iconWidth + gap + textWidth + 2 * (tight ? tightPadding : padding);
}

QSize Segment::sizeHint() const {
    return {width(shownTexts, isTight),
            std::max(controlHeight, fontMetrics().height() + 8) - 2 * inset};
}

void Segment::paintEvent(QPaintEvent*) {
    const Theme theme = Theme::of(*this);
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF area(rect());
    if (isChecked()) {
        fillRounded(painter, area, segmentRadius, theme.chosenSegment);
        outlineRounded(painter, area, segmentRadius, withOpacity(Qt::black, 0.1));
    } else if (underMouse()) {
        fillRounded(painter, area, segmentRadius, withOpacity(theme.text, 0.05));
    }
    const QString shown = showsText(shownTexts) ? label : QString();
    const int textWidth = fontMetrics().horizontalAdvance(shown);
    const int iconWidth = iconName.isEmpty() ? 0 : iconSide + (shown.isEmpty() ? 0 : iconGap);
    double x = std::floor((area.width() - textWidth - iconWidth) / 2);
    paintIcon(painter, iconName,
              {x, std::floor((area.height() - iconSide) / 2), iconSide, iconSide}, theme.text);
    x += iconWidth;
    painter.setPen(theme.text);
    painter.drawText(QRectF(x, 0, textWidth + 1, area.height()), Qt::AlignVCenter, shown);
    if (showsFocusRing(*this)) {
        paintFocusRing(painter, area, segmentRadius, theme);
    }
}

SegmentedControl::SegmentedControl(const QString& name, QWidget* parent) : QWidget(parent) {
    setAccessibleName(name);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    auto* const row = new QHBoxLayout(this);
    row->setContentsMargins(inset, inset, inset, inset);
    row->setSpacing(0);
}

void SegmentedControl::addSegment(const QString& iconName, const QString& label) {
    auto* const segment = new Segment(iconName, label, this);
    const int index = static_cast<int>(segments.size());
    segment->setChecked(index == 0);
    connect(segment, &QAbstractButton::toggled, this, [this, index](bool isChosen) {
        if (isChosen) {
            emit chosen(index);
        }
    });
    segments.append(segment);
    layout()->addWidget(segment);
}

void SegmentedControl::setChosen(int index) {
    Segment* const segment = segments.at(index);
    if (!segment->isChecked()) {
        const QSignalBlocker noAnswer(segment);
        segment->setChecked(true);
    }
    for (Segment* const each : segments) {
        each->updateGeometry();
    }
}

void SegmentedControl::setTexts(SegmentTexts texts) {
    for (Segment* const segment : segments) {
        segment->setTexts(texts);
    }
}

void SegmentedControl::setTight(bool tight) {
    for (Segment* const segment : segments) {
        segment->setTight(tight);
    }
}

int SegmentedControl::width(SegmentTexts texts, bool tight) const {
    int sum = 2 * inset;
    for (const Segment* const segment : segments) {
        sum += segment->width(texts, tight);
    }
    return sum;
}

void SegmentedControl::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    fillRounded(painter, rect(), controlRadius, Theme::of(*this).track);
}

} // namespace murkwell
