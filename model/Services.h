// All that the model needs from outside, in one bundle. Referred to, not owned: everything here
// outlives the model and the background jobs that it has started.
#pragma once

#include "detect/Detector.h"
#include "io/DocumentIO.h"
#include "model/Executor.h"
#include "model/FileManager.h"
#include "model/Panels.h"
#include "model/Preferences.h"

namespace murkwell {

class RandomSource;

struct Services {
    Executor& executor;
    Panels& panels;
    Preferences& preferences;
    FileManager& fileManager;
    DocumentIO::Engines documents;
    Detector::Engines detection; // used on the executor's background thread only
};

} // namespace murkwell
