// What every user of MuPDF in this folder needs: the headers, a context that stays within bounds,
// and a way to call it from C++.
#pragma once

#include <atomic>
#include <cstddef>
#include <limits>
#include <optional>
#include <span>
#include <string>

extern "C" {
#include <mupdf/fitz.h>
#include <mupdf/pdf.h>
}

namespace murkwell {

// What all contexts of one task have together taken in large blocks: decoded streams and images,
// where a file of a few kilobytes can ask for gigabytes. Outlives the contexts.
class MuPdfMemory {
public:
    [[nodiscard]] std::size_t inUse() const { return taken; }
    void replace(std::size_t oldSize, std::size_t newSize) {
        if (oldSize != newSize) { // hardly ever: small blocks count as 0
            taken += newSize - oldSize;
        }
    }

private:
    std::atomic<std::size_t> taken{0};
};

// A context for use on one thread at a time, together with all that is made from it. Warnings are
// dropped.
class MuPdfContext {
public:
    // No picture that we could show needs more in one block, in bytes. Who asks for it has read
    // nonsense, and is refused it on every machine alike.
    static constexpr std::size_t absurdBlock = std::size_t{1} << 30;
    static constexpr std::size_t unlimited = std::numeric_limits<std::size_t>::max();

    // Refuses what would make one block, or all of them in the memory, larger than this, in bytes.
    explicit MuPdfContext(MuPdfMemory& memory, std::size_t largestBlock = unlimited,
                          std::size_t allLargeBlocks = unlimited);
    ~MuPdfContext();
    MuPdfContext(const MuPdfContext&) = delete;
    MuPdfContext& operator=(const MuPdfContext&) = delete;

    // Null when memory ran out.
    [[nodiscard]] fz_context* get() const { return context; }

    // Whose it is.
    [[nodiscard]] static MuPdfContext& of(fz_context* context) {
        return *static_cast<MuPdfContext*>(context->alloc.user);
    }

    struct Opened {
        pdf_document* document = nullptr; // the caller's; null on any failure
        bool needsPassword = false;       // another than the one given
    };

    // A document over bytes that outlive it. The password (UTF-8) is tried when the empty one does
    // not do.
    [[nodiscard]] Opened open(std::span<const std::byte> bytes,
                              const std::optional<std::string>& password);

    // Whether it was refused memory for which there was a limit or no room, since it was made or
    // started afresh. MuPDF does not always say so: it goes on without a font.
    [[nodiscard]] bool wasStopped() const { return refused; }
    [[nodiscard]] bool sawAbsurdBlock() const { return sawAbsurd; }
    void startAfresh() { refused = sawAbsurd = false; }

    // Whether a block of this size may be had. One that may not counts as refused.
    [[nodiscard]] bool admits(std::size_t size);
    // For what is taken past MuPDF's allocator, in however many blocks.
    [[nodiscard]] bool take(std::size_t size);
    void giveBack(std::size_t size) { memory.replace(size, 0); }

private:
    [[nodiscard]] bool hasRoomFor(std::size_t size) const;

    static void* allocate(void* self, std::size_t size);
    static void* reallocate(void* self, void* block, std::size_t size);
    static void release(void* self, void* block);

    MuPdfMemory& memory;
    std::size_t mostInOne;
    std::size_t mostInAll;
    bool refused = false;
    bool sawAbsurd = false;
    fz_context* context;
};

// Runs a few MuPDF calls; false when one of them reported an error. MuPDF does so by longjmp, past
// all destructors: the body makes no object that has one, and what it assigns is declared volatile
// outside or read only after success.
template <typename Body>
[[nodiscard]] bool attempt(fz_context* context, Body&& body) {
    fz_try(context) {
        body();
    }
    fz_catch(context) {
        return false;
    }
    return true;
}

// After a call that failed: nothing else is to be had either, since it ran into a limit of ours.
// Who was refused an absurd block has an error of its own to deal with.
[[nodiscard]] inline bool ranOut(fz_context* context) {
    return fz_caught(context) == FZ_ERROR_MEMORY && MuPdfContext::of(context).wasStopped();
}

} // namespace murkwell
