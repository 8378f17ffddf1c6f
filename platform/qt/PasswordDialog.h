// Asks for the password of a file.
#pragma once

#include "core/Secret.h"
#include "model/Panels.h"

#include <QDialog>

class QLineEdit;

namespace murkwell {

class PasswordDialog final : public QDialog {
    Q_OBJECT

public:
    PasswordDialog(const PasswordPanel& panel, QWidget* parent);
    ~PasswordDialog() override;

    // What was typed. The dialog forgets it.
    [[nodiscard]] Secret take();

private:
    [[nodiscard]] QWidget* buttons();

    QLineEdit* field;
};

} // namespace murkwell
