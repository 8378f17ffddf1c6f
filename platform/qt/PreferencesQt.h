// The preferences, in one file of the user's configuration folder.
#pragma once

#include "model/Preferences.h"

#include <QSettings>

namespace murkwell {

// What cannot be written is remembered until the program ends.
class PreferencesQt final : public Preferences {
public:
    // $XDG_CONFIG_HOME/murkwell/preferences.ini. Read at the first question, not now.
    PreferencesQt();

    [[nodiscard]] bool boolean(std::string_view key) const override;
    void setBoolean(std::string_view key, bool value) override;

private:
    QSettings settings;
};

} // namespace murkwell
