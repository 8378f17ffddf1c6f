// The engines behind walls against the same ones without.
#include "platform/confined/ConfinedEngines.h"

#include "platform/confinement/Sanitized.h"
#include "platform/faces/FaceDetectorUltraFace.h"
#include "platform/image/ImageCodecVips.h"
#include "platform/ocr/TextRecognizerCombined.h"
#include "platform/pdf/PdfRendererMuPdf.h"
#include "platform/vision/InstalledFiles.h"
#include "tests/support/DrawnPage.h"
#include "tests/support/ModelFolder.h"
#include "tests/support/PdfBuilder.h"
#include "tests/support/TemporaryFolder.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <optional>
#include <thread>

namespace murkwell {
namespace {

using namespace std::chrono_literals;
namespace fs = std::filesystem;

bool areEqual(const BitmapRef& a, const BitmapRef& b) {
    return a && b && a->width() == b->width() && std::ranges::equal(a->pixels(), b->pixels());
}

// Ten pages of different sizes, one of them impossible and one beyond a worker's frame.
std::vector<std::byte> bundle() {
    std::vector<std::string> pages;
    for (int i = 1; i <= 8; ++i) {
        pages.push_back("/MediaBox [0 0 " + std::to_string(10 * i) + " 30]");
    }
    pages.insert(pages.begin() + 3, "/MediaBox [0 0 0.1 0.1]");
    pages.insert(pages.begin() + 5, "/MediaBox [0 0 2100 2100]");
    return PdfBuilder::document(pages);
}

// A page that takes about a second.
std::vector<std::byte> slowPage() {
    PdfBuilder builder;
    std::string content = "1 0 0 rg ";
    for (int i = 0; i < 1'500; ++i) {
        content += "0 0 500 500 re f ";
    }
    const int drawing = builder.addStream(content);
    const int page = builder.add("<< /Type /Page /MediaBox [0 0 500 500] /Contents " +
                                 PdfBuilder::ref(drawing) + " >>");
    const int tree =
        builder.add("<< /Type /Pages /Count 1 /Kids [" + PdfBuilder::ref(page) + "] >>");
    return builder.finish(builder.add("<< /Type /Catalog /Pages " + PdfBuilder::ref(tree) + " >>"));
}

const std::vector<RenderedPage>& pagesOf(const PdfRenderer::Result& result) {
    static const std::vector<RenderedPage> none;
    const auto* const pages = std::get_if<std::vector<RenderedPage>>(&result);
    return pages != nullptr ? *pages : none;
}

// Workers that this process has started.
std::vector<pid_t> workersOf(pid_t program) {
    std::vector<pid_t> found;
    for (const auto& task : fs::directory_iterator("/proc/" + std::to_string(program) + "/task")) {
        std::ifstream children(task.path() / "children");
        for (pid_t child = 0; children >> child;) {
            found.push_back(child);
        }
    }
    return found;
}

TEST(ConfinedEngines, DrawTheSamePages) {
    const auto pdf = bundle();
    const auto expected = PdfRendererMuPdf().render(pdf, std::nullopt);
    for (const std::size_t threads : {1U, 3U}) {
        Workers workers;
        const auto result = PdfRendererConfined(workers, threads).render(pdf, std::nullopt);
        const auto& pages = pagesOf(result);
        ASSERT_EQ(pages.size(), 10U);
        for (std::size_t i = 0; i < pages.size(); ++i) {
            const RenderedPage& page = pagesOf(expected)[i];
            EXPECT_EQ(pages[i].isComplete, page.isComplete);
            EXPECT_TRUE(page.image ? areEqual(pages[i].image->unpack(), page.image->unpack())
                                   : !pages[i].image)
                << i;
        }
        EXPECT_EQ(workers.missingWalls(), 0);
        EXPECT_TRUE(workersOf(::getpid()).empty());
    }
    ConfinedEngines engines;
    EXPECT_FALSE(engines.notice());
    const std::vector<std::byte> nothing(100);
    for (const auto& file : {nothing, std::vector<std::byte>()}) {
        EXPECT_TRUE(std::holds_alternative<LoadFailure>(
            engines.pdfRenderer.render(file, std::string("any"))));
    }
}

TEST(ConfinedEngines, ReadAndWriteTheSamePictures) {
    ConfinedEngines engines;
    ImageCodecVips without;
    const auto types = without.encodableTypes();
    EXPECT_EQ(engines.imageCodec.encodableTypes(), types);
    DrawnPage page(640, 400);
    page.write("Call 555-123-4567", 20, 80);
    for (const std::string& name : types) {
        const auto type = ContentType::fromIdentifier(name).value();
        const auto file = without.encode(*page.bitmap, type, .9);
        ASSERT_TRUE(file);
        EXPECT_EQ(engines.imageCodec.encode(*page.bitmap, type, .9), file) << name;
        const auto expected = without.decode(*file);
        const auto picture = engines.imageCodec.decode(*file);
        ASSERT_TRUE(picture && expected) << name;
        EXPECT_TRUE(areEqual(picture->bitmap, expected->bitmap)) << name;
        EXPECT_EQ(picture->typeIdentifier, expected->typeIdentifier);
        EXPECT_EQ(picture->pictureCount, expected->pictureCount);
        EXPECT_FALSE(engines.imageCodec.decode(std::span(*file).first(12)));
    }
    EXPECT_EQ(engines.workers.missingWalls(), 0);
}

struct Installation {
    const char* what;
    std::vector<std::string> missingModels;
    enum class English { ofTheSystem, elsewhere, none } english;
};

void installModels(const fs::path& folder, const std::vector<std::string>& without) {
    for (const std::string name : {"characters.txt", "faces.onnx", "latin.traineddata",
                                   "text-lines.onnx", "text-reader.onnx"}) {
        const auto model = installedModel(name);
        if (model && std::ranges::find(without, name) == without.end()) {
            fs::copy_file(*model, folder / name);
        }
    }
}

void copyEnglishTo(const fs::path& folder) {
    for (const auto& entry : fs::recursive_directory_iterator("/usr/share/tesseract-ocr")) {
        if (entry.path().filename() == TesseractEngines::systemData) {
            fs::copy_file(entry, folder / TesseractEngines::systemData);
            return;
        }
    }
}

void expectTheSameText(TextRecognizer& confined, TextRecognizer& text, const Bitmap& page) {
    EXPECT_EQ(confined.readiness().outcome, text.readiness().outcome);
    EXPECT_EQ(confined.readiness().missing, text.readiness().missing);
    const auto expected = text.recognize(page);
    const auto read = confined.recognize(page);
    EXPECT_EQ(read.outcome, expected.outcome);
    ASSERT_EQ(read.lines.size(), expected.lines.size());
    for (std::size_t i = 0; i < read.lines.size(); ++i) {
        EXPECT_EQ(read.lines[i].text, expected.lines[i].text);
        EXPECT_EQ(read.lines[i].box, expected.lines[i].box);
        EXPECT_EQ(read.lines[i].characterBoxes, expected.lines[i].characterBoxes);
    }
}

TEST(ConfinedEngines, FindTheSameWhateverIsInstalled) {
    using English = Installation::English;
    DrawnPage page(640, 400);
    for (int i = 0; i < 3; ++i) { // for more than one engine at a time
        page.write("Call 555-123-456" + std::to_string(i), 20, 80 + 100 * i);
        page.write("jo@example.org", 340, 130 + 100 * i);
    }
    for (const auto& [what, without, english] : std::vector<Installation>{
             {"all", {}, English::ofTheSystem},
             {"no Latin script", {"latin.traineddata"}, English::ofTheSystem},
             {"English elsewhere", {"latin.traineddata"}, English::elsewhere},
             {"nothing for Tesseract", {"latin.traineddata"}, English::none},
             {"Tesseract alone", {"faces.onnx", "text-lines.onnx"}, English::none},
         }) {
        SCOPED_TRACE(what);
        const TemporaryFolder folder;
        installModels(folder.path, without);
        const ModelFolder models(folder.path);
        const TemporaryFolder otherData;
        std::optional<FolderVariable> other;
        if (english != English::ofTheSystem) {
            other.emplace("TESSDATA_PREFIX", otherData.path);
        }
        if (english == English::elsewhere) {
            copyEnglishTo(otherData.path);
        }
        ConfinedEngines engines;
        TextRecognizerCombined text;
        expectTheSameText(engines.textRecognizer, text, *page.bitmap);
        FaceDetectorUltraFace faces;
        EXPECT_EQ(engines.faceDetector.readiness().missing, faces.readiness().missing);
        EXPECT_EQ(engines.faceDetector.detectFaces(*page.bitmap), faces.detectFaces(*page.bitmap));
        EXPECT_EQ(engines.workers.missingWalls(), 0);
    }
}

// Kills the first workers that it sees, so long after it saw them.
class Killer {
public:
    explicit Killer(std::chrono::milliseconds after)
        : thread([this, after](const std::stop_token& stopped) {
              while (!stopped.stop_requested() && killed == 0) {
                  if (!workersOf(::getpid()).empty()) {
                      std::this_thread::sleep_for(after);
                  }
                  for (const pid_t worker : workersOf(::getpid())) {
                      killed += ::kill(worker, SIGKILL) == 0 ? 1 : 0;
                  }
                  std::this_thread::sleep_for(1ms);
              }
          }) {}
    ~Killer() { EXPECT_GT(killed, 0); }
    Killer(const Killer&) = delete;
    Killer& operator=(const Killer&) = delete;

private:
    std::atomic<int> killed{0};
    std::jthread thread;
};

TEST(ConfinedEngines, AnotherWorkerTakesThePlaceOfOneThatIsKilled) {
    const auto pdf = slowPage();
    DrawnPage page(640, 200);
    page.write("Call 555-123-4567", 20, 80);
    for (const auto after : {0ms, 200ms}) { // in the start, at work
        SCOPED_TRACE(after.count());
        ConfinedEngines engines;
        {
            const Killer killer(after);
            const auto result = engines.pdfRenderer.render(pdf, std::nullopt);
            ASSERT_EQ(pagesOf(result).size(), 1U);
            EXPECT_TRUE(pagesOf(result)[0].image);
        }
        const Killer killer(after);
        const auto read = engines.textRecognizer.recognize(*page.bitmap);
        EXPECT_NE(read.outcome, Outcome::failed);
        EXPECT_FALSE(read.lines.empty());
    }
}

TEST(ConfinedEngines, APageThatTakesTooLongIsNoDocument) {
    Workers inAHurry(installedWorkers(), .001);
    EXPECT_TRUE(std::holds_alternative<LoadFailure>(
        PdfRendererConfined(inAHurry, 1).render(slowPage(), std::nullopt)));
}

TEST(ConfinedEngines, ASearchIsCancelledAtOnce) {
    ConfinedEngines engines;
    DrawnPage page(2000, 3000);
    page.addNoise();
    std::atomic<bool> isOver{false};
    std::jthread search([&] {
        EXPECT_EQ(engines.textRecognizer.recognize(*page.bitmap).outcome, Outcome::failed);
        EXPECT_FALSE(engines.faceDetector.detectFaces(*page.bitmap));
        isOver = true;
    });
    std::this_thread::sleep_for(500ms);
    EXPECT_FALSE(isOver);
    engines.recognition.cancel();
    const auto start = std::chrono::steady_clock::now();
    search.join();
    EXPECT_LT(std::chrono::steady_clock::now() - start, 5s);
}

} // namespace
} // namespace murkwell
