#include "platform/confined/RecognitionConfined.h"

#include "platform/confinement/Lines.h"

#include <algorithm>

namespace murkwell {
namespace {

using Kind = Message::Kind;

// What fails, and what makes no sense, has not been searched.
Outcome outcomeOf(std::int32_t index) {
    switch (index) {
    case static_cast<std::int32_t>(Outcome::whole):
        return Outcome::whole;
    case static_cast<std::int32_t>(Outcome::partial):
        return Outcome::partial;
    default:
        return Outcome::failed;
    }
}

Message plain(Kind kind, Engine engine = Engine::text) {
    Message request;
    request.kind = kind;
    request.index = static_cast<std::int32_t>(engine);
    return request;
}

bool isShowable(const RecognizedLine& name) {
    constexpr std::size_t longest = 100;
    return name.text.size() <= longest && std::ranges::none_of(name.text, [](char c) {
               return static_cast<unsigned char>(c) < ' ';
           });
}

Readiness readinessOf(RecognitionWorker& worker, Engine engine) {
    const auto answer = worker.ask(plain(Kind::isUsable, engine), nullptr);
    const auto names = answer ? linesFrom(answer->bytes) : std::nullopt;
    if (!names || !std::ranges::all_of(*names, isShowable)) {
        return {Outcome::failed, {"murkwell-recognition"}};
    }
    Readiness readiness{outcomeOf(answer->index), {}};
    for (const RecognizedLine& name : *names) {
        readiness.missing.push_back(name.text);
    }
    return readiness;
}

} // namespace

RecognizedText TextRecognizerConfined::recognize(const Bitmap& image) {
    const auto answer = worker.ask(plain(Kind::readText), &image);
    auto lines = answer ? linesFrom(answer->bytes) : std::nullopt;
    return lines ? RecognizedText{*std::move(lines), outcomeOf(answer->index)}
                 : RecognizedText{{}, Outcome::failed};
}

Readiness TextRecognizerConfined::readiness() {
    return readinessOf(worker, Engine::text);
}

std::optional<std::vector<RecognizerRect>> FaceDetectorConfined::detectFaces(const Bitmap& image) {
    const auto answer = worker.ask(plain(Kind::findFaces), &image);
    return answer && outcomeOf(answer->index) == Outcome::whole ? boxesFrom(answer->bytes)
                                                                : std::nullopt;
}

Readiness FaceDetectorConfined::readiness() {
    return readinessOf(worker, Engine::faces);
}

} // namespace murkwell
