#include "platform/pdf/MuPdf.h"

#include <cstdlib>
#include <malloc.h>

namespace murkwell {
namespace {

constexpr std::size_t kibibyte = 1024;
constexpr std::size_t mebibyte = 1024 * kibibyte;

// Smaller blocks are not counted: there are very many, on all threads at once.
constexpr std::size_t largeBlock = 64 * kibibyte;

// Decoded images and glyphs kept for the next page. More does not make text pages faster.
constexpr std::size_t storeSize = 64 * mebibyte;

void ignoreMessage(void*, const char*) {}

std::size_t countedSize(void* block) {
    const std::size_t size = ::malloc_usable_size(block);
    return size < largeBlock ? 0 : size;
}

} // namespace

MuPdfContext::MuPdfContext(MuPdfMemory& sharedMemory, std::size_t largestBlock,
                           std::size_t allLargeBlocks)
    : memory(sharedMemory), mostInOne(largestBlock), mostInAll(allLargeBlocks) {
    const fz_alloc_context allocator{this, &allocate, &reallocate, &release};
    context = fz_new_context(&allocator, nullptr, storeSize);
    if (context != nullptr) {
        fz_set_warning_callback(context, ignoreMessage, nullptr);
        fz_set_error_callback(context, ignoreMessage, nullptr);
    }
}

MuPdfContext::~MuPdfContext() {
    fz_drop_context(context);
}

MuPdfContext::Opened MuPdfContext::open(std::span<const std::byte> bytes,
                                        const std::optional<std::string>& password) {
    const auto* const start = reinterpret_cast<const unsigned char*>(bytes.data());
    fz_stream* stream = nullptr;
    if (!attempt(context, [&] { stream = fz_open_memory(context, start, bytes.size()); })) {
        return {};
    }
    Opened opened;
    const bool isReadable = attempt(context, [&] {
        opened.document = pdf_open_document_with_stream(context, stream);
        opened.needsPassword = pdf_needs_password(context, opened.document) != 0;
        if (opened.needsPassword && password) {
            opened.needsPassword =
                pdf_authenticate_password(context, opened.document, password->c_str()) == 0;
        }
    });
    fz_drop_stream(context, stream);
    if (isReadable && !opened.needsPassword) {
        return opened;
    }
    pdf_drop_document(context, opened.document);
    return {nullptr, isReadable && opened.needsPassword};
}

bool MuPdfContext::admits(std::size_t size) {
    if (size < largeBlock) {
        return true;
    }
    if (size > mostInOne && size > absurdBlock) {
        sawAbsurd = true;
        return false;
    }
    refused = refused || size > mostInOne || !hasRoomFor(size);
    return !refused;
}

// Other threads may take the rest meanwhile: then it is a little more than all.
bool MuPdfContext::hasRoomFor(std::size_t size) const {
    return size <= mostInAll && memory.inUse() <= mostInAll - size;
}

bool MuPdfContext::take(std::size_t size) {
    refused = refused || !hasRoomFor(size);
    if (!refused) {
        memory.replace(0, size);
    }
    return !refused;
}

void* MuPdfContext::allocate(void* self, std::size_t size) {
    return reallocate(self, nullptr, size);
}

void* MuPdfContext::reallocate(void* self, void* block, std::size_t size) {
    auto& context = *static_cast<MuPdfContext*>(self);
    if (!context.admits(size)) {
        return nullptr;
    }
    const std::size_t oldSize = countedSize(block);
    void* const moved = std::realloc(block, size);
    if (moved == nullptr) {
        context.refused = true;
        return nullptr;
    }
    context.memory.replace(oldSize, countedSize(moved));
    return moved;
}

void MuPdfContext::release(void* self, void* block) {
    static_cast<MuPdfContext*>(self)->memory.replace(countedSize(block), 0);
    std::free(block);
}

} // namespace murkwell
