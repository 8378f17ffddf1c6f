// Binary property lists put together byte by byte, so that a test can lie in any of them.
#pragma once

#include "core/SharedBytes.h"
#include "tests/support/FakeEngines.h"

#include <bit>
#include <cstdint>
#include <initializer_list>
#include <optional>
#include <string>
#include <vector>

namespace murkwell {

inline SharedBytes sharedBytes(const std::string& text) {
    return SharedBytes(bytesOf(text));
}

inline std::string bigEndian(std::uint64_t value, unsigned width) {
    std::string bytes;
    for (unsigned i = width; i > 0; --i) {
        const unsigned shift = 8 * (i - 1);
        bytes.push_back(shift < 64 ? static_cast<char>(value >> shift & 0xFF) : '\0');
    }
    return bytes;
}

struct RawPropertyList {
    std::vector<std::string> objects; // marker and content
    unsigned offsetSize = 4;
    unsigned referenceSize = 1;
    // What the trailer says; the truth when there is none.
    std::optional<std::uint64_t> count;
    std::optional<std::uint64_t> tableStart;
    std::uint64_t top = 0;

    [[nodiscard]] std::string text() const {
        std::string list = "bplist00";
        std::string table;
        for (const std::string& object : objects) {
            table += bigEndian(list.size(), offsetSize);
            list += object;
        }
        const std::uint64_t start = list.size();
        return list + table + std::string(6, '\0') + bigEndian(offsetSize, 1) +
               bigEndian(referenceSize, 1) + bigEndian(count.value_or(objects.size()), 8) +
               bigEndian(top, 8) + bigEndian(tableStart.value_or(start), 8);
    }

    [[nodiscard]] SharedBytes file() const { return sharedBytes(text()); }
};

// Objects. References are one byte wide, counts below 15.
inline std::string rawString(const std::string& ascii) {
    return bigEndian(0x50 + ascii.size(), 1) + ascii;
}
inline std::string rawReal(double value) {
    return "\x23" + bigEndian(std::bit_cast<std::uint64_t>(value), 8);
}
inline std::string rawArray(std::initializer_list<unsigned> references) {
    std::string object = bigEndian(0xA0 + references.size(), 1);
    for (const unsigned reference : references) {
        object += bigEndian(reference, 1);
    }
    return object;
}
// Keys first, then values.
inline std::string rawDictionary(std::initializer_list<unsigned> references) {
    std::string object = rawArray(references);
    object[0] = static_cast<char>(0xD0 + references.size() / 2);
    return object;
}
inline const std::string rawFalse = "\x08";
inline const std::string rawTrue = "\x09";

// Numbers of the objects of rawDocument().
namespace Raw {
enum : unsigned {
    document,
    versionKey,
    nameKey,
    dataKey,
    pagesKey,
    version,
    name,
    data,
    pages,
    page,
    redaction,
    rectKey,
    styleKey,
    detectedKey,
    rect,
    origin,
    size,
    style,
    detected,
    x,
    y,
    width,
    height,
};
} // namespace Raw

// A saved document with one box on one page, every object once.
inline RawPropertyList rawDocument() {
    using namespace Raw;
    RawPropertyList list;
    list.objects = {
        rawDictionary({versionKey, nameKey, dataKey, pagesKey, version, name, data, pages}),
        rawString("version"),
        rawString("sourceFilename"),
        rawString("sourceData"),
        rawString("pages"),
        "\x10\x01",
        rawString("a.png"),
        "\x43"
        "PNG",
        rawArray({page}),
        rawArray({redaction}),
        rawDictionary({rectKey, styleKey, detectedKey, rect, style, detected}),
        rawString("rect"),
        rawString("style"),
        rawString("detected"),
        rawArray({origin, size}),
        rawArray({x, y}),
        rawArray({width, height}),
        rawString("noise"),
        rawTrue,
        rawReal(0.1),
        rawReal(0.2),
        rawReal(0.3),
        rawReal(0.4),
    };
    return list;
}

} // namespace murkwell
