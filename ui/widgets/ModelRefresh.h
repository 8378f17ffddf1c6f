// Turns the many notifications of the model into one refresh per turn of the event loop. The model
// notifies before it stores, and once for each field of a change: at the time of the refresh all of
// them are in place.
#pragma once

#include "model/Published.h"

#include <QObject>

namespace murkwell {

class ModelRefresh final : public QObject {
    Q_OBJECT

public:
    // The model is referred to only here.
    explicit ModelRefresh(RedactModel& model, QObject* parent = nullptr);

signals:
    // The model has changed, or might have; all that is shown of it is to be read again.
    void refreshed();

private:
    void schedule();

    Observers::Observation observation;
    bool isScheduled = false;
};

} // namespace murkwell
