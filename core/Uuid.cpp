#include "core/Uuid.h"

#include "core/RandomSource.h"

#include <cstring>

namespace murkwell {

Uuid Uuid::random(RandomSource& random) {
    Uuid uuid;
    const std::array<std::uint64_t, 2> bits{random.next(), random.next()};
    std::memcpy(uuid.bytes.data(), bits.data(), sizeof bits);
    // RFC 4122, 4.4: the version in the high half of octet 6, the variant 10 on top of octet 8.
    uuid.bytes[6] = static_cast<std::uint8_t>((uuid.bytes[6] & 0x0f) | 0x40);
    uuid.bytes[8] = static_cast<std::uint8_t>((uuid.bytes[8] & 0x3f) | 0x80);
    return uuid;
}

} // namespace murkwell
