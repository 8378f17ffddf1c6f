#include "platform/ocr/TesseractEngines.h"

#include "platform/vision/InstalledFiles.h"

#include <dlfcn.h>
#include <fstream>
#include <iterator>
#include <tesseract/baseapi.h>
#include <utility>

namespace murkwell {
namespace {

// Tesseract asks OpenMP for four threads a line, which cost more than they bring. The runtime that
// it was linked with is told to give this thread none.
void keepToOneThread() {
    using SetLevels = void (*)(int);
    static const auto setLevels =
        reinterpret_cast<SetLevels>(::dlsym(RTLD_DEFAULT, "omp_set_max_active_levels"));
    if (setLevels != nullptr) {
        setLevels(0);
    }
}

std::string loadLatin() {
    const auto file = installedModel("latin.traineddata");
    std::ifstream in(file.value_or(std::filesystem::path()), std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

} // namespace

TesseractEngines::TesseractEngines() = default;
TesseractEngines::~TesseractEngines() = default;

TesseractEngines::Engine TesseractEngines::make() const {
    const std::vector<std::string> names{"load_system_dawg", "load_freq_dawg", "debug_file"};
    const std::vector<std::string> values{"0", "0", "/dev/null"};
    auto engine = std::make_unique<tesseract::TessBaseAPI>();
    if (!latin.empty() &&
        engine->Init(latin.data(), static_cast<int>(latin.size()), "Latin",
                     tesseract::OEM_LSTM_ONLY, nullptr, 0, &names, &values, false, nullptr) == 0) {
        return engine;
    }
    engine = std::make_unique<tesseract::TessBaseAPI>();
    return engine->Init(nullptr, "eng", tesseract::OEM_LSTM_ONLY, nullptr, 0, &names, &values,
                        false) == 0
               ? std::move(engine)
               : nullptr;
}

TesseractEngines::Engine TesseractEngines::take() {
    keepToOneThread();
    std::call_once(once, [this] { latin = loadLatin(); });
    {
        const std::lock_guard lock(mutex);
        if (!free.empty()) {
            Engine engine = std::move(free.back());
            free.pop_back();
            return engine;
        }
    }
    return make();
}

void TesseractEngines::giveBack(Engine engine) {
    const std::lock_guard lock(mutex);
    free.push_back(std::move(engine));
}

} // namespace murkwell
