#include "detect/Detector.h"

#include "core/RandomSource.h"
#include "detect/Characters.h"
#include "detect/ExactSearch.h"
#include "detect/FuzzySearch.h"
#include "detect/PatternMatcher.h"
#include "detect/RecognizedBoxes.h"

#include <algorithm>
#include <functional>
#include <memory>
#include <span>

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

// Where in a text there is what is looked for.
using Finder = std::function<std::vector<TextRange>(std::u16string_view text)>;

std::vector<Finder> findersOf(const PIIKinds& kinds) {
    std::vector<Finder> finders;
    for (PatternMatcher& matcher : matchersFor(kinds)) {
        const auto shared = std::make_shared<PatternMatcher>(std::move(matcher));
        finders.emplace_back([shared](std::u16string_view text) { return shared->matches(text); });
    }
    return finders;
}

struct Match {
    std::size_t reading;
    std::size_t finder;
    RecognizerRect box;
};

// Another reading of the same place is not to cover a part of what is covered already: where one
// reading sees "a@b.org" another may see "a@b" in "a@b.0rg".
bool isPartOf(const Match& part, const Match& whole) {
    return part.finder == whole.finder && part.reading != whole.reading &&
           part.box.minX() >= whole.box.minX() && part.box.maxX() <= whole.box.maxX() &&
           part.box.minY() >= whole.box.minY() && part.box.maxY() <= whole.box.maxY() &&
           (part.box != whole.box || whole.reading < part.reading);
}

// Readings are lines of one place.
std::vector<Match> matchesIn(std::span<const RecognizedLine> readings,
                             const std::vector<Finder>& finders) {
    std::vector<Match> matches;
    for (std::size_t reading = 0; reading < readings.size(); ++reading) {
        const RecognizedLine& line = readings[reading];
        const std::u16string text = Characters::fromUtf8(line.text);
        for (std::size_t finder = 0; finder < finders.size(); ++finder) {
            for (const TextRange& range : finders[finder](text)) {
                matches.push_back({reading, finder, boxOf(line, text, range)});
            }
        }
    }
    return matches;
}

Outcome addTextMatches(const Bitmap& image, const std::vector<Finder>& finders,
                       TextRecognizer& recognizer, Results& results) {
    const auto [lines, outcome] = recognizer.recognize(image);
    for (std::span<const RecognizedLine> left = lines; !left.empty();) {
        const auto place = left.first(static_cast<std::size_t>(
            std::ranges::find_if(left, [&](const auto& line) { return line.box != left[0].box; }) -
            left.begin()));
        const std::vector<Match> matches = matchesIn(place, finders);
        for (const Match& match : matches) {
            const auto covers = [&](const Match& other) { return isPartOf(match, other); };
            if (std::ranges::none_of(matches, covers)) {
                results.add(match.box);
            }
        }
        left = left.subspan(place.size());
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
        findings.text = addTextMatches(image, findersOf(kinds), engines.textRecognizer, results);
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
    const Finder occurrences = [&](std::u16string_view text) {
        return fuzzy ? fuzzyRanges(wanted, text) : exactRanges(wanted, text);
    };
    Results results(style, engines.random);
    const Outcome outcome = addTextMatches(image, {occurrences}, engines.textRecognizer, results);
    return {std::move(results.redactions), outcome, std::nullopt};
}

} // namespace murkwell::Detector
