#include "platform/confined/ImageCodecConfined.h"

#include <algorithm>

namespace murkwell {
namespace {

using namespace std::chrono_literals;
using Kind = Message::Kind;

// Processor time. The slowest honest picture that we measured, a HEIC of 100 megapixels, takes 11
// seconds.
constexpr auto timeToDecode = 20s;
constexpr auto timeToEncode = 600s;

constexpr const char* program = "murkwell-image";

// The same in every worker's answer.
constexpr std::int32_t succeeded = 0;

} // namespace

std::optional<DecodedImage> ImageCodecConfined::decode(std::span<const std::byte> file) {
    workers.beginDocument();
    const auto source = SharedMemory::sealedCopy(file);
    const auto worker = source ? workers.start(program) : nullptr;
    if (!worker || !worker->sendSource(*source)) {
        return std::nullopt;
    }
    Message request;
    request.kind = Kind::decode;
    workers.allow(*worker, timeToDecode);
    const auto answer = workers.ask(*worker, request);
    auto bitmap = answer && answer->index == succeeded ? worker->takeBitmap(*answer) : nullptr;
    if (!bitmap) {
        return std::nullopt;
    }
    constexpr std::uint64_t mostPictures = 1'000'000;
    const auto pictures = std::clamp<std::uint64_t>(answer->size, 1, mostPictures);
    return DecodedImage{std::move(bitmap), std::string(answer->textView()),
                        static_cast<std::size_t>(pictures)};
}

std::vector<std::string> ImageCodecConfined::encodableTypes() const {
    const auto worker = workers.start(program);
    std::vector<std::string> types;
    constexpr std::int32_t most = 32;
    for (std::int32_t i = 0; worker && i < most; ++i) {
        Message request;
        request.kind = Kind::canEncode;
        request.index = i;
        const auto answer = workers.ask(*worker, request);
        if (!answer || answer->index != succeeded) {
            break;
        }
        types.emplace_back(answer->textView());
    }
    return types;
}

std::optional<std::vector<std::byte>>
ImageCodecConfined::encode(const Bitmap& picture, const ContentType& type,
                           std::optional<double> lossyCompressionQuality) {
    const auto worker = workers.start(program);
    Message request;
    request.kind = Kind::encode;
    request.number = lossyCompressionQuality.value_or(-1);
    if (!worker || !request.setText(type.identifier()) || !worker->sendPicture(picture)) {
        return std::nullopt;
    }
    workers.allow(*worker, timeToEncode);
    const auto answer = workers.ask(*worker, request);
    return answer && answer->index == succeeded ? worker->takeBytes(*answer) : std::nullopt;
}

} // namespace murkwell
