// The engines of Tesseract, made when they are first needed.
#pragma once

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
    // The file that is lacking when no engine can be made.
    static constexpr const char* systemData = "eng.traineddata";

    TesseractEngines();
    ~TesseractEngines();

    using Engine = std::unique_ptr<tesseract::TessBaseAPI>;

    // Reads Latin script when its data came with the program, else English with the system's data.
    // Without dictionaries, which bend names and numbers into words. Null when there is neither.
    // The calling thread is kept from using more threads than itself.
    [[nodiscard]] Engine take();

    void giveBack(Engine engine);

private:
    [[nodiscard]] Engine make() const;

    std::once_flag once;
    std::string latin; // the data, which every engine reads when it is made; empty without

    std::mutex mutex;
    std::vector<Engine> free;
};

} // namespace murkwell
