// From a source file to page bitmaps, and from page bitmaps and boxes to a flattened file.
// Stateless; every call is synchronous.
#pragma once

#include "core/Redaction.h"
#include "io/ContentType.h"
#include "io/FileAccess.h"
#include "io/ImageCodec.h"
#include "io/PdfRenderer.h"
#include "io/PdfWriter.h"

#include <array>
#include <cstddef>
#include <filesystem>
#include <optional>
#include <span>
#include <string>
#include <variant>
#include <vector>

namespace murkwell {

class RandomSource;

namespace DocumentIO {

struct Page {
    PackedBitmapRef image;  // never null
    bool isComplete = true; // false: something of it may be missing, or shown that should not be
};

// A plain value: copies share the page bitmaps.
struct Document {
    std::filesystem::path url; // need not exist when the document was loaded from bytes
    bool isPDF;
    ContentType imageType;   // PDF when isPDF
    std::vector<Page> pages; // never empty; one page unless isPDF
    // Pages that the file has and that are not among `pages`; pictures behind the first one.
    std::size_t omittedPages = 0;
};

using LoadResult = std::variant<Document, LoadFailure>;

// The libraries behind loading and export. Referred to, not owned.
struct Engines {
    PdfRenderer& pdfRenderer;
    PdfWriter& pdfWriter;
    ImageCodec& imageCodec;
    RandomSource& random;
};

// The image types that are accepted as sources, in the order in which they are offered.
[[nodiscard]] const std::array<ContentType, 7>& imageTypes();

// The type of our own saved documents.
[[nodiscard]] const ContentType& sessionType();

// The name alone decides whether the bytes are read as a PDF or as a picture. PDF pages that the
// file makes impossible are left out, counted, and those behind them move up. A failure when
// nothing can be shown. The password is that of a PDF (UTF-8); it is asked for also after a wrong
// one.
[[nodiscard]] LoadResult load(const std::filesystem::path& url, const Engines& engines,
                              const std::optional<std::string>& password = std::nullopt);
[[nodiscard]] LoadResult load(std::span<const std::byte> data,
                              const std::filesystem::path& nominalURL, const Engines& engines,
                              const std::optional<std::string>& password = std::nullopt);

// Burns every page and writes the result: a PDF of page images, or one picture in the source's own
// format where that can be written. Lists beyond the last page are ignored; pages without a list
// have no boxes. False on any failure, and what stood at the destination is then as it was. The
// source file is never written to, so a destination that is the source fails too.
[[nodiscard]] bool write(const Document& document,
                         std::span<const std::vector<Redaction>> redactionsByPage,
                         const Destination& destination, const Engines& engines);

// Beside the source: its base name, "-redacted." and the extension of what write() makes.
[[nodiscard]] std::filesystem::path defaultOutputURL(const Document& document);

// The same for a source that is not loaded. None when its name does not tell what it is.
[[nodiscard]] std::optional<std::filesystem::path>
defaultOutputURL(const std::filesystem::path& nominalURL);

} // namespace DocumentIO
} // namespace murkwell
