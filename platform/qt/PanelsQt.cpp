#include "platform/qt/PanelsQt.h"

#include "core/Localization.h"
#include "io/FileName.h"
#include "platform/qt/FileNames.h"
#include "platform/qt/PasswordDialog.h"

#include <QApplication>
#include <QFileDialog>
#include <QMessageBox>
#include <QPushButton>
#include <QSettings>

#include <algorithm>
#include <span>

namespace murkwell {
namespace {

namespace fs = std::filesystem;

QString text(std::string_view utf8) {
    return QString::fromUtf8(utf8.data(), static_cast<qsizetype>(utf8.size()));
}

// A single & would underline the letter after it.
QString buttonText(std::string_view title) {
    return text(title).replace(QLatin1Char('&'), QStringLiteral("&&"));
}

// In small and in capital letters, as some desktops' dialogs tell them apart.
QString patterns(std::span<const ContentType> types) {
    QStringList all;
    for (const ContentType& type : types) {
        for (const std::string_view extension : type.filenameExtensions()) {
            const QString pattern = QStringLiteral("*.") + text(extension);
            all << pattern << pattern.toUpper();
        }
    }
    all.removeDuplicates();
    return all.join(QLatin1Char(' '));
}

QString nameFilter(std::string_view name, std::span<const ContentType> types) {
    return text(name) + QStringLiteral(" (") + patterns(types) + QLatin1Char(')');
}

std::string nameOf(const ContentType& type) {
    if (type == ContentType::session) {
        return localized("Murkwell documents");
    }
    const auto extension = type.preferredFilenameExtension().value_or("");
    return localized("%@ files", {text(extension).toUpper().toStdString()});
}

// Without one a dialog would be no child of the program's window, and could hide behind it.
QWidget* frontWindow() {
    if (QWidget* const active = QApplication::activeWindow()) {
        return active;
    }
    const auto windows = QApplication::topLevelWidgets();
    const auto visible = std::ranges::find_if(
        windows, [](const QWidget* window) { return window->isWindow() && window->isVisible(); });
    return visible == windows.end() ? nullptr : *visible;
}

// The folder, or the nearest above it that is still there.
fs::path existingFolder(fs::path folder) {
    std::error_code ignored;
    while (folder.has_relative_path() && !fs::is_directory(folder, ignored)) {
        folder = folder.parent_path();
    }
    return folder;
}

std::optional<fs::path> runDialog(QFileDialog& dialog) {
    dialog.setOption(QFileDialog::HideNameFilterDetails);
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty()) {
        return std::nullopt;
    }
    return toPath(dialog.selectedFiles().constFirst());
}

std::optional<fs::path> askWhere(const ContentType& type, const fs::path& folder,
                                 const std::string& name) {
    QFileDialog dialog(frontWindow(), text(localized("Save As")));
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setFileMode(QFileDialog::AnyFile);
    dialog.setNameFilter(nameFilter(nameOf(type), std::span(&type, 1)));
    dialog.setDirectory(toQtPath(existingFolder(folder)));
    dialog.selectFile(text(name));
    return runDialog(dialog);
}

bool hasExtensionOf(const fs::path& file, const ContentType& type) {
    const auto own = ContentType::fromExtension(pathExtension(file));
    return own && own->conformsTo(type);
}

// Not left to the dialog's default suffix: some dialogs add that after they have asked whether a
// file may be replaced, and ask about another one.
fs::path withExtensionOf(const ContentType& type, fs::path file) {
    const auto extension = type.preferredFilenameExtension();
    if (extension && !hasExtensionOf(file, type)) {
        file += "." + std::string(*extension);
    }
    return file;
}

bool mayReplace(const fs::path& file) {
    QMessageBox box(frontWindow());
    box.setIcon(QMessageBox::Warning);
    box.setTextFormat(Qt::PlainText);
    box.setText(
        text(localized("“%@” is there already. Do you want to replace it?", {shownName(file)})));
    auto* const replace = box.addButton(buttonText(localized("Replace")), QMessageBox::AcceptRole);
    box.setDefaultButton(box.addButton(buttonText(localized("Cancel")), QMessageBox::RejectRole));
    box.exec();
    return box.clickedButton() == replace;
}

} // namespace

PanelsQt::PanelsQt() {
    // Names of folders tell as much as names of files. There is no switch for this, but a place
    // that takes nothing.
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, QStringLiteral("/dev/null"));
}

std::vector<fs::path> PanelsQt::run(const OpenPanel& panel) {
    QFileDialog dialog(frontWindow(), text(localized("Open")));
    dialog.setFileMode(QFileDialog::ExistingFile);
    dialog.setNameFilter(nameFilter(localized("Supported files"), panel.allowedTypes));
    const auto chosen = runDialog(dialog);
    return chosen ? std::vector{*chosen} : std::vector<fs::path>{};
}

std::optional<Destination> PanelsQt::run(const SavePanel& panel) {
    fs::path proposed = panel.folder / panel.proposedName;
    for (;;) {
        const auto chosen =
            askWhere(panel.allowedType, proposed.parent_path(), lastPathComponent(proposed));
        if (!chosen) {
            return std::nullopt;
        }
        proposed = withExtensionOf(panel.allowedType, *chosen);
        std::error_code ignored;
        const bool isThere = fs::exists(proposed, ignored);
        // What the dialog has seen under this name it has asked about itself.
        if (proposed == *chosen || !isThere || mayReplace(proposed)) {
            return Destination(proposed, isThere);
        }
    }
}

std::size_t PanelsQt::run(const Alert& alert) {
    QMessageBox box(frontWindow());
    box.setIcon(QMessageBox::Information);
    box.setTextFormat(Qt::PlainText);
    box.setText(text(alert.message));
    box.setInformativeText(text(alert.informativeText));
    std::vector<QPushButton*> buttons;
    for (const std::string& title : alert.buttons) {
        const bool isLast = buttons.size() + 1 == alert.buttons.size();
        buttons.push_back(box.addButton(buttonText(title), isLast ? QMessageBox::RejectRole
                                                                  : QMessageBox::AcceptRole));
    }
    if (buttons.empty()) {
        return 0;
    }
    box.setDefaultButton(buttons.front());
    box.setEscapeButton(buttons.back());
    box.exec();
    // Taken away without an answer, it counts as cancelled.
    const auto pressed = std::ranges::find(buttons, box.clickedButton()) - buttons.begin();
    return std::min(static_cast<std::size_t>(pressed), buttons.size() - 1);
}

std::optional<Secret> PanelsQt::run(const PasswordPanel& panel) {
    PasswordDialog dialog(panel, frontWindow());
    return dialog.exec() == QDialog::Accepted ? std::optional(dialog.take()) : std::nullopt;
}

} // namespace murkwell
