#include "platform/qt/PasswordDialog.h"

#include "core/Localization.h"

#include <QDialogButtonBox>
#include <QFontMetrics>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QStyle>
#include <QVBoxLayout>

namespace murkwell {
namespace {

constexpr int messageWidth = 400;
// In UTF-16 code units, none of which takes more than 3 bytes: always less than a Secret holds.
constexpr int longestInput = 255;

QString text(const std::string& utf8) {
    return QString::fromStdString(utf8);
}

// Lines are broken between words alone; what is longer would be cut at its end.
std::string withoutLongWords(const QString& words, const QFontMetrics& metrics) {
    QStringList list = words.split(QLatin1Char(' '));
    for (QString& word : list) {
        word = metrics.elidedText(word, Qt::ElideMiddle, messageWidth * 9 / 10);
    }
    return list.join(QLatin1Char(' ')).toStdString();
}

QLabel* plainLabel(const QString& words) {
    auto* const label = new QLabel(words);
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    return label;
}

QLayout* warning(const QString& words) {
    auto* const row = new QHBoxLayout;
    auto* const symbol = new QLabel;
    const int side = symbol->style()->pixelMetric(QStyle::PM_SmallIconSize);
    symbol->setPixmap(
        symbol->style()->standardIcon(QStyle::SP_MessageBoxWarning).pixmap(QSize(side, side)));
    row->addWidget(symbol);
    row->addWidget(plainLabel(words), 1);
    return row;
}

} // namespace

PasswordDialog::PasswordDialog(const PasswordPanel& panel, QWidget* parent)
    : QDialog(parent), field(new QLineEdit) {
    setWindowTitle(text(localized("Password Required")));
    const std::string name = withoutLongWords(text(panel.fileName), fontMetrics());
    const QString question = text(localized("“%@” is protected by a password.", {name}));
    const QString wrong = text(localized("That password is wrong. Try again."));
    field->setEchoMode(QLineEdit::Password);
    field->setMaxLength(longestInput);
    field->setAccessibleDescription(panel.wasWrong ? wrong : question);
    auto* const label = new QLabel(text(localized("&Password:")));
    label->setBuddy(field);

    auto* const column = new QVBoxLayout(this);
    column->setSizeConstraint(QLayout::SetFixedSize);
    column->setContentsMargins(20, 20, 20, 16);
    column->setSpacing(14);
    auto* const message = plainLabel(question);
    message->setFixedWidth(messageWidth);
    column->addWidget(message);
    auto* const row = new QHBoxLayout;
    row->addWidget(label);
    row->addWidget(field, 1);
    column->addLayout(row);
    if (panel.wasWrong) {
        column->addLayout(warning(wrong));
    }
    column->addWidget(buttons());
    field->setFocus();
}

QWidget* PasswordDialog::buttons() {
    auto* const box = new QDialogButtonBox;
    auto* const open = box->addButton(text(localized("Open")), QDialogButtonBox::AcceptRole);
    box->addButton(text(localized("Cancel")), QDialogButtonBox::RejectRole);
    open->setDefault(true);
    open->setEnabled(false);
    connect(field, &QLineEdit::textChanged, open,
            [open](const QString& typed) { open->setEnabled(!typed.isEmpty()); });
    connect(box, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(box, &QDialogButtonBox::rejected, this, &QDialog::reject);
    return box;
}

PasswordDialog::~PasswordDialog() {
    static_cast<void>(take());
}

Secret PasswordDialog::take() {
    QString typed = field->text();
    QByteArray utf8 = typed.toUtf8();
    Secret secret;
    static_cast<void>(secret.append({utf8.constData(), static_cast<std::size_t>(utf8.size())}));
    utf8.fill('\0');
    field->clear(); // so that the text below is nobody's but ours, and is overwritten in its place
    typed.fill(QChar());
    return secret;
}

} // namespace murkwell
