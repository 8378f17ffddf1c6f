// Port: decodes and encodes single pictures.
//
// Called on one thread at a time; an adapter may use more threads inside the call.
#pragma once

#include "core/Bitmap.h"
#include "io/ContentType.h"

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace murkwell {

struct DecodedImage {
    BitmapRef bitmap;
    std::string typeIdentifier;   // what the bytes turned out to be; empty when unknown
    std::size_t pictureCount = 1; // in the file: pages, frames; `bitmap` is the first of them
};

class ImageCodec {
public:
    virtual ~ImageCodec() = default;

    // The first picture of the file, pixels as stored: neither an orientation tag nor a HEIF
    // rotation or mirroring is applied. Colours are converted to sRGB. None when the bytes are no
    // picture of a known format, are damaged beyond use, or ask for more than memory or a few
    // seconds can give.
    [[nodiscard]] virtual std::optional<DecodedImage> decode(std::span<const std::byte> file) = 0;

    // Identifiers of the types that encode() can write.
    [[nodiscard]] virtual std::vector<std::string> encodableTypes() const = 0;

    // The bytes of a file of that type which holds these pixels and nothing else. The quality of a
    // lossy format runs from 0 to 1; none leaves it to the encoder. None on failure.
    [[nodiscard]] virtual std::optional<std::vector<std::byte>>
    encode(const Bitmap& picture, const ContentType& type,
           std::optional<double> lossyCompressionQuality) = 0;
};

} // namespace murkwell
