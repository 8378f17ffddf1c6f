#include "detect/PIIKind.h"

#include "core/Localization.h"

#include <algorithm>

namespace murkwell {
namespace {

struct Texts {
    std::string_view rawValue;
    std::string_view label;
    std::string_view symbolName;
    std::optional<std::string_view> pattern;
};

// The patterns decide alone: no checksum, no range of numbers and no list of issuers is looked at,
// so that a misread digit does not uncover a number.
constexpr std::array<Texts, allPIIKinds.size()> texts{{
    {"email", translatable("Emails"), "at", R"([A-Z0-9._%+-]+@[A-Z0-9.-]+\.[A-Z]{2,})"},
    {"ssn", translatable("SSNs"), "person.text.rectangle", R"(\b\d{3}-\d{2}-\d{4}\b)"},
    {"phone", translatable("Phone numbers"), "phone",
     R"((\+?\d{1,2}[\s.-]?)?\(?\d{3}\)?[\s.-]?\d{3}[\s.-]?\d{4})"},
    {"creditCard", translatable("Card numbers"), "creditcard", R"(\b(?:\d[ -]?){13,16}\b)"},
    {"ipAddress", translatable("IP addresses"), "network", R"(\b(?:\d{1,3}\.){3}\d{1,3}\b)"},
    {"faces", translatable("Faces"), "face.dashed", std::nullopt},
}};

const Texts& textsOf(PIIKind kind) {
    return texts.at(static_cast<std::size_t>(kind));
}

} // namespace

std::string_view rawValue(PIIKind kind) {
    return textsOf(kind).rawValue;
}

std::optional<PIIKind> piiKind(std::string_view rawValue) {
    const auto* const found = std::ranges::find(texts, rawValue, &Texts::rawValue);
    if (found == texts.end()) {
        return std::nullopt;
    }
    return allPIIKinds.at(static_cast<std::size_t>(found - texts.begin()));
}

std::string_view label(PIIKind kind) {
    return textsOf(kind).label;
}

std::string_view symbolName(PIIKind kind) {
    return textsOf(kind).symbolName;
}

std::optional<std::string_view> pattern(PIIKind kind) {
    return textsOf(kind).pattern;
}

} // namespace murkwell
