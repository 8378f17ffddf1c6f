#include "platform/pdf/RunLength.h"

#include <algorithm>
#include <cstddef>

namespace murkwell {
namespace {

using Bytes = std::span<const std::uint8_t>;

constexpr std::size_t longest = 128; // of what one length byte can tell, repeated or literal
constexpr std::uint8_t endOfData = 128;

// Shorter repetitions of a byte take less room among the literal bytes.
constexpr std::size_t shortestRepeated = 3;

class Packer {
public:
    explicit Packer(std::size_t size) { packed.reserve(size); }

    void literal(Bytes bytes) {
        while (!bytes.empty()) {
            const Bytes chunk = bytes.first(std::min(bytes.size(), longest));
            packed.push_back(static_cast<std::uint8_t>(chunk.size() - 1));
            packed.insert(packed.end(), chunk.begin(), chunk.end());
            bytes = bytes.subspan(chunk.size());
        }
    }

    void repeated(Bytes run) {
        for (; run.size() > 1; run = run.subspan(std::min(run.size(), longest))) {
            const std::size_t length = std::min(run.size(), longest);
            packed.push_back(static_cast<std::uint8_t>(257 - length));
            packed.push_back(run.front());
        }
        literal(run); // a single byte cannot be told as repeated
    }

    std::vector<std::uint8_t> finish() {
        packed.push_back(endOfData);
        return std::move(packed);
    }

private:
    std::vector<std::uint8_t> packed;
};

} // namespace

std::vector<std::uint8_t> packRuns(Bytes bytes) {
    Packer packer(bytes.size() / 4);
    std::size_t literalStart = 0;
    for (std::size_t start = 0; start < bytes.size();) {
        const std::uint8_t value = bytes[start];
        std::size_t end = start + 1;
        while (end < bytes.size() && bytes[end] == value) {
            ++end;
        }
        // The paper (of the first corner) stands alone even where it is one byte wide: a letter is
        // then the same bytes again, whatever its neighbours.
        if (end - start >= shortestRepeated || value == bytes.front()) {
            packer.literal(bytes.subspan(literalStart, start - literalStart));
            packer.repeated(bytes.subspan(start, end - start));
            literalStart = end;
        }
        start = end;
    }
    packer.literal(bytes.subspan(literalStart));
    return packer.finish();
}

} // namespace murkwell
