// Reads strips with the second of PP-OCRv4's two networks. Knows printable ASCII.
#pragma once

#include "platform/ocr/LineStrip.h"
#include "platform/ocr/StripReading.h"

#include <memory>
#include <optional>
#include <string>

namespace murkwell {

class OnnxSession;

class PpOcrStripReader {
public:
    static constexpr const char* modelFile = "text-reader.onnx";
    static constexpr const char* alphabetFile = "characters.txt";

    // Null when the models are missing or damaged.
    [[nodiscard]] static std::unique_ptr<PpOcrStripReader> load();
    ~PpOcrStripReader();

    // None when the network fails. May be called from several threads at once.
    [[nodiscard]] std::optional<StripReading> read(const LineStrip& strip) const;

private:
    PpOcrStripReader(std::unique_ptr<OnnxSession> loaded, std::string characters);

    std::unique_ptr<OnnxSession> network;
    std::string alphabet; // of the network's outputs, the blank left out
};

} // namespace murkwell
