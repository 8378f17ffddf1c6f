#include "io/Unicode.h"

#include <algorithm>

namespace murkwell {
namespace {

constexpr char32_t replacement = 0xFFFD;

bool isHighSurrogate(char32_t unit) {
    return unit >= 0xD800 && unit < 0xDC00;
}

bool isLowSurrogate(char32_t unit) {
    return unit >= 0xDC00 && unit < 0xE000;
}

void appendUtf8(std::string& text, char32_t c) {
    const auto add = [&](char32_t byte) { text.push_back(static_cast<char>(byte)); };
    if (c < 0x80) {
        add(c);
    } else if (c < 0x800) {
        add(0xC0 | c >> 6);
        add(0x80 | (c & 0x3F));
    } else if (c < 0x10000) {
        add(0xE0 | c >> 12);
        add(0x80 | (c >> 6 & 0x3F));
        add(0x80 | (c & 0x3F));
    } else {
        add(0xF0 | c >> 18);
        add(0x80 | (c >> 12 & 0x3F));
        add(0x80 | (c >> 6 & 0x3F));
        add(0x80 | (c & 0x3F));
    }
}

struct Decoded {
    char32_t character;
    std::size_t length; // bytes used up
};

constexpr std::size_t lengthOfSequence(unsigned char lead) {
    if (lead < 0x80) {
        return 1;
    }
    if (lead < 0xC2 || lead > 0xF4) {
        return 0;
    }
    return lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
}

// The character at the front of a text that is not empty; one replaced byte where there is none.
Decoded decodeFront(std::string_view text) {
    const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    const std::size_t length = lengthOfSequence(byte(0));
    if (length == 1) {
        return {byte(0), 1};
    }
    if (length == 0 || length > text.size()) {
        return {replacement, 1};
    }
    char32_t c = byte(0) & (0x7FU >> length);
    for (std::size_t i = 1; i < length; ++i) {
        if ((byte(i) & 0xC0) != 0x80) {
            return {replacement, 1};
        }
        c = c << 6 | (byte(i) & 0x3F);
    }
    const bool overlong = (length == 3 && c < 0x800) || (length == 4 && c < 0x10000);
    if (overlong || c > 0x10FFFF || isHighSurrogate(c) || isLowSurrogate(c)) {
        return {replacement, 1};
    }
    return {c, length};
}

// Cuts the text into characters; broken bytes come one by one, as U+FFFD.
template <typename Take>
void forEachCharacter(std::string_view text, Take take) {
    while (!text.empty()) {
        const auto [c, length] = decodeFront(text);
        take(c, text.substr(0, length));
        text.remove_prefix(length);
    }
}

bool isControlCharacter(char32_t c) {
    return c < 0x20 || (c >= 0x7F && c < 0xA0);
}

bool breaksOrTurnsTheLine(char32_t c) {
    return (c >= 0x2028 && c <= 0x202E) || (c >= 0x2066 && c <= 0x2069);
}

} // namespace

std::optional<std::string> utf8FromUtf16(std::span<const std::byte> bigEndian) {
    const auto unit = [&](std::size_t i) {
        return std::to_integer<char32_t>(bigEndian[2 * i]) << 8 |
               std::to_integer<char32_t>(bigEndian[2 * i + 1]);
    };
    std::string text;
    const std::size_t count = bigEndian.size() / 2;
    for (std::size_t i = 0; i < count; ++i) {
        char32_t c = unit(i);
        if (isHighSurrogate(c) && i + 1 < count && isLowSurrogate(unit(i + 1))) {
            c = 0x10000 + ((c - 0xD800) << 10) + (unit(++i) - 0xDC00);
        } else if (isHighSurrogate(c) || isLowSurrogate(c)) {
            return std::nullopt;
        }
        appendUtf8(text, c);
    }
    return text;
}

std::u16string utf16FromUtf8(std::string_view text) {
    std::u16string units;
    forEachCharacter(text, [&](char32_t c, std::string_view) {
        if (c < 0x10000) {
            units.push_back(static_cast<char16_t>(c));
        } else {
            units.push_back(static_cast<char16_t>(0xD800 + ((c - 0x10000) >> 10)));
            units.push_back(static_cast<char16_t>(0xDC00 + ((c - 0x10000) & 0x3FF)));
        }
    });
    return units;
}

bool isUtf8(std::string_view text) {
    bool broken = false;
    forEachCharacter(text, [&](char32_t c, std::string_view bytes) {
        broken = broken || (c == replacement && bytes.size() == 1);
    });
    return !broken;
}

bool hasControlCharacters(std::string_view text) {
    bool found = false;
    forEachCharacter(text,
                     [&](char32_t c, std::string_view) { found = found || isControlCharacter(c); });
    return found;
}

std::string printable(std::string_view text) {
    std::string result;
    forEachCharacter(text, [&](char32_t c, std::string_view) {
        appendUtf8(result, isControlCharacter(c) || breaksOrTurnsTheLine(c) ? replacement : c);
    });
    return result;
}

bool isAscii(std::string_view text) {
    return std::ranges::all_of(text, [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

} // namespace murkwell
