#include "ui/widgets/ModelRefresh.h"

#include "model/RedactModel.h"

#include <QMetaObject>

namespace murkwell {

ModelRefresh::ModelRefresh(RedactModel& model, QObject* parent)
    : QObject(parent), observation(model.observe([this] { schedule(); })) {}

void ModelRefresh::schedule() {
    if (isScheduled) {
        return;
    }
    isScheduled = true;
    QMetaObject::invokeMethod(
        this,
        [this] {
            // First, so that what a slot changes in the model is refreshed in the next turn.
            isScheduled = false;
            emit refreshed();
        },
        Qt::QueuedConnection);
}

} // namespace murkwell
