// Keeps the decoding of JPEG 2000 pictures within a context's memory.
//
// OpenJPEG allocates by itself, past the account, four bytes for every sample, and before it has
// looked at a single byte of the picture as much as its header pleases. So MuPDF's call of it is
// led through here (the linker's --wrap), where the header is read and the memory counted first.
#pragma once

#include <cstddef>
#include <optional>
#include <span>

namespace murkwell {

struct Jpeg2000Cost {
    std::size_t picture;  // bytes of the decoded picture as MuPDF keeps it
    std::size_t decoding; // bytes that OpenJPEG takes meanwhile

    bool operator==(const Jpeg2000Cost&) const = default;
};

// Of a codestream, alone or within a file. None when there is none.
[[nodiscard]] std::optional<Jpeg2000Cost> costOfJpeg2000(std::span<const std::byte> file);

} // namespace murkwell
