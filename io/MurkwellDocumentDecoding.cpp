#include "io/MurkwellDocument.h"

#include "io/BinaryPropertyListReader.h"
#include "io/FileName.h"
#include "io/MurkwellDocumentKeys.h"
#include "io/Unicode.h"
#include "io/XmlPropertyListReader.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <new>
#include <stdexcept>
#include <string_view>
#include <utility>

namespace murkwell {
namespace {

namespace Keys = MurkwellDocumentKeys;

// Where in the document a value stands.
enum class Place { document, pages, page, redaction, rect, pair };

// Builds a document from what a reader tells, and refuses whatever is not of its shape.
class DocumentBuilder final : public PropertyListVisitor {
public:
    std::optional<MurkwellDocument> result() {
        return complete ? std::optional(std::move(document)) : std::nullopt;
    }

    bool beginDictionary() override {
        if (places.empty()) {
            places.push_back(Place::document);
            return true;
        }
        if (places.back() != Place::page) {
            return false;
        }
        places.push_back(Place::redaction);
        box = {};
        redactionKeys = {};
        return true;
    }

    Answer key(std::string_view name) override {
        pendingKey = name;
        return places.back() == Place::document ? noteKey(documentKeys, name)
                                                : noteKey(redactionKeys, name);
    }

    bool endDictionary() override {
        const Place ended = places.back();
        places.pop_back();
        if (ended == Place::document) {
            complete = documentKeys.allSeen();
            return complete;
        }
        document.pages.back().push_back(box);
        return redactionKeys.allSeen();
    }

    bool beginArray(std::size_t count) override {
        const auto place = placeOfArray();
        if (!place) {
            return false;
        }
        places.push_back(*place);
        switch (*place) {
        case Place::pages:
            return reservePages(count);
        case Place::page:
            return addPage();
        case Place::rect:
            pairs = 0;
            return true;
        default:
            numbers = 0;
            return true;
        }
    }

    bool endArray() override {
        const Place ended = places.back();
        places.pop_back();
        switch (ended) {
        case Place::pair:
            ++pairs;
            return numbers == 2;
        case Place::rect:
            return pairs == 2;
        default:
            return true;
        }
    }

    bool string(std::string text) override {
        if (isAt(Place::document, Keys::sourceFilename)) {
            document.sourceFilename = std::move(text);
            return !hasControlCharacters(document.sourceFilename);
        }
        const auto style = redactionStyle(text);
        if (!isAt(Place::redaction, Keys::style) || !style) {
            return false;
        }
        box.style = *style;
        return true;
    }

    bool integer(std::int64_t value) override {
        if (isAt(Place::document, Keys::version)) {
            document.version = value;
            return true;
        }
        return real(static_cast<double>(value));
    }

    bool real(double value) override {
        if (places.empty() || places.back() != Place::pair || numbers == 2 || pairs == 2 ||
            !std::isfinite(value)) {
            return false;
        }
        const std::array sides{&box.rect.x, &box.rect.y, &box.rect.width, &box.rect.height};
        *sides.at(2 * pairs + numbers) = value;
        ++numbers;
        return true;
    }

    bool boolean(bool value) override {
        box.detected = value;
        return isAt(Place::redaction, Keys::detected);
    }

    bool data(SharedBytes bytes) override {
        document.sourceData = std::move(bytes);
        return isAt(Place::document, Keys::sourceData);
    }

private:
    // Far more than any source can load as.
    static constexpr std::size_t mostPages = std::size_t{1} << 20;

    // The keys of a dictionary that are read, and which of them have come.
    template <std::size_t count>
    struct ExpectedKeys {
        std::array<std::string_view, count> names;
        std::array<bool, count> seen{};

        [[nodiscard]] bool allSeen() const { return std::ranges::find(seen, false) == seen.end(); }
    };
    struct DocumentKeys : ExpectedKeys<4> {
        DocumentKeys()
            : ExpectedKeys{{Keys::version, Keys::sourceFilename, Keys::sourceData, Keys::pages}} {}
    };
    struct RedactionKeys : ExpectedKeys<3> {
        RedactionKeys() : ExpectedKeys{{Keys::rect, Keys::style, Keys::detected}} {}
    };

    // A key that comes twice leaves open what it means.
    template <std::size_t count>
    static Answer noteKey(ExpectedKeys<count>& keys, std::string_view name) {
        const auto* const found = std::ranges::find(keys.names, name);
        if (found == keys.names.end()) {
            return Answer::skip;
        }
        bool& seen = keys.seen.at(static_cast<std::size_t>(found - keys.names.begin()));
        return std::exchange(seen, true) ? Answer::refuse : Answer::read;
    }

    [[nodiscard]] bool isAt(Place place, std::string_view key) const {
        return !places.empty() && places.back() == place && pendingKey == key;
    }

    [[nodiscard]] std::optional<Place> placeOfArray() const {
        if (isAt(Place::document, Keys::pages)) {
            return Place::pages;
        }
        if (isAt(Place::redaction, Keys::rect)) {
            return Place::rect;
        }
        if (!places.empty() && places.back() == Place::pages) {
            return Place::page;
        }
        if (!places.empty() && places.back() == Place::rect) {
            return Place::pair;
        }
        return std::nullopt;
    }

    bool reservePages(std::size_t count) {
        if (count > mostPages) {
            return false;
        }
        document.pages.reserve(count);
        return true;
    }

    bool addPage() {
        document.pages.emplace_back();
        return document.pages.size() <= mostPages;
    }

    MurkwellDocument document{};
    DocumentKeys documentKeys;
    bool complete = false;
    std::vector<Place> places; // from the outermost container to the innermost
    std::string pendingKey;    // of the innermost dictionary

    // The redaction that is being read.
    StoredRedaction box{};
    RedactionKeys redactionKeys;
    std::size_t pairs = 0;   // finished ones of the rect
    std::size_t numbers = 0; // of the pair
};

} // namespace

std::optional<MurkwellDocument> decode(const SharedBytes& file) try {
    DocumentBuilder builder;
    const bool good = isBinaryPropertyList(file) ? readBinaryPropertyList(file, builder)
                                                 : readXmlPropertyList(file.bytes(), builder);
    return good ? builder.result() : std::nullopt;
} catch (const std::bad_alloc&) {
    return std::nullopt;
} catch (const std::length_error&) {
    return std::nullopt;
}

std::filesystem::path nominalURL(const MurkwellDocument& document,
                                 const std::filesystem::path& file) {
    return file.parent_path() / lastPathComponent(document.sourceFilename);
}

} // namespace murkwell
