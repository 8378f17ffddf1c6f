// From a page bitmap to boxes over what is sensitive in it. Stateless; a call may run on any
// thread.
#pragma once

#include "core/Redaction.h"
#include "detect/PIIKind.h"
#include "detect/Recognition.h"

#include <optional>
#include <string_view>
#include <vector>

namespace murkwell {

class RandomSource;

namespace Detector {

// The engines behind a search, and the source of box identities. Referred to, not owned.
struct Engines {
    TextRecognizer& textRecognizer;
    FaceDetector& faceDetector;
    RandomSource& random;
};

// What the search of one page gave.
struct Findings {
    std::vector<Redaction> redactions; // all that was found, whatever failed
    std::optional<Outcome> text;       // none when no text was asked for
    std::optional<Outcome> faces;      // none when no faces were asked for
};

// A box, marked as detected, for every match of every kind; matches in text come before faces.
// Text is read only when a kind has a pattern.
[[nodiscard]] Findings detect(const Bitmap& image, const PIIKinds& kinds, RedactionStyle style,
                              const Engines& engines);

// A box, marked as detected, for every occurrence of the query (UTF-8) in the text of the page:
// as typed but for letter case, or, when fuzzy, every word close to one of its words. A query of
// white space finds nothing and nothing is read.
[[nodiscard]] Findings findMatches(std::string_view query, const Bitmap& image, bool fuzzy,
                                   RedactionStyle style, const Engines& engines);

// Whether any of these kinds is looked for in text.
[[nodiscard]] bool readsText(const PIIKinds& kinds);

} // namespace Detector
} // namespace murkwell
