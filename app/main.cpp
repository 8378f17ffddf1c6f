// murkwell: the window. Only wiring.

#include "app/CommandLine.h"
#include "app/MurkwellApp.h"
#include "app/SingleInstance.h"
#include "core/Localization.h"
#include "core/ProcessHardening.h"
#include "io/TemporaryFile.h"
#include "io/Unicode.h"

#include <QApplication>
#include <QIcon>
#include <QLibraryInfo>
#include <QTimer>
#include <QTranslator>

#include <chrono>
#include <iostream>
#include <span>
#include <string>
#include <utility>

namespace {

using namespace murkwell;

// Answers with the language that the texts are in.
std::string useTextsOfUser() {
    for (const std::string& language : userLanguages()) {
        if (auto catalogue = findCatalogue(catalogueFolder(), std::span(&language, 1))) {
            useCatalogue(std::move(catalogue));
            return language;
        }
    }
    return "en";
}

// Qt's own dialogs speak the same language as our texts: two in one dialog would be worse than
// English alone.
void translateDialogs(const std::string& language) {
    auto* const dialogs = new QTranslator(QCoreApplication::instance());
    if (dialogs->load(QStringLiteral("qtbase_") + QString::fromStdString(language),
                      QLibraryInfo::path(QLibraryInfo::TranslationsPath), QStringLiteral("_."))) {
        QCoreApplication::installTranslator(dialogs);
    }
}

bool hasDisplay() {
    return qEnvironmentVariableIsSet("DISPLAY") || qEnvironmentVariableIsSet("WAYLAND_DISPLAY") ||
           qEnvironmentVariableIsSet("QT_QPA_PLATFORM");
}

// Whether this process is the one with the window. If not, the one that is has got the files.
bool isFirst(SingleInstance& instance, const Start& start, const ActivationToken& token) {
    using Claim = SingleInstance::Claim;
    if (instance.claim() != Claim::taken) {
        return true;
    }
    if (start.asService || SingleInstance::handOver(start.files, token)) {
        return false;
    }
    // It has gone in the meantime. Should yet another one have come, there are two windows.
    static_cast<void>(instance.claim());
    return true;
}

int run(const Start& start, int argc, char** argv) {
    const std::string language = useTextsOfUser();
    const auto token = ActivationToken::fromEnvironment();
    if (!hasDisplay()) {
        std::cerr << localized("Murkwell needs a graphical desktop; murkwell-cli does not.")
                  << '\n';
        return 1;
    }
    const QApplication application(argc, argv);
    QApplication::setApplicationName(QStringLiteral("murkwell"));
    QApplication::setApplicationDisplayName(QStringLiteral("Murkwell"));
    QApplication::setDesktopFileName(QStringLiteral("com.tallowick.Murkwell"));
    QApplication::setWindowIcon(
        QIcon::fromTheme(QStringLiteral("com.tallowick.Murkwell"),
                         QIcon(QStringLiteral(":/application/com.tallowick.Murkwell.svg"))));
    translateDialogs(language);

    SingleInstance instance;
    if (!isFirst(instance, start, token)) {
        return 0;
    }
    MurkwellApp app;
    QObject::connect(&instance, &SingleInstance::activated, &app, &MurkwellApp::activate);
    QObject::connect(&instance, &SingleInstance::opened, &app, &MurkwellApp::open);
    if (start.asService) {
        constexpr std::chrono::seconds patience(10);
        QTimer::singleShot(patience, &app, [&app] {
            if (!app.hasWindow()) {
                QApplication::quit();
            }
        });
    } else {
        app.open(start.files, token);
    }
    return QApplication::exec();
}

} // namespace

int main(int argc, char** argv) {
    hardenProcess();
    removeTemporaryFileOnSignals();
    const auto command = parseCommandLine(argc, argv);
    if (const auto* const ending = std::get_if<Ending>(&command)) {
        if (ending->exitCode != 0) {
            std::cerr << printable(ending->text) << '\n';
            return ending->exitCode;
        }
        std::cout << ending->text << std::endl;
        return std::cout ? 0 : 1;
    }
    return run(std::get<Start>(command), argc, argv);
}
