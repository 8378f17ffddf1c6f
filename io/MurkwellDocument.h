// The saved document: the source file's bytes and name, and the boxes of every page. The format is
// described in docs/file-format.md.
#pragma once

#include "core/Redaction.h"
#include "core/SharedBytes.h"
#include "io/BinaryPropertyListWriter.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace murkwell {

// A box as it is stored: all but its identity.
struct StoredRedaction {
    PageRect rect; // as the box had it, also beyond the page; never infinite or not a number
    RedactionStyle style;
    bool detected;

    bool operator==(const StoredRedaction&) const = default;
};

struct MurkwellDocument {
    static constexpr std::int64_t currentVersion = 1;

    std::int64_t version; // read, but any is accepted
    std::string sourceFilename;
    SharedBytes sourceData;
    std::vector<std::vector<StoredRedaction>> pages; // in page order
};

// A binary property list; the source's bytes are shared, not copied. A file name is stored as it
// can be shown, with U+FFFD for bytes that are no UTF-8 and for control characters. None when
// memory runs out.
[[nodiscard]] std::optional<BinaryPropertyList> encode(const MurkwellDocument& document);

// Reads the binary form and the XML form. Unknown keys are ignored. None when anything is missing,
// of a wrong type, given twice, not finite, when the file name has control characters, or when
// memory runs out: no box is salvaged. From the binary form the source's bytes are a slice of the
// file.
[[nodiscard]] std::optional<MurkwellDocument> decode(const SharedBytes& file);

// What the source of a document that lies in this file is called, beside it. Only the last
// component of the stored name counts: one that was made to lead elsewhere must not decide where an
// export is proposed.
[[nodiscard]] std::filesystem::path nominalURL(const MurkwellDocument& document,
                                               const std::filesystem::path& file);

} // namespace murkwell
