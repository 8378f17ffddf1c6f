// Any bytes at all, as a picture.
#include "platform/image/ImageCodecVips.h"

#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    murkwell::ImageCodecVips codec;
    (void)codec.decode(std::as_bytes(std::span(data, size)));
    return 0;
}
