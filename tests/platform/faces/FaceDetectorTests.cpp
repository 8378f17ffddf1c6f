// The real network. What needs ONNX Runtime and the model is skipped without.
#include "platform/faces/FaceDetectorUltraFace.h"

#include "platform/vision/InstalledFiles.h"
#include "platform/vision/OnnxSession.h"
#include "tests/support/DrawnPage.h"
#include "tests/support/ModelFolder.h"
#include "tests/support/TemporaryFolder.h"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <string>
#include <utility>
#include <vector>

namespace murkwell {
namespace {

TEST(FaceDetector, PagesWithoutFacesHaveNone) {
    FaceDetectorUltraFace detector;
    if (detector.readiness().outcome != Outcome::whole) {
        GTEST_SKIP() << "no ONNX Runtime or no model";
    }
    for (const auto& [width, height] :
         std::vector<std::pair<int, int>>{{1, 1}, {3, 1}, {1, 3000}, {3000, 1}, {700, 500}}) {
        DrawnPage page(width, height);
        for (const double level : {255.0, 0.0}) {
            page.fill({level, level, level, 255});
            const auto faces = detector.detectFaces(*page.bitmap);
            ASSERT_TRUE(faces) << width << " x " << height;
            EXPECT_TRUE(faces->empty());
        }
    }
    DrawnPage noise(700, 500);
    noise.addNoise();
    const auto faces = detector.detectFaces(*noise.bitmap);
    ASSERT_TRUE(faces);
    EXPECT_TRUE(faces->empty());
}

TEST(FaceDetector, AMissingOrDamagedModelFindsNone) {
    const TemporaryFolder folder;
    const ModelFolder models(folder.path);
    const DrawnPage page(100, 100);

    FaceDetectorUltraFace missing;
    EXPECT_EQ(missing.readiness().outcome, Outcome::failed);
    EXPECT_EQ(missing.readiness().missing,
              std::vector<std::string>{OnnxSession::hasLibrary() ? "faces.onnx" : "ONNX Runtime"});
    EXPECT_FALSE(missing.detectFaces(*page.bitmap));

    std::ofstream(folder.path / "faces.onnx") << "not a model";
    FaceDetectorUltraFace damaged;
    EXPECT_FALSE(damaged.detectFaces(*page.bitmap));
}

TEST(FaceDetector, AnotherModelIsRefused) {
    const auto other = installedModel("text-lines.onnx");
    if (!other) {
        GTEST_SKIP() << "no models";
    }
    const TemporaryFolder folder;
    std::filesystem::copy_file(*other, folder.path / "faces.onnx");
    const ModelFolder models(folder.path);
    FaceDetectorUltraFace detector;
    EXPECT_EQ(detector.readiness().outcome, Outcome::failed);
}

} // namespace
} // namespace murkwell
