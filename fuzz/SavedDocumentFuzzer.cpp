// Any bytes as a saved document: none, or one that can be written and read again.
#include "io/MurkwellDocument.h"

#include <cstdint>
#include <cstdlib>

namespace {

murkwell::SharedBytes shared(std::span<const std::byte> bytes) {
    return murkwell::SharedBytes({bytes.begin(), bytes.end()});
}

murkwell::SharedBytes joined(const murkwell::BinaryPropertyList& list) {
    std::vector<std::byte> bytes;
    for (const auto part : list.parts()) {
        bytes.insert(bytes.end(), part.begin(), part.end());
    }
    return murkwell::SharedBytes(std::move(bytes));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto document = murkwell::decode(shared(std::as_bytes(std::span(data, size))));
    if (!document) {
        return 0;
    }
    const auto again = murkwell::decode(joined(murkwell::encode(*document).value()));
    if (!again || again->pages != document->pages ||
        again->sourceFilename != document->sourceFilename ||
        again->sourceData.size() != document->sourceData.size()) {
        std::abort();
    }
    return 0;
}
