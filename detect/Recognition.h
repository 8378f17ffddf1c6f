// Ports: what reads the text of a page and what finds its faces.
//
// Both may be called from several threads at once, and an adapter may use more threads inside a
// call. Models and data are loaded at the first call, not before.
#pragma once

#include "core/Bitmap.h"
#include "core/Geometry.h"

#include <optional>
#include <string>
#include <vector>

namespace murkwell {

// One printed line, or the part of one that belongs together.
struct RecognizedLine {
    std::string text; // UTF-8, best reading
    RecognizerRect box;
    // One box per code point of the text, an empty one where there is nothing to cover; none at all
    // when the engine cannot tell.
    std::vector<RecognizerRect> characterBoxes;
};

class TextRecognizer {
public:
    virtual ~TextRecognizer() = default;

    // Lines in reading order. None when the engine is missing or fails.
    [[nodiscard]] virtual std::optional<std::vector<RecognizedLine>>
    recognize(const Bitmap& image) = 0;
};

class FaceDetector {
public:
    virtual ~FaceDetector() = default;

    // Boxes from forehead to chin. None when the engine is missing or fails.
    [[nodiscard]] virtual std::optional<std::vector<RecognizerRect>>
    detectFaces(const Bitmap& image) = 0;
};

} // namespace murkwell
