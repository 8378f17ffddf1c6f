#include "io/BinaryPropertyListReader.h"

#include "io/Unicode.h"

#include <algorithm>
#include <bit>
#include <optional>
#include <span>
#include <string_view>

namespace murkwell {
namespace {

using Bytes = std::span<const std::byte>;

constexpr std::string_view magic = "bplist00";
constexpr std::size_t trailerSize = 32;

// The high four bits of an object's first byte.
enum class Kind : std::uint8_t {
    simple = 0x0, // null, false, true
    integer = 0x1,
    real = 0x2,
    date = 0x3,
    data = 0x4,
    ascii = 0x5,
    utf16 = 0x6,
    array = 0xA,
    dictionary = 0xD,
};

constexpr unsigned falseObject = 8;
constexpr unsigned trueObject = 9;

// At most 8 bytes, the highest first.
std::uint64_t bigEndian(Bytes bytes) {
    std::uint64_t value = 0;
    for (const std::byte byte : bytes) {
        value = value << 8 | std::to_integer<std::uint64_t>(byte);
    }
    return value;
}

bool isString(Kind kind) {
    return kind == Kind::ascii || kind == Kind::utf16;
}

std::optional<std::string> textOf(Kind kind, Bytes content) {
    if (kind == Kind::utf16) {
        return utf8FromUtf16(content);
    }
    std::string text(content.size(), '\0');
    std::ranges::transform(content, text.begin(),
                           [](std::byte byte) { return std::to_integer<char>(byte); });
    return isAscii(text) ? std::optional(std::move(text)) : std::nullopt;
}

// 1, 2 and 4 bytes are unsigned, 8 bytes signed, and 16 bytes signed too.
std::optional<std::int64_t> integerOf(Bytes content) {
    if (content.size() <= 8) {
        return static_cast<std::int64_t>(bigEndian(content));
    }
    const auto low = static_cast<std::int64_t>(bigEndian(content.last(8)));
    const auto high = static_cast<std::int64_t>(bigEndian(content.first(8)));
    return high == (low < 0 ? -1 : 0) ? std::optional(low) : std::nullopt;
}

std::optional<double> realOf(Bytes content) {
    if (content.size() == 4) {
        return std::bit_cast<float>(static_cast<std::uint32_t>(bigEndian(content)));
    }
    if (content.size() == 8) {
        return std::bit_cast<double>(bigEndian(content));
    }
    return std::nullopt;
}

class Reader {
public:
    Reader(const SharedBytes& list, PropertyListVisitor& told)
        : file(list), bytes(list.bytes()), visitor(told), visitsLeft(list.size()) {}

    bool read() { return readTrailer() && value(topObject); }

private:
    // An object whose content lies within the file. The count is the low four bits, or the number
    // of bytes, units, elements or entries.
    struct Object {
        Kind kind;
        std::uint64_t count;
        std::size_t offset; // of the content
        Bytes content;
    };

    bool readTrailer() {
        if (bytes.size() < magic.size() + trailerSize) {
            return false;
        }
        const Bytes trailer = bytes.last(trailerSize);
        const std::size_t trailerStart = bytes.size() - trailerSize;
        offsetSize = std::to_integer<std::size_t>(trailer[6]);
        referenceSize = std::to_integer<std::size_t>(trailer[7]);
        objectCount = bigEndian(trailer.subspan(8, 8));
        topObject = bigEndian(trailer.subspan(16, 8));
        tableStart = bigEndian(trailer.subspan(24, 8));
        return offsetSize >= 1 && offsetSize <= 8 && referenceSize >= 1 && referenceSize <= 8 &&
               tableStart > magic.size() && tableStart < trailerStart &&
               objectCount <= (trailerStart - tableStart) / offsetSize;
    }

    // None when any part of the object lies outside the file or its type is unknown.
    std::optional<Object> object(std::uint64_t index) {
        if (index >= objectCount || visitsLeft == 0) {
            return std::nullopt;
        }
        --visitsLeft;
        const std::uint64_t offset =
            bigEndian(bytes.subspan(tableStart + index * offsetSize, offsetSize));
        if (offset < magic.size() || offset >= tableStart) {
            return std::nullopt;
        }
        const auto marker = std::to_integer<unsigned>(bytes[offset]);
        Object found{static_cast<Kind>(marker >> 4), marker & 0xF, offset + 1, {}};
        if (!readCount(found)) {
            return std::nullopt;
        }
        const auto size = sizeOfContent(found);
        if (!size) {
            return std::nullopt;
        }
        found.content = bytes.subspan(found.offset, *size);
        return found;
    }

    // A count of 15 says that the real one follows as an integer object.
    bool readCount(Object& found) const {
        const bool counted = isString(found.kind) || found.kind == Kind::data ||
                             found.kind == Kind::array || found.kind == Kind::dictionary;
        if (!counted || found.count != 0xF) {
            return true;
        }
        if (found.offset >= tableStart) {
            return false;
        }
        const auto marker = std::to_integer<unsigned>(bytes[found.offset]);
        const std::size_t width = std::size_t{1} << (marker & 0xF);
        if (static_cast<Kind>(marker >> 4) != Kind::integer || width > 8 ||
            width >= tableStart - found.offset) {
            return false;
        }
        found.count = bigEndian(bytes.subspan(found.offset + 1, width));
        found.offset += 1 + width;
        return true;
    }

    // In bytes. None when that many do not follow or the type is none of ours.
    std::optional<std::size_t> sizeOfContent(const Object& found) const {
        const auto fitting = [&](std::uint64_t count, std::size_t unit) {
            return count <= (tableStart - found.offset) / unit
                       ? std::optional<std::size_t>(count * unit)
                       : std::nullopt;
        };
        switch (found.kind) {
        case Kind::simple:
            return 0;
        case Kind::integer:
        case Kind::real:
            return found.count <= 4 ? fitting(std::uint64_t{1} << found.count, 1) : std::nullopt;
        case Kind::data:
        case Kind::ascii:
            return fitting(found.count, 1);
        case Kind::utf16:
            return fitting(found.count, 2);
        case Kind::array:
            return fitting(found.count, referenceSize);
        case Kind::dictionary:
            return fitting(found.count, 2 * referenceSize);
        case Kind::date:
            break;
        }
        return std::nullopt;
    }

    [[nodiscard]] std::uint64_t reference(const Object& container, std::uint64_t position) const {
        return bigEndian(container.content.subspan(position * referenceSize, referenceSize));
    }

    bool value(std::uint64_t index) {
        const auto found = object(index);
        if (!found) {
            return false;
        }
        switch (found->kind) {
        case Kind::dictionary:
            return dictionary(*found);
        case Kind::array:
            return array(*found);
        default:
            return scalar(*found);
        }
    }

    bool scalar(const Object& found) {
        if (isString(found.kind)) {
            if (found.content.size() > PropertyListVisitor::longestString) {
                return false;
            }
            auto text = textOf(found.kind, found.content);
            return text && visitor.string(std::move(*text));
        }
        if (found.kind == Kind::integer) {
            const auto number = integerOf(found.content);
            return number && visitor.integer(*number);
        }
        if (found.kind == Kind::real) {
            const auto number = realOf(found.content);
            return number && visitor.real(*number);
        }
        if (found.kind == Kind::data) {
            return visitor.data(file.slice(found.offset, found.content.size()));
        }
        return (found.count == falseObject || found.count == trueObject) &&
               visitor.boolean(found.count == trueObject);
    }

    bool array(const Object& found) {
        if (!visitor.beginArray(found.count)) {
            return false;
        }
        for (std::uint64_t i = 0; i < found.count; ++i) {
            if (!value(reference(found, i))) {
                return false;
            }
        }
        return visitor.endArray();
    }

    bool dictionary(const Object& found) {
        if (!visitor.beginDictionary()) {
            return false;
        }
        for (std::uint64_t i = 0; i < found.count; ++i) {
            const auto answer = key(reference(found, i));
            if (answer == PropertyListVisitor::Answer::refuse) {
                return false;
            }
            if (answer == PropertyListVisitor::Answer::read &&
                !value(reference(found, found.count + i))) {
                return false;
            }
        }
        return visitor.endDictionary();
    }

    PropertyListVisitor::Answer key(std::uint64_t index) {
        const auto found = object(index);
        if (!found || !isString(found->kind)) {
            return PropertyListVisitor::Answer::refuse;
        }
        if (found->count > PropertyListVisitor::longestKey) {
            return PropertyListVisitor::Answer::skip;
        }
        const auto text = textOf(found->kind, found->content);
        return text ? visitor.key(*text) : PropertyListVisitor::Answer::refuse;
    }

    const SharedBytes& file;
    Bytes bytes;
    PropertyListVisitor& visitor;
    std::size_t visitsLeft;

    // From the trailer. Objects lie between the magic and the offset table.
    std::size_t offsetSize = 0;
    std::size_t referenceSize = 0;
    std::uint64_t objectCount = 0;
    std::uint64_t topObject = 0;
    std::size_t tableStart = 0;
};

} // namespace

bool isBinaryPropertyList(const SharedBytes& file) {
    return file.size() >= magic.size() &&
           std::ranges::equal(file.bytes().first(magic.size()), magic, {}, {},
                              [](char c) { return static_cast<std::byte>(c); });
}

bool readBinaryPropertyList(const SharedBytes& file, PropertyListVisitor& visitor) {
    return isBinaryPropertyList(file) && Reader(file, visitor).read();
}

} // namespace murkwell
