// Ports: what reads the text of a page and what finds its faces.
//
// Both may be called from several threads at once, and an adapter may use more threads inside a
// call. Models and data are loaded at the first call, not before.
#pragma once

#include "core/Bitmap.h"
#include "core/Geometry.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace murkwell {

// How much of its work an engine did, or would do here; the later the worse.
enum class Outcome : std::uint8_t {
    whole,
    partial, // text only: one of several readers is missing or failed, another one read the page
    failed,  // it is missing or broke: there may be more than it found
};

struct Readiness {
    Outcome outcome = Outcome::whole;
    // Libraries and files that are missing or damaged, by the names they have in every language.
    // Some unless the outcome is whole.
    std::vector<std::string> missing;
};

// One printed line, or the part of one that belongs together. Several readings of one place follow
// each other and have the same box.
struct RecognizedLine {
    std::string text; // UTF-8, best reading
    RecognizerRect box;
    // One box per code point of the text, an empty one where there is nothing to cover; none at all
    // when the engine cannot tell.
    std::vector<RecognizerRect> characterBoxes;
};

struct RecognizedText {
    std::vector<RecognizedLine> lines; // in reading order; what there is, whatever the outcome
    Outcome outcome = Outcome::whole;
};

class TextRecognizer {
public:
    virtual ~TextRecognizer() = default;

    [[nodiscard]] virtual RecognizedText recognize(const Bitmap& image) = 0;

    // What it could do now. Loads what recognize() needs, which takes a while.
    [[nodiscard]] virtual Readiness readiness() = 0;
};

class FaceDetector {
public:
    virtual ~FaceDetector() = default;

    // Boxes from forehead to chin. None when the engine is missing or fails.
    [[nodiscard]] virtual std::optional<std::vector<RecognizerRect>>
    detectFaces(const Bitmap& image) = 0;

    // What it could do now, whole or failed. Loads what detectFaces() needs.
    [[nodiscard]] virtual Readiness readiness() = 0;
};

} // namespace murkwell
