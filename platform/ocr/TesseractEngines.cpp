#include "platform/ocr/TesseractEngines.h"

#include "platform/vision/InstalledFiles.h"

#include <cstdlib>
#include <dlfcn.h>
#include <filesystem>
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

int init(tesseract::TessBaseAPI& engine, const std::string& data, const char* language) {
    const std::vector<std::string> names{"load_system_dawg", "load_freq_dawg", "debug_file"};
    const std::vector<std::string> values{"0", "0", "/dev/null"};
    return engine.Init(data.empty() ? nullptr : data.data(), static_cast<int>(data.size()),
                       language, tesseract::OEM_LSTM_ONLY, nullptr, 0, &names, &values, false,
                       nullptr);
}

std::string contentOf(const std::filesystem::path& file) {
    std::ifstream in(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

// Tesseract knows where the system keeps it.
std::string loadEnglish() {
    tesseract::TessBaseAPI engine;
    return init(engine, {}, "eng") == 0 ? contentOf(std::filesystem::path(engine.GetDatapath()) /
                                                    TesseractEngines::systemData)
                                        : std::string();
}

} // namespace

TesseractEngines::TesseractEngines() = default;
TesseractEngines::~TesseractEngines() = default;

TesseractEngines::Engine TesseractEngines::make() const {
    auto engine = std::make_unique<tesseract::TessBaseAPI>();
    return !data.empty() && init(*engine, data, isLatin ? "Latin" : "eng") == 0 ? std::move(engine)
                                                                                : nullptr;
}

void TesseractEngines::load() {
    data = contentOf(installedModel(latinData).value_or(std::filesystem::path()));
    isLatin = true;
    Engine first = make();
    if (!first) {
        data = loadEnglish();
        isLatin = false;
        first = make();
    }
    if (first) {
        giveBack(std::move(first));
    }
}

TesseractEngines::Engine TesseractEngines::take() {
    keepToOneThread();
    std::call_once(once, [this] { load(); });
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

Readiness TesseractEngines::readiness() {
    Engine engine = take();
    if (!engine) {
        return {Outcome::failed, {latinData, systemData}};
    }
    giveBack(std::move(engine));
    return isLatin ? Readiness{} : Readiness{Outcome::partial, {latinData}};
}

std::vector<std::filesystem::path> TesseractEngines::systemFolders() {
    std::vector<std::filesystem::path> folders{"/usr/share/tesseract-ocr", "/usr/share/tessdata",
                                               "/usr/local/share/tessdata"};
    if (const char* const chosen = std::getenv("TESSDATA_PREFIX")) {
        folders.emplace_back(chosen);
    }
    return folders;
}

void TesseractEngines::giveBack(Engine engine) {
    const std::lock_guard lock(mutex);
    free.push_back(std::move(engine));
}

} // namespace murkwell
