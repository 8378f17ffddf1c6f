#include "core/PixelMemory.h"

#include <atomic>
#include <cstdint>
#include <cstring>
#include <mutex>
#include <sys/mman.h>
#include <unistd.h>
#include <utility>

namespace murkwell {
namespace {

// From this size on, pages of 2 MiB spare a page fault for every 4 KiB that is touched.
constexpr std::size_t hugePageSize = std::size_t{2} << 20;

std::size_t mostInShares() {
    static const std::size_t threeQuarters = static_cast<std::size_t>(::sysconf(_SC_PHYS_PAGES)) *
                                             static_cast<std::size_t>(::sysconf(_SC_PAGESIZE)) / 4 *
                                             3;
    return threeQuarters;
}

std::atomic<std::size_t> inShares{0};

std::size_t roundedUp(std::size_t value, std::size_t unit) {
    return (value + unit - 1) / unit * unit;
}

std::byte* mapAnonymous(std::size_t bytes) {
    void* const memory =
        ::mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    return memory == MAP_FAILED ? nullptr : static_cast<std::byte*>(memory);
}

void unmap(std::byte* memory, std::size_t bytes) {
    if (bytes > 0) {
        ::munmap(memory, bytes);
    }
}

// Huge pages start at multiples of their size, where the kernel does not put a block by itself.
std::byte* mapHugePages(std::size_t bytes) {
    std::byte* const start = mapAnonymous(bytes + hugePageSize);
    if (start == nullptr) {
        return nullptr;
    }
    const auto address = reinterpret_cast<std::uintptr_t>(start);
    const std::size_t before = roundedUp(address, hugePageSize) - address;
    unmap(start, before);
    unmap(start + before + bytes, hugePageSize - before);
    ::madvise(start + before, bytes, MADV_HUGEPAGE);
    return start + before;
}

// Zeroed memory from the kernel, or null.
std::byte* map(std::size_t bytes) {
    static const auto pageSize = static_cast<std::size_t>(::sysconf(_SC_PAGESIZE));
    if (bytes < hugePageSize) {
        return mapAnonymous(bytes);
    }
    const std::size_t whole = roundedUp(bytes, hugePageSize);
    std::byte* const memory = mapHugePages(whole);
    if (memory == nullptr) {
        return nullptr;
    }
    // A letter page ends shortly before the end of a huge page. That one is put in place while the
    // block is long enough for it, and then gives back what the block does not need.
    const std::size_t end = bytes % hugePageSize;
    if (end > hugePageSize / 2) {
        ::madvise(memory + bytes - end, end, MADV_POPULATE_WRITE);
    }
    const std::size_t needed = roundedUp(bytes, pageSize);
    unmap(memory + needed, whole - needed);
    return memory;
}

// Also a dump that somebody else makes of this process shall not hold pages.
std::byte* mapUndumped(std::size_t bytes) {
    std::byte* const memory = map(bytes);
    if (memory != nullptr) {
        ::madvise(memory, bytes, MADV_DONTDUMP);
    }
    return memory;
}

// The block that was let go last, cleared, for the next bitmap of that size: fresh memory has to be
// mapped and zeroed by the kernel, which takes longer.
class SpareBlock {
public:
    // Zeroed; null when there is none of this size.
    std::byte* take(std::size_t size) {
        const std::lock_guard lock(mutex);
        return size == bytes ? (bytes = 0, std::exchange(block, nullptr)) : nullptr;
    }

    // Keeps the block and lets go of the one kept before. A small one is cheap, a very large one
    // too much to keep: they are let go at once. What was on a page does not outlive it.
    void keep(std::byte* memory, std::size_t size) {
        constexpr std::size_t largestKept = std::size_t{32} << 20;
        if (size >= hugePageSize && size <= largestKept) {
            std::memset(memory, 0, size);
            const std::lock_guard lock(mutex);
            std::swap(memory, block);
            std::swap(size, bytes);
        }
        if (memory != nullptr) {
            ::munmap(memory, size);
        }
    }

private:
    std::mutex mutex;
    std::byte* block = nullptr;
    std::size_t bytes = 0;
};

SpareBlock& spareBlock() {
    static SpareBlock shared;
    return shared;
}

PixelMemory::Lender* firstAsked = nullptr;

} // namespace

std::optional<PixelShare> PixelShare::take(std::size_t bytes) {
    const std::size_t most = mostInShares();
    if (bytes > most) {
        return std::nullopt;
    }
    PixelShare share(bytes); // also gives back what is refused
    return inShares.fetch_add(bytes) <= most - bytes ? std::optional(std::move(share))
                                                     : std::nullopt;
}

PixelShare::~PixelShare() {
    inShares.fetch_sub(bytes);
}

PixelShare::PixelShare(PixelShare&& other) noexcept : bytes(std::exchange(other.bytes, 0)) {}

PixelShare& PixelShare::operator=(PixelShare&& other) noexcept {
    std::swap(bytes, other.bytes);
    return *this;
}

namespace PixelMemory {

void borrowFrom(Lender* lender) {
    firstAsked = lender;
}

Block take(std::size_t bytes, Content content) {
    if (firstAsked != nullptr) {
        if (auto lent = firstAsked->lend(bytes, content)) {
            return std::move(*lent);
        }
    }
    auto share = PixelShare::take(bytes);
    if (!share) {
        return nullptr;
    }
    std::byte* memory = spareBlock().take(bytes);
    if (memory == nullptr) {
        memory = mapUndumped(bytes);
    }
    if (memory == nullptr) {
        return nullptr;
    }
    return {memory, [bytes, held = std::move(*share)](std::byte* block) {
                spareBlock().keep(block, bytes);
            }};
}

} // namespace PixelMemory
} // namespace murkwell
