#include "ui/widgets/BusyCursor.h"

#include <QApplication>
#include <QTimer>

namespace murkwell::BusyCursor {

void untilIdle() {
    QApplication::setOverrideCursor(Qt::WaitCursor);
    QTimer::singleShot(0, qApp, [] { QApplication::restoreOverrideCursor(); });
}

} // namespace murkwell::BusyCursor
