#include "ui/widgets/HeaderBar.h"

#include "ui/WindowTexts.h"
#include "ui/widgets/Button.h"
#include "ui/widgets/ControlPainting.h"
#include "ui/widgets/ElidedLabel.h"
#include "ui/widgets/IconView.h"
#include "ui/widgets/Text.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>

namespace murkwell {
namespace {

constexpr int dotSide = 6;

class DirtyDot final : public QWidget {
public:
    explicit DirtyDot(QWidget* parent) : QWidget(parent) {
        setFixedSize(dotSide, dotSide);
        setToolTip(text(WindowTexts::unsavedChanges));
        setAccessibleName(text(WindowTexts::unsavedChanges));
    }

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        fillRounded(painter, rect(), dotSide / 2.0, Theme::of(*this).dimmed);
    }
};

// The width of the label for the last page: no other one is wider, so that the buttons beside it
// stay where they are.
int widestPosition(const QFontMetrics& metrics, std::int64_t pageCount) {
    QString widest = toQString(pageOfPagesLabel(pageCount - 1, pageCount));
    for (QChar& character : widest) {
        if (character.isDigit()) {
            character = u'8';
        }
    }
    return metrics.horizontalAdvance(widest) + 1;
}

} // namespace

HeaderBar::HeaderBar(RedactModel& documentModel, QWidget* parent)
    : QWidget(parent), model(documentModel), kind(new IconView(QStringLiteral("photo"), this)),
      title(new ElidedLabel(Qt::ElideMiddle)), dirtyDot(new DirtyDot(this)),
      navigation(new QWidget(this)),
      previous(new Button(Button::Look::plain, QStringLiteral("chevron.left"),
                          text(WindowTexts::previousPage))),
      position(new QLabel), next(new Button(Button::Look::plain, QStringLiteral("chevron.right"),
                                            text(WindowTexts::nextPage))),
      close(new Button(Button::Look::plain, QStringLiteral("xmark.circle.fill"),
                       text(WindowTexts::close))) {
    auto* const row = new QHBoxLayout(this);
    row->setContentsMargins(16, 9, 16, 9);
    row->setSpacing(10);
    title->setFont(medium(font()));
    row->addWidget(kind);
    row->addWidget(title);
    row->addWidget(dirtyDot);
    row->addStretch(1);
    addNavigation();
    row->addWidget(navigation);
    close->setCompact(true);
    close->setSecondary(true);
    close->setToolTip(text(WindowTexts::closeTip));
    connect(close, &QPushButton::clicked, this, [this] { model.closeDocument(); });
    row->addWidget(close);
}

void HeaderBar::addNavigation() {
    auto* const row = new QHBoxLayout(navigation);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(6);
    for (Button* const button : {previous, next}) {
        button->setCompact(true);
        button->setToolTip(button->label());
    }
    previous->setShortcut(Qt::Key_PageUp);
    next->setShortcut(Qt::Key_PageDown);
    position->setForegroundRole(QPalette::PlaceholderText);
    position->setAlignment(Qt::AlignCenter);
    connect(previous, &QPushButton::clicked, this,
            [this] { model.goToPage(model.currentPage() - 1); });
    connect(next, &QPushButton::clicked, this, [this] { model.goToPage(model.currentPage() + 1); });
    row->addWidget(previous);
    row->addWidget(position);
    row->addWidget(next);
}

void HeaderBar::refresh(const WindowState& state) {
    setVisible(state.hasDocument);
    kind->setIcon(state.isPDF ? QStringLiteral("doc.richtext") : QStringLiteral("photo"));
    title->setText(toQString(state.title));
    dirtyDot->setVisible(state.isDirty);
    navigation->setVisible(state.hasManyPages);
    if (state.hasManyPages) {
        position->setText(toQString(pageOfPagesLabel(state.currentPage, state.pageCount)));
        position->setMinimumWidth(widestPosition(position->fontMetrics(), state.pageCount));
        previous->setEnabled(state.canGoBack);
        next->setEnabled(state.canGoForward);
    }
}

} // namespace murkwell
