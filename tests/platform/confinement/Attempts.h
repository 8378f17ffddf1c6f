// What somebody who has taken over a parser would try.
#pragma once

#include <span>
#include <sys/types.h>

namespace murkwell {

struct Attempt {
    // Who can do it without walls. What only some kernels offer shows nothing in a control.
    enum class Succeeds { forAll, forRoot, onSomeKernels };

    const char* name;
    long (*run)(pid_t victim); // negative with errno, or it does not return, when it fails
    Succeeds without = Succeeds::forAll;
};

[[nodiscard]] std::span<const Attempt> attempts();

} // namespace murkwell
