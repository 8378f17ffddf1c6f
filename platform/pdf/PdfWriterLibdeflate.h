// PdfWriter in our own words, around page images that libdeflate packs, in parallel. It parses
// nothing, so that it can work in the program itself.
#pragma once

#include "io/PdfWriter.h"

namespace murkwell {

class PdfWriterLibdeflate final : public PdfWriter {
public:
    [[nodiscard]] std::optional<std::vector<std::byte>> encode(std::size_t pageCount,
                                                               const PageSource& pageAt) override;
};

} // namespace murkwell
