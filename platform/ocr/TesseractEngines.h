// The engines of Tesseract, made when they are first needed.
#pragma once

#include "detect/Recognition.h"

#include <filesystem>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace tesseract {
class TessBaseAPI;
} // namespace tesseract

namespace murkwell {

// An engine is costly to make and serves one thread at a time: those that are free wait here.
class TesseractEngines {
public:
    static constexpr const char* latinData = "latin.traineddata";
    static constexpr const char* systemData = "eng.traineddata";

    TesseractEngines();
    ~TesseractEngines();

    using Engine = std::unique_ptr<tesseract::TessBaseAPI>;

    // Reads Latin script when its data came with the program, else English with the system's data.
    // Without dictionaries, which bend names and numbers into words. Null when there is neither.
    // The first call reads the files, those after it open none. The calling thread is kept from
    // using more threads than itself.
    [[nodiscard]] Engine take();

    void giveBack(Engine engine);

    // Partial when they read English only, which has no accents; failed when none can be made.
    // Throws when there is no memory for one.
    [[nodiscard]] Readiness readiness();

    // Where the system may keep its data.
    [[nodiscard]] static std::vector<std::filesystem::path> systemFolders();

private:
    void load();
    [[nodiscard]] Engine make() const;

    std::once_flag once;
    std::string data; // which every engine reads when it is made; empty without any
    bool isLatin = false;

    std::mutex mutex;
    std::vector<Engine> free;
};

} // namespace murkwell
