#include "core/Bitmap.h"

#include <atomic>
#include <cstring>
#include <mutex>
#include <sys/mman.h>
#include <unistd.h>
#include <utility>

namespace murkwell {
namespace {

// From this size on, pages of 2 MiB spare a page fault for every 4 KiB that is touched.
constexpr std::size_t hugePageSize = std::size_t{2} << 20;

std::size_t sizeInBytes(std::size_t pixels) {
    return pixels * sizeof(Rgba);
}

// Linux lends more memory than there is and kills whoever then touches it. A document of a few
// kilobytes can ask for hundreds of huge pages, so living bitmaps are counted here and refused
// while the program can still say so.
class Budget {
public:
    bool take(std::size_t bytes) {
        if (taken.fetch_add(bytes) + bytes <= limit) {
            return true;
        }
        giveBack(bytes);
        return false;
    }

    void giveBack(std::size_t bytes) { taken.fetch_sub(bytes); }

private:
    static std::size_t physicalMemory() {
        return static_cast<std::size_t>(::sysconf(_SC_PHYS_PAGES)) *
               static_cast<std::size_t>(::sysconf(_SC_PAGESIZE));
    }

    const std::size_t limit = physicalMemory() / 4 * 3;
    std::atomic<std::size_t> taken{0};
};

Budget& budget() {
    static Budget shared;
    return shared;
}

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
void* map(std::size_t bytes) {
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

// The block that was let go last, for the next bitmap of that size: fresh memory has to be zeroed
// by the kernel, which takes longer than copying a page into it.
class SpareBlock {
public:
    // Null when there is none of this size.
    void* take(std::size_t size) {
        const std::lock_guard lock(mutex);
        return size == bytes ? (bytes = 0, std::exchange(block, nullptr)) : nullptr;
    }

    // Keeps the block and lets go of the one kept before. A small one is cheap, a very large one
    // too much to keep: they are let go at once.
    void keep(void* memory, std::size_t size) {
        constexpr std::size_t largestKept = std::size_t{32} << 20;
        if (size >= hugePageSize && size <= largestKept) {
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
    void* block = nullptr;
    std::size_t bytes = 0;
};

SpareBlock& spareBlock() {
    static SpareBlock shared;
    return shared;
}

} // namespace

std::shared_ptr<Bitmap> Bitmap::allocate(int width, int height, Content content) {
    if (width < 1 || height < 1 || std::int64_t{width} * height > maxPixels) {
        return nullptr;
    }
    const std::size_t bytes =
        sizeInBytes(static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
    if (!budget().take(bytes)) {
        return nullptr;
    }
    void* memory = spareBlock().take(bytes);
    if (memory != nullptr && content == Content::zero) {
        std::memset(memory, 0, bytes);
    }
    if (memory == nullptr) {
        memory = map(bytes);
    }
    if (memory == nullptr) {
        budget().giveBack(bytes);
        return nullptr;
    }
    return std::shared_ptr<Bitmap>(new Bitmap(width, height, static_cast<Rgba*>(memory)));
}

std::shared_ptr<Bitmap> Bitmap::create(int width, int height) {
    return allocate(width, height, Content::zero);
}

std::shared_ptr<Bitmap> Bitmap::copy(const Bitmap& source) {
    auto result = allocate(source.width(), source.height(), Content::toBeOverwritten);
    if (result) {
        std::memcpy(result->data, source.data, source.pixels().size_bytes());
    }
    return result;
}

Bitmap::~Bitmap() {
    const std::size_t bytes = sizeInBytes(pixelCount());
    spareBlock().keep(data, bytes);
    budget().giveBack(bytes);
}

} // namespace murkwell
