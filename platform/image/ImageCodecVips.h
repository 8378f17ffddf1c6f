// Reads and writes pictures with libvips; BMP files on our own.
#pragma once

#include "io/ImageCodec.h"

namespace murkwell {

// Keeps nothing between calls.
class ImageCodecVips final : public ImageCodec {
public:
    [[nodiscard]] std::optional<DecodedImage> decode(std::span<const std::byte> file) override;

    // HEIC is among them when an encoder for it is installed.
    [[nodiscard]] std::vector<std::string> encodableTypes() const override;

    [[nodiscard]] std::optional<std::vector<std::byte>>
    encode(const Bitmap& picture, const ContentType& type,
           std::optional<double> lossyCompressionQuality) override;
};

// Loads all libraries and plug-ins that it will use: afterwards it opens no file.
void prepareImageCodecVips();

} // namespace murkwell
