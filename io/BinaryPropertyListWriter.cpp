#include "io/BinaryPropertyListWriter.h"

#include "io/Unicode.h"

#include <bit>

namespace murkwell {
namespace {

// The smallest power of two that holds the value.
unsigned bytesFor(std::uint64_t value) {
    if (value <= 0xFF) {
        return 1;
    }
    if (value <= 0xFFFF) {
        return 2;
    }
    return value <= 0xFFFFFFFF ? 4 : 8;
}

} // namespace

BinaryPropertyListWriter::BinaryPropertyListWriter(std::uint64_t mostObjects)
    : referenceWidth(bytesFor(mostObjects)) {
    for (const char c : std::string_view("bplist00")) {
        list.head.push_back(static_cast<std::byte>(c));
    }
}

BinaryPropertyListWriter::Reference BinaryPropertyListWriter::boolean(bool value) {
    const Reference self = beginObject();
    put(value ? 0x09 : 0x08, 1);
    return self;
}

BinaryPropertyListWriter::Reference BinaryPropertyListWriter::integer(std::int64_t value) {
    const Reference self = beginObject();
    put(0x13, 1);
    put(static_cast<std::uint64_t>(value), 8);
    return self;
}

BinaryPropertyListWriter::Reference BinaryPropertyListWriter::real(double value) {
    const Reference self = beginObject();
    put(0x23, 1);
    put(std::bit_cast<std::uint64_t>(value), 8);
    return self;
}

BinaryPropertyListWriter::Reference BinaryPropertyListWriter::string(std::string_view utf8) {
    const Reference self = beginObject();
    if (isAscii(utf8)) {
        header(0x5, utf8.size());
        for (const char c : utf8) {
            put(static_cast<unsigned char>(c), 1);
        }
        return self;
    }
    const std::u16string units = utf16FromUtf8(utf8);
    header(0x6, units.size());
    for (const char16_t unit : units) {
        put(unit, 2);
    }
    return self;
}

BinaryPropertyListWriter::Reference BinaryPropertyListWriter::data(const SharedBytes& bytes) {
    const Reference self = beginObject();
    header(0x4, bytes.size());
    list.data = bytes;
    afterData = true;
    return self;
}

BinaryPropertyListWriter::Reference
BinaryPropertyListWriter::array(std::span<const Reference> elements) {
    const Reference self = beginObject();
    header(0xA, elements.size());
    for (const Reference element : elements) {
        put(element, referenceWidth);
    }
    return self;
}

BinaryPropertyListWriter::Reference
BinaryPropertyListWriter::dictionary(std::span<const Entry> entries) {
    const Reference self = beginObject();
    header(0xD, entries.size());
    for (const Entry& entry : entries) {
        put(entry.key, referenceWidth);
    }
    for (const Entry& entry : entries) {
        put(entry.value, referenceWidth);
    }
    return self;
}

BinaryPropertyList BinaryPropertyListWriter::finish(Reference top) {
    const std::uint64_t tableStart = position();
    const unsigned offsetWidth = bytesFor(tableStart);
    for (const std::uint64_t offset : offsets) {
        put(offset, offsetWidth);
    }
    put(0, 6); // five unused bytes and the sort version
    put(offsetWidth, 1);
    put(referenceWidth, 1);
    put(offsets.size(), 8);
    put(top, 8);
    put(tableStart, 8);
    return std::move(list);
}

BinaryPropertyListWriter::Reference BinaryPropertyListWriter::beginObject() {
    offsets.push_back(position());
    return offsets.size() - 1;
}

void BinaryPropertyListWriter::header(unsigned kind, std::uint64_t count) {
    if (count < 0xF) {
        put(kind << 4 | count, 1);
        return;
    }
    const unsigned width = bytesFor(count);
    put(kind << 4 | 0xF, 1);
    put(0x10U | static_cast<unsigned>(std::countr_zero(width)), 1);
    put(count, width);
}

void BinaryPropertyListWriter::put(std::uint64_t value, unsigned width) {
    std::vector<std::byte>& part = afterData ? list.tail : list.head;
    for (unsigned shift = 8 * width; shift > 0; shift -= 8) {
        part.push_back(static_cast<std::byte>(value >> (shift - 8)));
    }
}

std::uint64_t BinaryPropertyListWriter::position() const {
    return list.head.size() + list.data.size() + list.tail.size();
}

} // namespace murkwell
