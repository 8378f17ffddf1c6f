// The editing model with nobody in front of it: what a panel would ask is answered from the command
// line, and a search is over when it returns.
#pragma once

#include "cli/Output.h"
#include "cli/Passwords.h"
#include "cli/RememberedText.h"
#include "model/RedactModel.h"

#include <filesystem>
#include <optional>

namespace murkwell::cli {

// The libraries behind everything, and who knows the passwords. Referred to, not owned.
struct Engines {
    DocumentIO::Engines documents;
    Detector::Engines recognition;
    Passwords& passwords;
};

// Runs every job at once, on the thread that gives it.
class ImmediateExecutor final : public Executor {
public:
    [[nodiscard]] bool background(std::function<void()> job) override {
        job();
        return true;
    }
    void onMain(std::function<void()> job) override { job(); }
};

// Never asks for more than a password. A save panel is answered with the given location, a notice
// with its first button.
class CommandLinePanels final : public Panels {
public:
    explicit CommandLinePanels(Passwords& known) : passwords(known) {}

    [[nodiscard]] std::vector<std::filesystem::path> run(const OpenPanel&) override { return {}; }
    [[nodiscard]] std::optional<Destination> run(const SavePanel&) override { return answer; }
    [[nodiscard]] std::size_t run(const Alert&) override { return 0; }
    [[nodiscard]] std::optional<Secret> run(const PasswordPanel& panel) override {
        return passwords.answer(panel);
    }

    std::optional<Destination> answer;

private:
    Passwords& passwords;
};

// Nothing is kept from one run to the next.
class NoPreferences final : public Preferences {
public:
    [[nodiscard]] bool boolean(std::string_view) const override { return false; }
    void setBoolean(std::string_view, bool) override {}
};

class NoFileManager final : public FileManager {
public:
    void reveal(const std::filesystem::path&) override {}
};

// For one source. Text is read once per page, however often it is searched.
class HeadlessModel {
public:
    explicit HeadlessModel(const Engines& engines)
        : passwords(engines.passwords), text(engines.recognition.textRecognizer),
          panels(engines.passwords),
          model({executor,
                 panels,
                 preferences,
                 fileManager,
                 engines.documents,
                 {text, engines.recognition.faceDetector, engines.recognition.random}}) {}

    // Why the source cannot be opened, as a message. What did not come whole is reported.
    [[nodiscard]] std::optional<std::string> open(const std::filesystem::path& source) {
        model.open({source});
        if (!model.document()) {
            return namingFile(source, model.errorMessage().value_or(passwords.refusal()));
        }
        printRemarks(source, *model.document());
        return std::nullopt;
    }

private:
    const Passwords& passwords;
    ImmediateExecutor executor;
    NoPreferences preferences;
    NoFileManager fileManager;
    RememberedText text;

public:
    CommandLinePanels panels;
    RedactModel model;
};

} // namespace murkwell::cli
