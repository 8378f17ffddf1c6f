#include "core/RedactionStyle.h"

#include "core/Localization.h"

#include <algorithm>

namespace murkwell {
namespace {

struct Texts {
    std::string_view rawValue;
    std::string_view label;
    std::string_view symbolName;
};

constexpr std::array<Texts, allRedactionStyles.size()> texts{{
    {"solidBlack", translatable("Black bar"), "rectangle.fill"},
    {"solidWhite", translatable("White bar"), "rectangle"},
    {"noise", translatable("Noise"), "square.grid.3x3.fill"},
}};

const Texts& textsOf(RedactionStyle style) {
    return texts.at(static_cast<std::size_t>(style));
}

} // namespace

std::string_view rawValue(RedactionStyle style) {
    return textsOf(style).rawValue;
}

std::optional<RedactionStyle> redactionStyle(std::string_view rawValue) {
    const auto* const found = std::ranges::find(texts, rawValue, &Texts::rawValue);
    if (found == texts.end()) {
        return std::nullopt;
    }
    return allRedactionStyles.at(static_cast<std::size_t>(found - texts.begin()));
}

std::string_view label(RedactionStyle style) {
    return textsOf(style).label;
}

std::string_view symbolName(RedactionStyle style) {
    return textsOf(style).symbolName;
}

} // namespace murkwell
