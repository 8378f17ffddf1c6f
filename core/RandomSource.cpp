#include "core/RandomSource.h"

#include <array>
#include <cerrno>
#include <cstddef>
#include <cstdlib>
#include <sys/random.h>
#include <utility>

namespace murkwell {
namespace {

struct Buffer {
    std::array<std::uint64_t, 512> values{};
    std::size_t used = values.size();

    void refill() {
        std::size_t filled = 0;
        while (filled < sizeof values) {
            const ssize_t count = ::getrandom(reinterpret_cast<std::byte*>(values.data()) + filled,
                                              sizeof values - filled, 0);
            if (count > 0) {
                filled += static_cast<std::size_t>(count);
            } else if (errno != EINTR) {
                // A kernel without getrandom. Noise that could be guessed would be a leak.
                std::abort();
            }
        }
        used = 0;
    }
};

} // namespace

std::uint64_t SystemRandomSource::next() {
    thread_local Buffer buffer;
    if (buffer.used == buffer.values.size()) {
        buffer.refill();
    }
    // A value handed out does not stay in memory: it may become somebody's noise.
    return std::exchange(buffer.values[buffer.used++], 0);
}

} // namespace murkwell
