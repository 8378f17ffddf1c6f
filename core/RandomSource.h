// Where random bits come from: box identities and the noise that covers what is redacted.
#pragma once

#include <cstdint>

namespace murkwell {

// May be called from several threads at once.
class RandomSource {
public:
    virtual ~RandomSource() = default;

    // 64 independent, uniformly distributed bits.
    [[nodiscard]] virtual std::uint64_t next() = 0;
};

// The kernel's cryptographic generator (getrandom), read 4 KiB at a time and per thread.
class SystemRandomSource final : public RandomSource {
public:
    [[nodiscard]] std::uint64_t next() override;
};

} // namespace murkwell
