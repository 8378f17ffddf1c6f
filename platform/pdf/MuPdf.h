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

// Memory that all contexts of one task may take together for large blocks: decoded streams and
// images, where a file of a few kilobytes can ask for gigabytes. Outlives the contexts.
class MuPdfMemory {
public:
    static constexpr std::size_t unlimited = std::numeric_limits<std::size_t>::max();

    // In bytes.
    MuPdfMemory(std::size_t largestBlock, std::size_t allLargeBlocks)
        : mostInOne(largestBlock), mostInAll(allLargeBlocks) {}

    [[nodiscard]] bool admits(std::size_t size) const;
    void replace(std::size_t oldSize, std::size_t newSize) {
        if (oldSize != newSize) { // hardly ever: small blocks count as 0
            taken += newSize - oldSize;
        }
    }

private:
    std::size_t mostInOne;
    std::size_t mostInAll;
    std::atomic<std::size_t> taken{0};
};

// A context for use on one thread at a time, together with all that is made from it. Warnings are
// dropped.
class MuPdfContext {
public:
    explicit MuPdfContext(MuPdfMemory& memory);
    ~MuPdfContext();
    MuPdfContext(const MuPdfContext&) = delete;
    MuPdfContext& operator=(const MuPdfContext&) = delete;

    // Null when memory ran out.
    [[nodiscard]] fz_context* get() const { return context; }

    struct Opened {
        pdf_document* document = nullptr; // the caller's; null on any failure
        bool needsPassword = false;       // another than the one given
    };

    // A document over bytes that outlive it. The password (UTF-8) is tried when the empty one does
    // not do.
    [[nodiscard]] Opened open(std::span<const std::byte> bytes,
                              const std::optional<std::string>& password);

    // While interrupted, every allocation and every read from the bytes fails, so that whatever
    // MuPDF is doing comes to an end. May be called from any thread.
    void interrupt(bool on) { interrupted = on; }
    [[nodiscard]] bool isInterrupted() const { return interrupted; }

private:
    static void* allocate(void* self, std::size_t size);
    static void* reallocate(void* self, void* block, std::size_t size);
    static void release(void* self, void* block);

    MuPdfMemory& memory;
    std::atomic<bool> interrupted{false};
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

} // namespace murkwell
