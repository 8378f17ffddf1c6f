// What becomes of the engines when a worker has been taken over.
#include "platform/confined/ConfinedEngines.h"
#include "tests/support/TemporaryFolder.h"

#include <chrono>
#include <gtest/gtest.h>

namespace murkwell {
namespace {

using namespace std::chrono_literals;

struct Case {
    const char* behaviour;
    // It says that it has found nothing, or that a result lies in memory that it was lent. Nobody
    // can tell: pixels, bytes and boxes may be any.
    bool mayBeBelieved = false;
};

constexpr Case cases[] = {
    {"silent"},
    {"ends"},
    {"crashes"},
    {"closes"},
    {"spins"},
    {"babbles"},
    {"odd sizes"},
    {"always ready"},
    {"always done", true},
    {"many pages"},
    {"less than no pages"},
    {"nothing was lent"},
    {"absurd sizes"},
    {"small wishes"},
    {"endless wishes"},
    {"hoards"},
    {"more than was lent"},
    {"does not let go", true},
    {"scribbles", true},
    {"noise", true},
    {"counts beyond its bytes", true},
    {"sends descriptors"},
};

class HostileWorker : public testing::TestWithParam<Case> {
protected:
    HostileWorker() {
        folder.write("behaviour", GetParam().behaviour);
        for (const char* const name : {"murkwell-pdf", "murkwell-image", "murkwell-recognition"}) {
            std::filesystem::create_symlink(MURKWELL_HOSTILE_WORKER, folder / name);
        }
    }

    TemporaryFolder folder;
    // Half a minute becomes 30 milliseconds.
    Workers workers{folder.path, .001};
    const std::vector<std::byte> file{10'000};
};

std::string nameOf(const testing::TestParamInfo<Case>& info) {
    std::string name = info.param.behaviour;
    std::erase(name, ' ');
    return name;
}

INSTANTIATE_TEST_SUITE_P(All, HostileWorker, testing::ValuesIn(cases), nameOf);

TEST_P(HostileWorker, GivesNoPages) {
    PdfRendererConfined renderer(workers, 2);
    const auto result = renderer.render(file, std::nullopt);
    if (const auto* const pages = std::get_if<std::vector<RenderedPage>>(&result)) {
        for (const RenderedPage& page : *pages) {
            EXPECT_TRUE(!page.image || GetParam().mayBeBelieved);
        }
    }
}

TEST_P(HostileWorker, GivesNoPictureAndNoFile) {
    ImageCodecConfined codec(workers);
    EXPECT_TRUE(!codec.decode(file) || GetParam().mayBeBelieved);
    const auto picture = Bitmap::create(60, 80);
    const auto encoded = codec.encode(*picture, ContentType::png, std::nullopt);
    EXPECT_TRUE(!encoded || encoded->empty() || GetParam().mayBeBelieved);
    for (const std::string& type : codec.encodableTypes()) {
        EXPECT_FALSE(ContentType::fromIdentifier(type)) << type;
    }
}

TEST_P(HostileWorker, IsNeverTakenForAPageWithoutFindings) {
    RecognitionWorker worker(workers);
    const auto picture = Bitmap::create(60, 80);
    const auto text = TextRecognizerConfined(worker).recognize(*picture);
    EXPECT_TRUE(text.outcome == Outcome::failed || GetParam().mayBeBelieved);
    EXPECT_TRUE(!FaceDetectorConfined(worker).detectFaces(*picture) || GetParam().mayBeBelieved);
}

} // namespace
} // namespace murkwell
