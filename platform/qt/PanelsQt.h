// The panels as dialogs: the desktop's own file dialogs where Qt's platform theme has them, Qt's
// otherwise. They belong to the window that is active.
#pragma once

#include "model/Panels.h"

namespace murkwell {

class PanelsQt final : public Panels {
public:
    // Keeps Qt's dialogs from writing down which folders were visited.
    PanelsQt();

    [[nodiscard]] std::vector<std::filesystem::path> run(const OpenPanel& panel) override;

    // The file always has an extension of the allowed type: where the user gave another, or none,
    // the preferred one is added.
    [[nodiscard]] std::optional<Destination> run(const SavePanel& panel) override;

    [[nodiscard]] std::size_t run(const Alert& alert) override;
    [[nodiscard]] std::optional<Secret> run(const PasswordPanel& panel) override;
};

} // namespace murkwell
