// Random bits that a test can foresee.
#pragma once

#include "core/RandomSource.h"

#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

namespace murkwell {

// Gives the values in order, then starts again. Not for use from several threads.
class ScriptedRandomSource final : public RandomSource {
public:
    explicit ScriptedRandomSource(std::vector<std::uint64_t> values) : script(std::move(values)) {}

    std::uint64_t next() override { return script[drawn++ % script.size()]; }

    std::size_t drawn = 0;

private:
    std::vector<std::uint64_t> script;
};

} // namespace murkwell
