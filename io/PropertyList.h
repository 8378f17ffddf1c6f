// What the two readers of property lists, binary and XML, tell about one as they walk it.
#pragma once

#include "core/SharedBytes.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace murkwell {

// Told one value after the other, parts between the beginning and the end of their container.
// Answering false or refuse ends the reading: the list is then no good. Values under a key that is
// skipped are not told, and a binary list's are not even looked at.
class PropertyListVisitor {
public:
    enum class Answer { read, skip, refuse };

    // No key that a visitor reads is longer, in bytes; longer ones are skipped without asking.
    static constexpr std::size_t longestKey = 32;

    // Nor is any string, in bytes of UTF-8 or of UTF-16; a longer one ends the reading.
    static constexpr std::size_t longestString = std::size_t{64} << 10;

    virtual ~PropertyListVisitor() = default;

    [[nodiscard]] virtual bool beginDictionary() = 0;
    [[nodiscard]] virtual Answer key(std::string_view key) = 0; // UTF-8
    [[nodiscard]] virtual bool endDictionary() = 0;

    // The count is that of the array's elements, or 0 where it is not known yet.
    [[nodiscard]] virtual bool beginArray(std::size_t count) = 0;
    [[nodiscard]] virtual bool endArray() = 0;

    [[nodiscard]] virtual bool string(std::string text) = 0; // UTF-8
    [[nodiscard]] virtual bool integer(std::int64_t value) = 0;
    [[nodiscard]] virtual bool real(double value) = 0; // may be infinite or not a number
    [[nodiscard]] virtual bool boolean(bool value) = 0;
    [[nodiscard]] virtual bool data(SharedBytes bytes) = 0;
};

} // namespace murkwell
