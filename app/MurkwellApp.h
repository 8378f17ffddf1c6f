// The program: its engines, the one model on them, and the one window on that.
#pragma once

#include "app/ActivationToken.h"
#include "core/RandomSource.h"
#include "model/RedactModel.h"
#include "platform/confined/ConfinedEngines.h"
#include "platform/pdf/PdfWriterLibdeflate.h"
#include "platform/qt/DesktopSettings.h"
#include "platform/qt/ExecutorQt.h"
#include "platform/qt/FileManagerQt.h"
#include "platform/qt/PanelsQt.h"
#include "platform/qt/PreferencesQt.h"
#include "ui/FileOpenInbox.h"

#include <QObject>

#include <filesystem>
#include <memory>
#include <vector>

namespace murkwell {

class MainWindow;

class MurkwellApp final : public QObject {
    Q_OBJECT

public:
    MurkwellApp();
    ~MurkwellApp() override;

    // Brings the window to the front; the first call makes it.
    void activate(const ActivationToken& token);
    void open(const std::vector<std::filesystem::path>& files, const ActivationToken& token);

    [[nodiscard]] bool hasWindow() const { return window != nullptr; }

private:
    void followDesktop();

    DesktopSettings desktop; // first, so that it is answered while the rest is made
    SystemRandomSource random;
    ConfinedEngines engines;
    PdfWriterLibdeflate pdfWriter;
    PanelsQt panels;
    PreferencesQt preferences;
    FileManagerQt fileManager;
    ExecutorQt executor; // after the engines: its end waits for the job that uses them
    RedactModel model;
    FileOpenInbox inbox;
    std::unique_ptr<MainWindow> window;
};

} // namespace murkwell
