#include "app/MurkwellApp.h"

#include "app/MainWindow.h"
#include "ui/widgets/Theme.h"
#include "ui/widgets/WindowStyle.h"

#include <QApplication>

namespace murkwell {

MurkwellApp::MurkwellApp()
    : model({executor,
             panels,
             preferences,
             fileManager,
             {engines.pdfRenderer, pdfWriter, engines.imageCodec, random},
             {engines.textRecognizer, engines.faceDetector, random}}) {
    QApplication::setStyle(new WindowStyle); // which takes it
    connect(&desktop, &DesktopSettings::changed, this, &MurkwellApp::followDesktop);
}

// A search that still runs ends with the worker that it waits for.
MurkwellApp::~MurkwellApp() {
    engines.recognition.cancel();
}

void MurkwellApp::activate(const ActivationToken& token) {
    if (!window) {
        desktop.waitBriefly();
        followDesktop();
        window = std::make_unique<MainWindow>(model, inbox, [this] { return engines.notice(); });
        window->setAnimated(!desktop.prefersReducedMotion());
    }
    bringToFront(*window, token);
}

void MurkwellApp::open(const std::vector<std::filesystem::path>& files,
                       const ActivationToken& token) {
    inbox.receive(files);
    activate(token);
}

void MurkwellApp::followDesktop() {
    QApplication::setPalette(Theme::make(desktop.prefersDark(), desktop.accent()).palette());
    if (desktop.font()) {
        QApplication::setFont(*desktop.font());
    }
    if (window) {
        window->setAnimated(!desktop.prefersReducedMotion());
    }
}

} // namespace murkwell
