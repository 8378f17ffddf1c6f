// murkwell-recognition: reads text and finds faces behind walls. Only wiring.
#include "platform/confinement/Lines.h"
#include "platform/confinement/WorkerLoop.h"
#include "platform/faces/FaceDetectorUltraFace.h"
#include "platform/ocr/TextRecognizerCombined.h"
#include "platform/vision/InstalledFiles.h"

#include <algorithm>
#include <iterator>

namespace {

using namespace murkwell;
using Kind = Message::Kind;

Message plain(Outcome outcome) {
    return WorkerLoop::done(static_cast<std::int32_t>(outcome));
}

template <typename Results>
Message withResults(WorkerLoop& loop, Outcome outcome, const Results& results) {
    auto answer = loop.done(toBytes(results));
    if (!answer) {
        return plain(Outcome::failed);
    }
    answer->index = static_cast<std::int32_t>(outcome);
    return *answer;
}

class Recognizers {
public:
    // Models and language data are read here, which must be before the walls close.
    void load() {
        textReadiness = text.readiness();
        faceReadiness = faces.readiness();
    }

    Message answer(WorkerLoop& loop, const Message& request) {
        if (request.kind == Kind::isUsable) {
            const bool isText = request.index == static_cast<std::int32_t>(Engine::text);
            return describe(loop, isText ? textReadiness : faceReadiness);
        }
        const auto picture = loop.takePicture();
        if (!picture) {
            return plain(Outcome::failed);
        }
        if (request.kind == Kind::readText) {
            const auto read = text.recognize(*picture);
            return withResults(loop, read.outcome, read.lines);
        }
        const auto found = faces.detectFaces(*picture);
        return found ? withResults(loop, Outcome::whole, *found) : plain(Outcome::failed);
    }

private:
    static Message describe(WorkerLoop& loop, const Readiness& readiness) {
        std::vector<RecognizedLine> names;
        for (const std::string& name : readiness.missing) {
            names.push_back({name, {}, {}});
        }
        return withResults(loop, readiness.outcome, names);
    }

    TextRecognizerCombined text;
    FaceDetectorUltraFace faces;
    Readiness textReadiness;
    Readiness faceReadiness;
};

std::vector<std::filesystem::path> foldersToRead() {
    auto folders = installedFolders();
    std::ranges::move(TesseractEngines::systemFolders(), std::back_inserter(folders));
    return folders;
}

} // namespace

int main() {
    Recognizers recognizers;
    WorkerLoop::run(
        Profiles::recognition(foldersToRead()), [&] { recognizers.load(); },
        [&](WorkerLoop& loop, const Message& request) {
            return recognizers.answer(loop, request);
        });
}
