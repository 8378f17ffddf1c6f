// Memory that the program and a worker both see. The program makes it, gives it a size for ever,
// and lends it; a worker makes none.
#pragma once

#include "core/PixelMemory.h"
#include "platform/confinement/Descriptor.h"

#include <cstddef>
#include <memory>
#include <optional>
#include <span>

namespace murkwell {

class SharedMemory {
public:
    // Up to this size all results of a worker come through one frame, which it keeps, and are
    // copied out of it: that is cheaper than fresh memory for each. Larger ones are handed over.
    static constexpr std::size_t frameSize = std::size_t{64} << 20;

    // Zeroed, counted as a share of the pixels' memory, and of that size for ever: whoever maps it
    // cannot be hit by a file that shrinks. None when memory runs out.
    [[nodiscard]] static std::optional<SharedMemory> create(std::size_t bytes);
    // A copy that nobody can change any more.
    [[nodiscard]] static std::optional<SharedMemory> sealedCopy(std::span<const std::byte> bytes);

    [[nodiscard]] int descriptor() const { return file.get(); }
    [[nodiscard]] std::size_t size() const { return bytes; }

    // To read it as long as somebody holds what is returned. Whoever else maps it may change it
    // meanwhile. Null on failure.
    [[nodiscard]] std::shared_ptr<const std::byte> map() const;

    // To read what nobody can change any more: null as long as somebody could. The share goes with
    // the last reader.
    [[nodiscard]] static std::shared_ptr<const std::byte> handOver(SharedMemory memory);

private:
    SharedMemory(PixelShare counted, Descriptor made, std::size_t size)
        : share(std::move(counted)), file(std::move(made)), bytes(size) {}

    [[nodiscard]] bool seal() const;

    PixelShare share;
    Descriptor file;
    std::size_t bytes;
};

// The same as a worker sees it: somebody else's file.
enum class Access { read, write };
[[nodiscard]] std::shared_ptr<std::byte> mapLent(const Descriptor& file, std::size_t bytes,
                                                 Access access);

} // namespace murkwell
