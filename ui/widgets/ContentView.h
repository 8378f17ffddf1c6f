// The content of the one window. It holds no document data: what it shows is read from the model,
// and every control calls one of the model's operations.
#pragma once

#include <QWidget>

namespace murkwell {

class FileOpenInbox;
class RedactModel;

class ContentView final : public QWidget {
    Q_OBJECT

public:
    // Both are referred to and outlive the view.
    ContentView(RedactModel& model, FileOpenInbox& inbox, QWidget* parent = nullptr);
};

} // namespace murkwell
