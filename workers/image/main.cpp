// murkwell-image: decodes and encodes pictures behind walls. Only wiring.
#include "platform/confinement/WorkerLoop.h"
#include "platform/image/ImageCodecVips.h"

#include <ctime>

namespace {

using namespace murkwell;
using Kind = Message::Kind;

Message failed() {
    return WorkerLoop::done(1);
}

Message decode(WorkerLoop& loop) {
    auto image = ImageCodecVips().decode(loop.source());
    auto answer = image ? loop.done(std::move(image->bitmap)) : std::nullopt;
    if (!answer || !answer->setText(image->typeIdentifier)) {
        return failed();
    }
    answer->size = image->pictureCount;
    return *answer;
}

Message encode(WorkerLoop& loop, const Message& request) {
    const auto type = ContentType::fromIdentifier(request.textView());
    const auto picture = loop.takePicture();
    if (!type || !picture) {
        return failed();
    }
    const auto quality = request.number < 0 ? std::nullopt : std::optional(request.number);
    const auto bytes = ImageCodecVips().encode(*picture, *type, quality);
    return (bytes ? loop.done(*bytes) : std::nullopt).value_or(failed());
}

Message encodableType(const Message& request) {
    const auto types = ImageCodecVips().encodableTypes();
    const auto number = static_cast<std::size_t>(request.index);
    Message answer = WorkerLoop::done(0);
    return number < types.size() && answer.setText(types[number]) ? answer : failed();
}

Message answer(WorkerLoop& loop, const Message& request) {
    switch (request.kind) {
    case Kind::decode:
        return decode(loop);
    case Kind::encode:
        return encode(loop, request);
    case Kind::canEncode:
        return encodableType(request);
    default:
        return failed();
    }
}

// Libraries and plug-ins load at the first use, which must be before the walls close.
void load() {
    ::tzset();
    prepareImageCodecVips();
}

} // namespace

int main() {
    WorkerLoop::run(Profiles::image(), load, answer);
}
