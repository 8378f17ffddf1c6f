#include "platform/confinement/SharedMemory.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/mman.h>

namespace murkwell {

std::optional<SharedMemory> SharedMemory::create(std::size_t bytes) {
    auto share = PixelShare::take(bytes);
    if (!share) {
        return std::nullopt;
    }
    Descriptor file(::memfd_create("murkwell", MFD_CLOEXEC | MFD_ALLOW_SEALING));
    if (!file.isOpen() || ::ftruncate(file.get(), static_cast<off_t>(bytes)) != 0 ||
        ::fcntl(file.get(), F_ADD_SEALS, F_SEAL_SHRINK | F_SEAL_GROW) != 0) {
        return std::nullopt;
    }
    return SharedMemory(std::move(*share), std::move(file), bytes);
}

std::optional<SharedMemory> SharedMemory::sealedCopy(std::span<const std::byte> bytes) {
    auto memory = create(bytes.size());
    for (auto rest = bytes; memory && !rest.empty();) {
        const ssize_t count = ::write(memory->descriptor(), rest.data(), rest.size());
        if (count < 0 && errno != EINTR) {
            return std::nullopt;
        }
        rest = rest.subspan(count > 0 ? static_cast<std::size_t>(count) : 0);
    }
    return memory && memory->seal() ? std::move(memory) : std::nullopt;
}

bool SharedMemory::seal() const {
    return ::fcntl(file.get(), F_ADD_SEALS, F_SEAL_WRITE | F_SEAL_SEAL) == 0;
}

std::shared_ptr<const std::byte> SharedMemory::map() const {
    return mapLent(file, bytes, Access::read);
}

std::shared_ptr<const std::byte> SharedMemory::handOver(SharedMemory memory) {
    if (!memory.seal()) {
        return nullptr;
    }
    const auto held = std::make_shared<SharedMemory>(std::move(memory));
    const auto mapping = held->map();
    if (!mapping) {
        return nullptr;
    }
    return {mapping.get(), [held, mapping](const std::byte*) {}};
}

std::shared_ptr<std::byte> mapLent(const Descriptor& file, std::size_t bytes, Access access) {
    const int protection = access == Access::write ? PROT_READ | PROT_WRITE : PROT_READ;
    void* const start = ::mmap(nullptr, bytes, protection, MAP_SHARED, file.get(), 0);
    if (start == MAP_FAILED) {
        return nullptr;
    }
    ::madvise(start, bytes, MADV_DONTDUMP);
    return {static_cast<std::byte*>(start),
            [bytes](std::byte* memory) { ::munmap(memory, bytes); }};
}

} // namespace murkwell
