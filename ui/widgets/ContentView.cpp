#include "ui/widgets/ContentView.h"

namespace murkwell {

ContentView::ContentView(RedactModel&, FileOpenInbox&, QWidget* parent) : QWidget(parent) {}

} // namespace murkwell
