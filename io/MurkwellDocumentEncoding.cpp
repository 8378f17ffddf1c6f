#include "io/MurkwellDocument.h"

#include "io/MurkwellDocumentKeys.h"
#include "io/Unicode.h"

#include <array>
#include <new>
#include <stdexcept>

namespace murkwell {
namespace {

namespace Keys = MurkwellDocumentKeys;

// Writes the boxes. Keys, styles and flags stand once in the file and are referred to.
class RedactionWriter {
public:
    using Reference = BinaryPropertyListWriter::Reference;

    static constexpr std::uint64_t objectsOnce = 8;
    static constexpr std::uint64_t objectsPerBox = 8;

    explicit RedactionWriter(BinaryPropertyListWriter& target)
        : writer(target), rect(writer.string(Keys::rect)), style(writer.string(Keys::style)),
          detected(writer.string(Keys::detected)), flags{writer.boolean(false),
                                                         writer.boolean(true)} {
        for (const RedactionStyle each : allRedactionStyles) {
            styles.push_back(writer.string(rawValue(each)));
        }
    }

    Reference page(const std::vector<StoredRedaction>& boxes) {
        std::vector<Reference> references;
        references.reserve(boxes.size());
        for (const StoredRedaction& box : boxes) {
            references.push_back(redaction(box));
        }
        return writer.array(references);
    }

private:
    Reference redaction(const StoredRedaction& box) {
        const std::array pairs{pair(box.rect.x, box.rect.y), pair(box.rect.width, box.rect.height)};
        const std::array<BinaryPropertyListWriter::Entry, 3> entries{{
            {rect, writer.array(pairs)},
            {style, styles.at(static_cast<std::size_t>(box.style))},
            {detected, flags.at(box.detected ? 1 : 0)},
        }};
        return writer.dictionary(entries);
    }

    Reference pair(double first, double second) {
        const std::array numbers{writer.real(first), writer.real(second)};
        return writer.array(numbers);
    }

    BinaryPropertyListWriter& writer;
    Reference rect;
    Reference style;
    Reference detected;
    std::array<Reference, 2> flags;
    std::vector<Reference> styles;
};

std::uint64_t objectsNeeded(const MurkwellDocument& document) {
    std::uint64_t count = 9 + RedactionWriter::objectsOnce + document.pages.size();
    for (const auto& page : document.pages) {
        count += RedactionWriter::objectsPerBox * page.size();
    }
    return count;
}

} // namespace

std::optional<BinaryPropertyList> encode(const MurkwellDocument& document) try {
    BinaryPropertyListWriter writer(objectsNeeded(document));
    const std::array<BinaryPropertyListWriter::Entry, 3> small{{
        {writer.string(Keys::version), writer.integer(document.version)},
        {writer.string(Keys::sourceFilename), writer.string(printable(document.sourceFilename))},
        {writer.string(Keys::sourceData), writer.data(document.sourceData)},
    }};
    RedactionWriter redactions(writer);
    std::vector<BinaryPropertyListWriter::Reference> pages;
    for (const auto& page : document.pages) {
        pages.push_back(redactions.page(page));
    }
    const std::array<BinaryPropertyListWriter::Entry, 4> all{
        small[0], small[1], small[2], {writer.string(Keys::pages), writer.array(pages)}};
    return writer.finish(writer.dictionary(all));
} catch (const std::bad_alloc&) {
    return std::nullopt;
} catch (const std::length_error&) {
    return std::nullopt;
}

} // namespace murkwell
