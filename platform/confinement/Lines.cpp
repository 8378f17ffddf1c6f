#include "platform/confinement/Lines.h"

#include "io/Unicode.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace murkwell {
namespace {

using Bytes = std::vector<std::byte>;

// A line is this, then its text, then the boxes of its characters.
struct LineHead {
    std::uint32_t textBytes;
    std::uint32_t characterBoxes;
    RecognizerRect box;
};
static_assert(sizeof(RecognizerRect) == 4 * sizeof(double) &&
              sizeof(LineHead) == 8 + sizeof(RecognizerRect));

template <typename List>
void append(Bytes& bytes, const List& values) {
    const auto added = std::as_bytes(std::span(values));
    bytes.insert(bytes.end(), added.begin(), added.end());
}

// In fractions of the page. What is honestly found may reach over its edge, but not that far.
bool isBelievable(const RecognizerRect& box) {
    constexpr double farOut = 100;
    return std::ranges::all_of(std::array{box.x, box.y, box.width, box.height},
                               [](double value) { return std::abs(value) < farOut; });
}

bool isUtf8(std::string_view text) {
    constexpr std::string_view replacement = "\uFFFD";
    std::ptrdiff_t honest = 0;
    for (auto at = text.find(replacement); at != std::string_view::npos;
         at = text.find(replacement, at + replacement.size())) {
        ++honest;
    }
    return std::ranges::count(utf16FromUtf8(text), u'\uFFFD') == honest;
}

class Reader {
public:
    explicit Reader(std::span<const std::byte> all) : rest(all) {}

    [[nodiscard]] bool atEnd() const { return rest.empty(); }

    // Copies so many values out. False when there are not so many left.
    template <typename List>
    [[nodiscard]] bool take(List& values, std::size_t count) {
        using Value = typename List::value_type;
        if (count > rest.size() / sizeof(Value)) {
            return false;
        }
        values.resize(count);
        if (count > 0) {
            std::memcpy(values.data(), rest.data(), count * sizeof(Value));
        }
        rest = rest.subspan(count * sizeof(Value));
        return true;
    }

    [[nodiscard]] bool takeBoxes(std::vector<RecognizerRect>& boxes, std::size_t count) {
        return take(boxes, count) && std::ranges::all_of(boxes, isBelievable);
    }

private:
    std::span<const std::byte> rest;
};

bool takeLine(Reader& reader, RecognizedLine& line) {
    std::vector<LineHead> head;
    if (!reader.take(head, 1) || !isBelievable(head.front().box)) {
        return false;
    }
    line.box = head.front().box;
    return reader.take(line.text, head.front().textBytes) && isUtf8(line.text) &&
           reader.takeBoxes(line.characterBoxes, head.front().characterBoxes);
}

} // namespace

Bytes toBytes(std::span<const RecognizedLine> lines) {
    Bytes bytes;
    for (const RecognizedLine& line : lines) {
        append(bytes, std::array{LineHead{static_cast<std::uint32_t>(line.text.size()),
                                          static_cast<std::uint32_t>(line.characterBoxes.size()),
                                          line.box}});
        append(bytes, line.text);
        append(bytes, line.characterBoxes);
    }
    return bytes;
}

Bytes toBytes(std::span<const RecognizerRect> boxes) {
    Bytes bytes;
    append(bytes, boxes);
    return bytes;
}

std::optional<std::vector<RecognizedLine>> linesFrom(std::span<const std::byte> bytes) {
    std::vector<RecognizedLine> lines;
    for (Reader reader(bytes); !reader.atEnd();) {
        if (!takeLine(reader, lines.emplace_back())) {
            return std::nullopt;
        }
    }
    return lines;
}

std::optional<std::vector<RecognizerRect>> boxesFrom(std::span<const std::byte> bytes) {
    std::vector<RecognizerRect> boxes;
    Reader reader(bytes);
    return reader.takeBoxes(boxes, bytes.size() / sizeof(RecognizerRect)) && reader.atEnd()
               ? std::optional(std::move(boxes))
               : std::nullopt;
}

} // namespace murkwell
