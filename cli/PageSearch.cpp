#include "cli/PageSearch.h"

#include <algorithm>
#include <iterator>
#include <numeric>

namespace murkwell::cli {
namespace {

// Reads one page at the first call and repeats itself at all others.
class ReadOnce final : public TextRecognizer {
public:
    explicit ReadOnce(TextRecognizer& used) : recognizer(used) {}

    std::optional<std::vector<RecognizedLine>> recognize(const Bitmap& image) override {
        if (!asked) {
            lines = recognizer.recognize(image);
            asked = true;
        }
        return lines;
    }

private:
    TextRecognizer& recognizer;
    bool asked = false;
    std::optional<std::vector<RecognizedLine>> lines;
};

} // namespace

std::vector<std::size_t> pagesIn(const DocumentIO::Document& document, std::optional<int> page) {
    const std::size_t count = document.pages.size();
    if (page) {
        const auto index = static_cast<std::size_t>(*page - 1);
        return index < count ? std::vector{index} : std::vector<std::size_t>();
    }
    std::vector<std::size_t> all(count);
    std::iota(all.begin(), all.end(), std::size_t{0});
    return all;
}

std::vector<Redaction> searchPage(const Bitmap& page, const SearchArguments& arguments,
                                  RedactionStyle style, const Detector::Engines& engines) {
    ReadOnce text(engines.textRecognizer);
    const Detector::Engines here{text, engines.faceDetector, engines.random};
    std::vector<Redaction> found = Detector::detect(page, arguments.kinds, style, here);
    for (const std::string& query : arguments.queries) {
        std::ranges::copy(Detector::findMatches(query, page, arguments.fuzzy, style, here),
                          std::back_inserter(found));
    }
    return found;
}

} // namespace murkwell::cli
