#include "model/WhiteSpace.h"

#include <algorithm>
#include <array>

namespace murkwell {
namespace {

// Every character with the Unicode property White_Space.
constexpr std::array<std::string_view, 25> characters{
    "\t",           "\n",           "\v",           "\f",           "\r",           " ",
    "\xC2\x85",     "\xC2\xA0",     "\xE1\x9A\x80", "\xE2\x80\x80", "\xE2\x80\x81", "\xE2\x80\x82",
    "\xE2\x80\x83", "\xE2\x80\x84", "\xE2\x80\x85", "\xE2\x80\x86", "\xE2\x80\x87", "\xE2\x80\x88",
    "\xE2\x80\x89", "\xE2\x80\x8A", "\xE2\x80\xA8", "\xE2\x80\xA9", "\xE2\x80\xAF", "\xE2\x81\x9F",
    "\xE3\x80\x80",
};

} // namespace

std::string_view withoutOuterWhiteSpace(std::string_view text) {
    for (;;) {
        const auto* const first = std::ranges::find_if(
            characters, [&](std::string_view character) { return text.starts_with(character); });
        if (first == characters.end()) {
            break;
        }
        text.remove_prefix(first->size());
    }
    for (;;) {
        const auto* const last = std::ranges::find_if(
            characters, [&](std::string_view character) { return text.ends_with(character); });
        if (last == characters.end()) {
            return text;
        }
        text.remove_suffix(last->size());
    }
}

} // namespace murkwell
