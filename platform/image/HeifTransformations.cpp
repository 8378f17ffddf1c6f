#include "platform/image/HeifTransformations.h"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <string_view>

namespace murkwell {
namespace {

using Bytes = std::span<std::byte>;

struct Box {
    Bytes type;    // four characters
    Bytes content; // behind the header
    Bytes next;    // what follows the box
};

std::uint64_t bigEndian(std::span<const std::byte> bytes) {
    std::uint64_t value = 0;
    for (const std::byte b : bytes) {
        value = value << 8 | std::to_integer<std::uint64_t>(b);
    }
    return value;
}

// ISO/IEC 14496-12, 4.2: a size of 1 is followed by a 64-bit one, a size of 0 runs to the end. A
// box that claims more than is there ends with its surroundings.
std::optional<Box> firstBox(Bytes bytes) {
    if (bytes.size() < 8) {
        return std::nullopt;
    }
    std::uint64_t size = bigEndian(bytes.first(4));
    std::size_t header = 8;
    if (size == 1 && bytes.size() >= 16) {
        size = bigEndian(bytes.subspan(8, 8));
        header = 16;
    }
    if (size == 0 || size > bytes.size()) {
        size = bytes.size();
    }
    if (size < header) {
        return std::nullopt;
    }
    const Bytes box = bytes.first(static_cast<std::size_t>(size));
    return Box{box.subspan(4, 4), box.subspan(header), bytes.subspan(box.size())};
}

bool isOfType(const Box& box, std::string_view type) {
    return std::ranges::equal(box.type, type, {}, [](std::byte b) { return static_cast<char>(b); });
}

void neutralise(const Box& property) {
    if (isOfType(property, "irot") && !property.content.empty()) {
        property.content.front() = std::byte{0};
    } else if (isOfType(property, "imir")) {
        // There is no mirroring by nothing. The box must stay, for properties go by number.
        std::ranges::transform(std::string_view("free"), property.type.begin(),
                               [](char c) { return static_cast<std::byte>(c); });
    }
}

// Walks down to the boxes at the end of the path and neutralises what they hold.
void neutraliseBelow(Bytes bytes, std::span<const std::string_view> path) {
    for (auto box = firstBox(bytes); box; box = firstBox(box->next)) {
        if (path.empty()) {
            neutralise(*box);
        } else if (isOfType(*box, path.front())) {
            // Only meta begins with a version and flags.
            const std::size_t skipped = path.front() == "meta" ? 4 : 0;
            if (box->content.size() >= skipped) {
                neutraliseBelow(box->content.subspan(skipped), path.subspan(1));
            }
        }
    }
}

} // namespace

std::vector<std::byte> withoutHeifRotation(std::span<const std::byte> file) {
    static constexpr std::string_view properties[] = {"meta", "iprp", "ipco"};
    std::vector<std::byte> copy(file.begin(), file.end());
    neutraliseBelow(copy, properties);
    return copy;
}

} // namespace murkwell
