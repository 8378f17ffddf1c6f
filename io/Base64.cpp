#include "io/Base64.h"

#include <optional>

namespace murkwell {
namespace {

std::optional<std::uint32_t> valueOf(char c) {
    const auto distance = [c](char first) { return static_cast<std::uint32_t>(c - first); };
    if (c >= 'A' && c <= 'Z') {
        return distance('A');
    }
    if (c >= 'a' && c <= 'z') {
        return 26 + distance('a');
    }
    if (c >= '0' && c <= '9') {
        return 52 + distance('0');
    }
    if (c == '+' || c == '/') {
        return c == '+' ? 62 : 63;
    }
    return std::nullopt;
}

} // namespace

bool Base64Decoder::add(std::string_view text) {
    constexpr std::string_view whiteSpace = " \t\r\n";
    for (const char c : text) {
        if (whiteSpace.find(c) != std::string_view::npos) {
            continue;
        }
        const bool isPadding = c == '=';
        const auto value = isPadding ? std::optional(0U) : valueOf(c);
        const bool afterTheEnd = padding > 0 && (!isPadding || digits == 0);
        if (!value || afterTheEnd || (isPadding && digits < 2)) {
            return false;
        }
        padding += isPadding ? 1 : 0;
        group = group << 6 | *value;
        if (++digits == 4) {
            emit();
        }
    }
    return true;
}

void Base64Decoder::emit() {
    if (bytes != nullptr) {
        for (unsigned i = 0; i < 3 - padding; ++i) {
            bytes->push_back(static_cast<std::byte>(group >> (16 - 8 * i)));
        }
    }
    group = 0;
    digits = 0;
}

} // namespace murkwell
