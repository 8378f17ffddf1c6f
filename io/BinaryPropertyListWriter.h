// Writes a binary property list, format version 00, without copying its data.
#pragma once

#include "core/SharedBytes.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

namespace murkwell {

// The bytes of a file in three parts that follow each other.
struct BinaryPropertyList {
    std::vector<std::byte> head;
    SharedBytes data;
    std::vector<std::byte> tail;

    [[nodiscard]] std::array<std::span<const std::byte>, 3> parts() const {
        return {head, data.bytes(), tail};
    }
};

// Each call adds an object and returns the number by which containers refer to it, so parts come
// before their container. Every call may throw std::bad_alloc.
class BinaryPropertyListWriter {
public:
    using Reference = std::uint64_t;

    struct Entry {
        Reference key;
        Reference value;
    };

    // No more than this many objects may be added: it decides how wide references are.
    explicit BinaryPropertyListWriter(std::uint64_t mostObjects);

    [[nodiscard]] Reference boolean(bool value);
    [[nodiscard]] Reference integer(std::int64_t value);
    [[nodiscard]] Reference real(double value); // always of 64 bits
    [[nodiscard]] Reference string(std::string_view utf8);
    [[nodiscard]] Reference data(const SharedBytes& bytes); // at most once
    [[nodiscard]] Reference array(std::span<const Reference> elements);
    [[nodiscard]] Reference dictionary(std::span<const Entry> entries);

    // Ends the list, whose top object is given.
    [[nodiscard]] BinaryPropertyList finish(Reference top);

private:
    Reference beginObject();
    void header(unsigned kind, std::uint64_t count);
    void put(std::uint64_t value, unsigned width);
    [[nodiscard]] std::uint64_t position() const;

    unsigned referenceWidth; // bytes
    bool afterData = false;  // what comes now goes into the tail
    BinaryPropertyList list;
    std::vector<std::uint64_t> offsets;
};

} // namespace murkwell
