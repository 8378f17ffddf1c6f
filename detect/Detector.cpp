#include "detect/Detector.h"

#include "core/RandomSource.h"
#include "detect/Characters.h"
#include "detect/ExactSearch.h"
#include "detect/FuzzySearch.h"
#include "detect/PatternMatcher.h"
#include "detect/RecognizedBoxes.h"

#include <algorithm>

namespace murkwell::Detector {
namespace {

// Every box of a search is made here.
class Results {
public:
    Results(RedactionStyle chosen, RandomSource& source) : style(chosen), random(source) {}

    void add(const RecognizerRect& box) {
        redactions.push_back({Uuid::random(random), normalize(box), style, true});
    }

    std::vector<Redaction> redactions;

private:
    RedactionStyle style;
    RandomSource& random;
};

// Backwards, so that card numbers come before phone numbers: most of a card number is a phone
// number too, and whoever keeps only one of boxes that nearly coincide keeps the first.
std::vector<PatternMatcher> matchersFor(const PIIKinds& kinds) {
    std::vector<PatternMatcher> matchers;
    for (auto kind = kinds.rbegin(); kind != kinds.rend(); ++kind) {
        const auto text = pattern(*kind);
        if (auto matcher = text ? PatternMatcher::compile(*text) : std::nullopt) {
            matchers.push_back(std::move(*matcher));
        }
    }
    return matchers;
}

Outcome addTextMatches(const Bitmap& image, const PIIKinds& kinds, TextRecognizer& recognizer,
                       Results& results) {
    const auto [lines, outcome] = recognizer.recognize(image);
    const std::vector<PatternMatcher> matchers = matchersFor(kinds);
    for (const RecognizedLine& line : lines) {
        const std::u16string text = Characters::fromUtf8(line.text);
        for (const PatternMatcher& matcher : matchers) {
            for (const TextRange& range : matcher.matches(text)) {
                results.add(boxOf(line, text, range));
            }
        }
    }
    return outcome;
}

Outcome addFaces(const Bitmap& image, FaceDetector& detector, Results& results) {
    const auto faces = detector.detectFaces(image);
    if (!faces) {
        return Outcome::failed;
    }
    for (const RecognizerRect& face : *faces) {
        results.add(expandedFace(face));
    }
    return Outcome::whole;
}

} // namespace

bool readsText(const PIIKinds& kinds) {
    return std::ranges::any_of(kinds, [](PIIKind kind) { return pattern(kind).has_value(); });
}

Findings detect(const Bitmap& image, const PIIKinds& kinds, RedactionStyle style,
                const Engines& engines) {
    Results results(style, engines.random);
    Findings findings;
    if (readsText(kinds)) {
        findings.text = addTextMatches(image, kinds, engines.textRecognizer, results);
    }
    if (kinds.contains(PIIKind::faces)) {
        findings.faces = addFaces(image, engines.faceDetector, results);
    }
    findings.redactions = std::move(results.redactions);
    return findings;
}

Findings findMatches(std::string_view query, const Bitmap& image, bool fuzzy, RedactionStyle style,
                     const Engines& engines) {
    const std::u16string typed = Characters::fromUtf8(query);
    const std::u16string_view wanted = Characters::trimmed(typed);
    if (wanted.empty()) {
        return {};
    }
    const auto [lines, outcome] = engines.textRecognizer.recognize(image);
    Results results(style, engines.random);
    for (const RecognizedLine& line : lines) {
        const std::u16string text = Characters::fromUtf8(line.text);
        const auto ranges = fuzzy ? fuzzyRanges(wanted, text) : exactRanges(wanted, text);
        for (const TextRange& range : ranges) {
            results.add(boxOf(line, text, range));
        }
    }
    return {std::move(results.redactions), outcome, std::nullopt};
}

} // namespace murkwell::Detector
