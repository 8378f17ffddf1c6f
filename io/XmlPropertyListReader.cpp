#include "io/XmlPropertyListReader.h"

#include "io/Base64.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <expat.h>
#include <memory>
#include <new>
#include <optional>
#include <vector>

namespace murkwell {
namespace {

using Answer = PropertyListVisitor::Answer;

constexpr std::size_t deepest = 64;
constexpr std::size_t longestToken = std::size_t{1} << 20;
constexpr std::size_t longestNumber = 2048; // characters; no double has more digits
constexpr std::string_view whiteSpace = " \t\r\n";

enum class Element {
    plist,
    dictionary,
    array,
    key,
    string,
    integer,
    real,
    data,
    date,
    yes,
    no,
};

std::optional<Element> elementNamed(std::string_view name) {
    struct Entry {
        std::string_view name;
        Element element;
    };
    static constexpr std::array<Entry, 11> entries{{
        {"plist", Element::plist},
        {"dict", Element::dictionary},
        {"array", Element::array},
        {"key", Element::key},
        {"string", Element::string},
        {"integer", Element::integer},
        {"real", Element::real},
        {"data", Element::data},
        {"date", Element::date},
        {"true", Element::yes},
        {"false", Element::no},
    }};
    const auto* const found = std::ranges::find(entries, name, &Entry::name);
    return found == entries.end() ? std::nullopt : std::optional(found->element);
}

bool isContainer(Element element) {
    return element == Element::plist || element == Element::dictionary || element == Element::array;
}

std::string_view trimmed(std::string_view text) {
    const std::size_t first = text.find_first_not_of(whiteSpace);
    if (first == std::string_view::npos) {
        return {};
    }
    return text.substr(first, text.find_last_not_of(whiteSpace) - first + 1);
}

// std::from_chars does not know a leading plus.
std::string_view withoutPlus(std::string_view text) {
    return text.starts_with('+') ? text.substr(1) : text;
}

template <typename Number>
std::optional<Number> parsed(std::string_view text) {
    const std::string_view digits = withoutPlus(trimmed(text));
    Number value{};
    const char* const end = digits.data() + digits.size();
    const auto [stop, error] = std::from_chars(digits.data(), end, value);
    return error == std::errc() && stop == end ? std::optional(value) : std::nullopt;
}

class Reader {
public:
    explicit Reader(PropertyListVisitor& told) : visitor(told) {}

    bool read(std::span<const std::byte> file) {
        // Small enough to be copied without being noticed.
        constexpr std::size_t chunk = std::size_t{64} << 10;
        const std::unique_ptr<XML_ParserStruct, decltype(&XML_ParserFree)> owned(
            XML_ParserCreate(nullptr), &XML_ParserFree);
        parser = owned.get();
        if (parser == nullptr) {
            return false;
        }
        install();
        for (std::size_t fed = 0;;) {
            const std::size_t size = std::min(chunk, file.size() - fed);
            const bool last = fed + size == file.size();
            const auto* const next = reinterpret_cast<const char*>(file.data()) + fed;
            if (XML_Parse(parser, next, static_cast<int>(size), last ? 1 : 0) != XML_STATUS_OK) {
                return false;
            }
            fed += size;
            if (last) {
                return good && finished;
            }
            if (fed - done() > longestToken) {
                return false;
            }
        }
    }

private:
    // A container that is open. A skipped one is checked but not told.
    struct Level {
        Element element;
        bool skipped;
        std::size_t children = 0;
        bool keyPending = false;     // of a dictionary: the next element is a value
        bool skipsNextValue = false; // of a dictionary: the visitor does not want it
    };

    void install() {
        XML_SetUserData(parser, this);
        XML_SetElementHandler(
            parser,
            [](void* self, const char* name, const char** /*attributes*/) {
                of(self).guard([&](Reader& reader) { return reader.begin(name); });
            },
            [](void* self, const char* /*name*/) {
                of(self).guard([](Reader& reader) { return reader.end(); });
            });
        XML_SetCharacterDataHandler(parser, [](void* self, const char* piece, int length) {
            of(self).guard([&](Reader& reader) {
                return reader.characters({piece, static_cast<std::size_t>(length)});
            });
        });
        XML_SetEntityDeclHandler(parser,
                                 [](void* self, const char*, int, const char*, int, const char*,
                                    const char*, const char*, const char*) { of(self).stop(); });
        // A reference to an entity that only an outside file, which nobody reads, would define.
        XML_SetSkippedEntityHandler(
            parser, [](void* self, const char*, int /*isParameterEntity*/) { of(self).stop(); });
    }

    static Reader& of(void* self) { return *static_cast<Reader*>(self); }

    // Exceptions must not pass through the parser, which is written in C.
    template <typename Step>
    void guard(Step step) {
        try {
            if (good && !step(*this)) {
                stop();
            }
        } catch (const std::bad_alloc&) {
            stop();
        }
    }

    void stop() {
        good = false;
        XML_StopParser(parser, XML_FALSE);
    }

    // How many bytes the parser is through with.
    std::size_t done() const {
        return static_cast<std::size_t>(std::max<XML_Index>(XML_GetCurrentByteIndex(parser), 0));
    }

    bool begin(std::string_view name) {
        const auto element = elementNamed(name);
        if (!element || leaf || levels.size() == deepest ||
            levels.empty() != (*element == Element::plist)) {
            return false;
        }
        if (*element == Element::plist) {
            levels.push_back({*element, false});
            return true;
        }
        const auto skipped = place(*element);
        if (!skipped) {
            return false;
        }
        if (isContainer(*element)) {
            levels.push_back({*element, *skipped});
            return *skipped ||
                   (*element == Element::array ? visitor.beginArray(0) : visitor.beginDictionary());
        }
        beginLeaf(*element, *skipped);
        return true;
    }

    // Whether the element may stand here, and if so whether it is skipped.
    std::optional<bool> place(Element element) {
        Level& parent = levels.back();
        ++parent.children;
        if (parent.element == Element::plist) {
            return parent.children == 1 && element != Element::key ? std::optional(false)
                                                                   : std::nullopt;
        }
        if (parent.element == Element::array) {
            return element != Element::key ? std::optional(parent.skipped) : std::nullopt;
        }
        if ((element == Element::key) == parent.keyPending) {
            return std::nullopt;
        }
        parent.keyPending = !parent.keyPending;
        return parent.skipped || (element != Element::key && parent.skipsNextValue);
    }

    void beginLeaf(Element element, bool skipped) {
        leaf = element;
        leafSkipped = skipped;
        text.clear();
        data.clear();
        base64 = Base64Decoder(skipped ? nullptr : &data);
    }

    bool characters(std::string_view piece) {
        if (!leaf || *leaf == Element::yes || *leaf == Element::no) {
            return trimmed(piece).empty();
        }
        if (*leaf == Element::data) {
            return base64.add(piece);
        }
        const bool isNumber = *leaf == Element::integer || *leaf == Element::real;
        if (leafSkipped && !isNumber) {
            return true;
        }
        if (*leaf == Element::key) {
            // One byte more than the longest key that is asked about says enough.
            piece = piece.substr(0, PropertyListVisitor::longestKey + 1 - text.size());
        }
        text.append(piece);
        return text.size() <= (isNumber ? longestNumber : PropertyListVisitor::longestString);
    }

    bool end() {
        if (leaf) {
            const Element element = *leaf;
            leaf.reset();
            return endLeaf(element);
        }
        const Level level = levels.back();
        levels.pop_back();
        switch (level.element) {
        case Element::plist:
            finished = level.children == 1;
            return finished;
        case Element::dictionary:
            return !level.keyPending && (level.skipped || visitor.endDictionary());
        default:
            return level.skipped || visitor.endArray();
        }
    }

    bool endLeaf(Element element) {
        switch (element) {
        case Element::key:
            return endKey();
        case Element::string:
            return leafSkipped || visitor.string(std::move(text));
        case Element::integer: {
            const auto value = parsed<std::int64_t>(text);
            return value && (leafSkipped || visitor.integer(*value));
        }
        case Element::real: {
            const auto value = parsed<double>(text);
            return value && (leafSkipped || visitor.real(*value));
        }
        case Element::data:
            return base64.finish() && (leafSkipped || visitor.data(SharedBytes(std::move(data))));
        case Element::yes:
        case Element::no:
            return leafSkipped || visitor.boolean(element == Element::yes);
        default:
            return leafSkipped; // a date, which no visitor reads
        }
    }

    bool endKey() {
        Level& dictionary = levels.back();
        if (dictionary.skipped) {
            return true;
        }
        const Answer answer =
            text.size() > PropertyListVisitor::longestKey ? Answer::skip : visitor.key(text);
        dictionary.skipsNextValue = answer == Answer::skip;
        return answer != Answer::refuse;
    }

    PropertyListVisitor& visitor;
    XML_Parser parser = nullptr;
    bool good = true;
    bool finished = false;
    std::vector<Level> levels;

    // The element without children that is open, and what it holds so far.
    std::optional<Element> leaf;
    bool leafSkipped = false;
    std::string text;
    std::vector<std::byte> data;
    Base64Decoder base64{nullptr};
};

} // namespace

bool readXmlPropertyList(std::span<const std::byte> file, PropertyListVisitor& visitor) {
    return Reader(visitor).read(file);
}

} // namespace murkwell
