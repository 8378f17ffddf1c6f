// Stand-ins for what the desktop gives the model. They note what they were asked.
#pragma once

#include "model/FileManager.h"
#include "model/Panels.h"
#include "model/Preferences.h"

#include <deque>
#include <functional>
#include <gtest/gtest.h>
#include <map>
#include <string>

namespace murkwell {

class FakePanels final : public Panels {
public:
    std::vector<std::filesystem::path> run(const OpenPanel& panel) override {
        openPanels.push_back(panel);
        whileUp();
        return opened;
    }
    std::optional<Destination> run(const SavePanel& panel) override {
        savePanels.push_back(panel);
        whileUp();
        return saved;
    }
    std::size_t run(const Alert& alert) override {
        alerts.push_back(alert);
        whileUp();
        return pressed;
    }

    std::optional<Secret> run(const PasswordPanel& panel) override {
        passwordPanels.push_back(panel);
        whileUp();
        if (passwords.empty()) {
            return std::nullopt;
        }
        Secret answer;
        EXPECT_TRUE(answer.append(passwords.front()));
        passwords.pop_front();
        return answer;
    }

    // The answers.
    std::vector<std::filesystem::path> opened;
    std::optional<std::filesystem::path> saved;
    std::size_t pressed = 0;
    std::deque<std::string> passwords; // one after the other, then cancelled
    // What the event loop does while a panel is up.
    std::function<void()> whileUp = [] {};

    std::vector<OpenPanel> openPanels;
    std::vector<SavePanel> savePanels;
    std::vector<Alert> alerts;
    std::vector<PasswordPanel> passwordPanels;
};

class FakePreferences final : public Preferences {
public:
    bool boolean(std::string_view key) const override {
        const auto found = values.find(std::string(key));
        return found != values.end() && found->second;
    }
    void setBoolean(std::string_view key, bool value) override {
        if (!isReadOnly) {
            values[std::string(key)] = value;
        }
    }

    std::map<std::string, bool> values;
    bool isReadOnly = false;
};

class FakeFileManager final : public FileManager {
public:
    void reveal(const std::filesystem::path& file) override { revealed.push_back(file); }

    std::vector<std::filesystem::path> revealed;
};

} // namespace murkwell
