// Immutable bytes with shared ownership: how a source file's bytes travel without being copied.
#pragma once

#include <cstddef>
#include <memory>
#include <span>
#include <utility>
#include <vector>

namespace murkwell {

// A plain value. Copies and slices share the bytes and keep all of them alive, so a slice of a file
// costs the whole file's memory and nothing more.
class SharedBytes {
public:
    SharedBytes() = default;

    // Throws std::bad_alloc.
    explicit SharedBytes(std::vector<std::byte> bytes) {
        const auto whole = std::make_shared<const std::vector<std::byte>>(std::move(bytes));
        view = {whole->data(), whole->size()};
        owner = whole;
    }

    // Takes over the first bytes of an array.
    SharedBytes(std::shared_ptr<const std::byte[]> array, std::size_t count)
        : view(array.get(), count), owner(std::move(array)) {}

    [[nodiscard]] std::span<const std::byte> bytes() const { return view; }
    [[nodiscard]] std::size_t size() const { return view.size(); }

    // offset + length must lie within size().
    [[nodiscard]] SharedBytes slice(std::size_t offset, std::size_t length) const {
        SharedBytes result(*this);
        result.view = view.subspan(offset, length);
        return result;
    }

private:
    std::span<const std::byte> view;
    std::shared_ptr<const void> owner;
};

} // namespace murkwell
