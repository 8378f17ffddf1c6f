// ImageCodec by workers: a new one for each picture, so that what has seen a source never writes an
// export.
#pragma once

#include "io/ImageCodec.h"
#include "platform/confined/Workers.h"

namespace murkwell {

class ImageCodecConfined final : public ImageCodec {
public:
    explicit ImageCodecConfined(Workers& used) : workers(used) {}

    [[nodiscard]] std::optional<DecodedImage> decode(std::span<const std::byte> file) override;
    [[nodiscard]] std::vector<std::string> encodableTypes() const override;
    [[nodiscard]] std::optional<std::vector<std::byte>>
    encode(const Bitmap& picture, const ContentType& type,
           std::optional<double> lossyCompressionQuality) override;

private:
    Workers& workers;
};

} // namespace murkwell
