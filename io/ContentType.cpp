#include "io/ContentType.h"

#include "io/FileName.h"

#include <algorithm>
#include <array>
#include <iterator>

namespace murkwell {

constinit const ContentType ContentType::data{"public.data"};
constinit const ContentType ContentType::png{"public.png"};
constinit const ContentType ContentType::jpeg{"public.jpeg"};
constinit const ContentType ContentType::mpo{"public.mpo-image"};
constinit const ContentType ContentType::tiff{"public.tiff"};
constinit const ContentType ContentType::bmp{"com.microsoft.bmp"};
constinit const ContentType ContentType::gif{"com.compuserve.gif"};
constinit const ContentType ContentType::heic{"public.heic"};
constinit const ContentType ContentType::heif{"public.heif"};
constinit const ContentType ContentType::avif{"public.avif"};
constinit const ContentType ContentType::pdf{"com.adobe.pdf"};
constinit const ContentType ContentType::session{"com.tallowick.murkwell.document"};

namespace {

struct Record {
    ContentType type;
    ContentType parent;
    std::array<std::string_view, 3> extensions; // the preferred one first; empty ones are unused
};

constexpr std::size_t typeCount = 12;

const std::array<Record, typeCount>& records() {
    using T = ContentType;
    static const std::array<Record, typeCount> all{{
        {T::data, T::data, {}},
        {T::png, T::data, {"png"}},
        {T::jpeg, T::data, {"jpeg", "jpg", "jpe"}},
        {T::mpo, T::jpeg, {"mpo"}},
        {T::tiff, T::data, {"tiff", "tif"}},
        {T::bmp, T::data, {"bmp", "dib"}},
        {T::gif, T::data, {"gif"}},
        {T::heic, T::data, {"heic"}},
        {T::heif, T::data, {"heif", "hif"}},
        {T::avif, T::data, {"avif"}},
        {T::pdf, T::data, {"pdf"}},
        {T::session, T::data, {"murkwell"}},
    }};
    return all;
}

const Record& recordOf(const ContentType& type) {
    return *std::ranges::find(records(), type, &Record::type);
}

} // namespace

std::optional<ContentType> ContentType::fromExtension(std::string_view extension) {
    const std::string wanted = lowerCased(extension);
    for (const Record& record : records()) {
        if (!wanted.empty() && std::ranges::count(record.extensions, wanted) > 0) {
            return record.type;
        }
    }
    return std::nullopt;
}

std::optional<ContentType> ContentType::fromIdentifier(std::string_view identifier) {
    const auto* const found = std::ranges::find(
        records(), identifier, [](const Record& record) { return record.type.identifier(); });
    if (found == records().end()) {
        return std::nullopt;
    }
    return found->type;
}

bool ContentType::conformsTo(const ContentType& other) const {
    for (ContentType type = *this;;) {
        if (type == other) {
            return true;
        }
        const ContentType parent = recordOf(type).parent;
        if (parent == type) {
            return false;
        }
        type = parent;
    }
}

std::optional<std::string_view> ContentType::preferredFilenameExtension() const {
    const std::string_view preferred = recordOf(*this).extensions.front();
    if (preferred.empty()) {
        return std::nullopt;
    }
    return preferred;
}

std::vector<std::string_view> ContentType::filenameExtensions() const {
    std::vector<std::string_view> extensions;
    for (const Record& record : records()) {
        if (record.type.conformsTo(*this)) {
            std::ranges::copy_if(record.extensions, std::back_inserter(extensions),
                                 [](std::string_view extension) { return !extension.empty(); });
        }
    }
    return extensions;
}

} // namespace murkwell
