#include "app/External.h"

#include "app/Addresses.h"
#include "core/Localization.h"
#include "io/FileAddress.h"
#include "ui/widgets/Text.h"

#include <QDesktopServices>
#include <QProcess>
#include <QUrl>

namespace murkwell {
namespace {

namespace fs = std::filesystem;

// Asks for the program that opens appstream: addresses; its answer is empty when there is none.
// Opening one unasked would fail without telling us.
void openSoftwareCentreOr(std::string_view otherwise) {
    auto* const question = new QProcess;
    const auto answer = [question, otherwise](bool isThere) {
        openExternal(isThere ? Addresses::softwareCentre : otherwise);
        question->deleteLater();
    };
    QObject::connect(question, &QProcess::finished, question, [question, answer] {
        answer(!question->readAllStandardOutput().trimmed().isEmpty());
    });
    QObject::connect(question, &QProcess::errorOccurred, question,
                     [answer](QProcess::ProcessError error) {
                         if (error == QProcess::FailedToStart) {
                             answer(false);
                         }
                     });
    question->start(QStringLiteral("xdg-mime"), {QStringLiteral("query"), QStringLiteral("default"),
                                                 QStringLiteral("x-scheme-handler/appstream")});
}

} // namespace

void openExternal(std::string_view address) {
    const QUrl url(toQString(address), QUrl::StrictMode);
    if (url.isValid() && !url.isRelative() && (url.isLocalFile() || !url.host().isEmpty())) {
        QDesktopServices::openUrl(url);
    }
}

std::string helpAddress(const fs::path& folder, std::span<const std::string> languages) {
    for (const std::string& language : languages) {
        for (const std::string& name : languageVariants(language)) {
            const fs::path page = folder / name / "index.html";
            std::error_code ignored;
            if (fs::is_regular_file(page, ignored)) {
                return fileAddress(page);
            }
        }
    }
    return std::string(Addresses::productPage);
}

void openHelp() {
    const fs::path share = catalogueFolder().parent_path();
    openExternal(helpAddress(share / Addresses::helpFolder, userLanguages()));
}

void checkForUpdates() {
    openSoftwareCentreOr(Addresses::productPage);
}

} // namespace murkwell
