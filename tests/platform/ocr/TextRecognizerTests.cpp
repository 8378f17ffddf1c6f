// The real engines, on pages drawn here. What needs ONNX Runtime and the models is skipped without.
#include "platform/ocr/TextRecognizerCombined.h"

#include "platform/vision/InstalledFiles.h"
#include "platform/vision/OnnxSession.h"

#include "tests/support/DrawnPage.h"
#include "tests/support/ModelFolder.h"
#include "tests/support/TemporaryFolder.h"

#include <algorithm>
#include <cmath>
#include <fstream>
#include <gtest/gtest.h>
#include <thread>

namespace murkwell {
namespace {

namespace fs = std::filesystem;

// The characters of the text as one box, in pixels of the page from the top left; none when no line
// holds the text.
std::optional<cv::Rect2d> find(const std::vector<RecognizedLine>& lines, const std::string& text,
                               const Bitmap& page) {
    for (const RecognizedLine& line : lines) {
        const std::size_t at = line.text.find(text);
        if (at == std::string::npos || line.characterBoxes.size() != line.text.size()) {
            continue;
        }
        cv::Rect2d all;
        for (std::size_t i = at; i < at + text.size(); ++i) {
            const RecognizerRect& box = line.characterBoxes[i];
            const cv::Rect2d pixels(box.x * page.width(), (1 - box.maxY()) * page.height(),
                                    box.width * page.width(), box.height * page.height());
            all = all.area() > 0 ? all | pixels : pixels;
        }
        return all;
    }
    return std::nullopt;
}

bool covers(const cv::Rect2d& outer, const cv::Rect2d& inner) {
    return (outer & inner).area() > .95 * inner.area();
}

// A line of text and where a part of it stands.
struct Written {
    DrawnPage page{700, 200};
    cv::Rect all = page.write("Card 4111 1111 1111 1111", 60, 110);
};

// What at least one reader read.
std::vector<RecognizedLine> linesOf(TextRecognizer& recognizer, const Bitmap& page) {
    RecognizedText text = recognizer.recognize(page);
    EXPECT_NE(text.outcome, Outcome::failed);
    return std::move(text.lines);
}

void expectNumberFound(TextRecognizer& recognizer) {
    const Written written;
    const auto lines = linesOf(recognizer, *written.page.bitmap);
    const auto box = find(lines, "4111 1111 1111 1111", *written.page.bitmap);
    ASSERT_TRUE(box);
    const cv::Rect number(written.all.x + written.all.width / 5, written.all.y,
                          written.all.width * 4 / 5, written.all.height);
    EXPECT_TRUE(covers(*box, number)) << *box << " " << number;
    EXPECT_LT(box->area(), 2.5 * number.area());
}

class PpOcr : public testing::Test {
protected:
    void SetUp() override {
        if (recognizer.readiness().outcome != Outcome::whole) {
            GTEST_SKIP() << "no ONNX Runtime or no models";
        }
    }

    TextRecognizerCombined recognizer;
};

TEST_F(PpOcr, FindsANumberAndItsPlace) {
    expectNumberFound(recognizer);
}

TEST_F(PpOcr, ReadsLinesThatRunDownAndUpAndStandOnTheirHead) {
    for (const auto turn :
         {cv::ROTATE_90_CLOCKWISE, cv::ROTATE_90_COUNTERCLOCKWISE, cv::ROTATE_180}) {
        const Written written;
        const bool level = turn == cv::ROTATE_180;
        DrawnPage turned(level ? 700 : 200, level ? 200 : 700);
        cv::rotate(pixelsOf(*written.page.bitmap), pixelsOf(*turned.bitmap), turn);
        const auto lines = linesOf(recognizer, *turned.bitmap);
        const auto box = find(lines, "4111", *turned.bitmap);
        ASSERT_TRUE(box) << turn;
        // After "Card " as one reads: from the top, from the right, from the bottom.
        const double along = turn == cv::ROTATE_90_CLOCKWISE ? box->y
                             : level                         ? 700 - box->br().x
                                                             : 700 - box->br().y;
        EXPECT_NEAR(along, 60 + written.all.width / 5.0, 25) << turn;
    }
}

TEST_F(PpOcr, FourSearchesAtOnceAgree) {
    const Written written;
    std::vector<std::size_t> found(4);
    {
        std::vector<std::jthread> threads;
        for (std::size_t& count : found) {
            threads.emplace_back([&] {
                const auto lines = linesOf(recognizer, *written.page.bitmap);
                count = find(lines, "1111", *written.page.bitmap) ? 1 : 0;
            });
        }
    }
    EXPECT_EQ(found, std::vector<std::size_t>(4, 1));
}

TEST(Tesseract, FindsANumberAndItsPlace) {
    TesseractEngines engines;
    TextRecognizerTesseract recognizer(engines);
    expectNumberFound(recognizer);
}

TEST(Combined, FindsANumberAndItsPlace) {
    TextRecognizerCombined recognizer;
    expectNumberFound(recognizer);
}

// What is missing is named, and what it takes away is said of every page.
TEST(Combined, WithoutAnEngineTheOtherReadsAloneAndWithoutBothNothingIsRead) {
    const TemporaryFolder empty;
    const ModelFolder noModels(empty.path);
    const std::string models = OnnxSession::hasLibrary()
                                   ? "text-lines.onnx,text-reader.onnx,characters.txt,"
                                     "latin.traineddata,"
                                   : "ONNX Runtime,latin.traineddata,";
    const auto missingFor = [](TextRecognizer& recognizer) {
        std::string names;
        for (const std::string& name : recognizer.readiness().missing) {
            names += name + ",";
        }
        return names;
    };
    const Written written;
    TextRecognizerCombined tesseractAlone;
    EXPECT_EQ(missingFor(tesseractAlone), models);
    EXPECT_EQ(tesseractAlone.readiness().outcome, Outcome::partial);
    EXPECT_EQ(tesseractAlone.recognize(*written.page.bitmap).outcome, Outcome::partial);
    expectNumberFound(tesseractAlone);

    const FolderVariable noData("TESSDATA_PREFIX", empty.path);
    TextRecognizerCombined nothing;
    EXPECT_EQ(missingFor(nothing), models + "eng.traineddata,");
    EXPECT_EQ(nothing.readiness().outcome, Outcome::failed);
    const RecognizedText unread = nothing.recognize(*written.page.bitmap);
    EXPECT_EQ(unread.outcome, Outcome::failed);
    EXPECT_TRUE(unread.lines.empty());
}

TEST(PpOcrModels, DamagedOnesAreLikeMissingOnes) {
    const auto reader = installedModel("text-reader.onnx");
    const auto finder = installedModel("text-lines.onnx");
    const auto characters = installedModel("characters.txt");
    const auto latin = installedModel("latin.traineddata");
    if (!reader || !finder || !characters || !latin) {
        GTEST_SKIP() << "no models";
    }
    using Names = std::vector<std::string>;
    const Names ppOcr{"text-reader.onnx", "characters.txt"};
    struct Case {
        const char* what;
        const char* file;
        fs::path source; // of what is put there; empty: ten bytes of nonsense
        std::uintmax_t size;
        Names missing;
        Outcome outcome; // of a page, which English reads as well as Latin
    };
    for (const Case& c : std::vector<Case>{
             {"cut off", "text-reader.onnx", *reader, fs::file_size(*reader) / 2, ppOcr,
              Outcome::partial},
             {"empty", "text-lines.onnx", *finder, 0, {"text-lines.onnx"}, Outcome::partial},
             {"nonsense", "text-lines.onnx", {}, 10, {"text-lines.onnx"}, Outcome::partial},
             {"alphabet cut off", "characters.txt", *characters, 20, ppOcr, Outcome::partial},
             {"not characters", "characters.txt", *finder, 1000, ppOcr, Outcome::partial},
             {"script cut off",
              "latin.traineddata",
              *latin,
              100'000,
              {"latin.traineddata"},
              Outcome::whole},
             {"no script", "latin.traineddata", {}, 0, {"latin.traineddata"}, Outcome::whole},
         }) {
        const TemporaryFolder folder;
        for (const auto& file : {reader, finder, characters, latin}) {
            fs::copy_file(*file, folder.path / file->filename());
        }
        const fs::path damaged = folder.path / c.file;
        if (c.source.empty()) {
            std::ofstream(damaged) << "not a model";
        } else {
            fs::copy_file(c.source, damaged, fs::copy_options::overwrite_existing);
        }
        fs::resize_file(damaged, c.size);
        const ModelFolder models(folder.path);
        TextRecognizerCombined recognizer;
        EXPECT_EQ(recognizer.readiness().outcome, Outcome::partial) << c.what;
        EXPECT_EQ(recognizer.readiness().missing, c.missing) << c.what;
        EXPECT_EQ(recognizer.recognize(*Written().page.bitmap).outcome, c.outcome) << c.what;
        expectNumberFound(recognizer);
    }
}

TEST(Combined, PagesWithoutTextGiveNoneOfIt) {
    TextRecognizerCombined recognizer;
    for (const auto& [width, height] :
         std::vector<std::pair<int, int>>{{1, 1}, {2, 3}, {1, 3000}, {3000, 1}, {400, 300}}) {
        DrawnPage page(width, height);
        for (const int level : {255, 0}) {
            page.fill({static_cast<double>(level), static_cast<double>(level),
                       static_cast<double>(level), 255});
            const RecognizedText text = recognizer.recognize(*page.bitmap);
            EXPECT_NE(text.outcome, Outcome::failed) << width << " x " << height;
            for (const RecognizedLine& line : text.lines) {
                EXPECT_TRUE(std::ranges::none_of(line.text, ::isdigit)) << line.text;
            }
        }
    }
}

TEST(Combined, NoiseGivesFiniteBoxes) {
    TextRecognizerCombined recognizer;
    DrawnPage page(300, 200);
    page.addNoise();
    for (const RecognizedLine& line : linesOf(recognizer, *page.bitmap)) {
        for (const RecognizerRect& box : line.characterBoxes) {
            EXPECT_TRUE(std::isfinite(box.x + box.y + box.width + box.height));
        }
    }
}

// On transparent paper; ink of another colour than black is seen on black paper alone.
TEST(Combined, TransparentPaperIsReadWhateverTheInk) {
    DrawnPage page(700, 300);
    page.write("Card 4111 1111 1111 1111", 60, 110);
    page.write("Phone 555-123-4567 home", 60, 210);
    for (int y = 0; y < page.bitmap->height(); ++y) {
        for (Rgba& pixel : page.bitmap->row(y)) {
            const auto ink = static_cast<std::uint8_t>(255 - pixel.r);
            const std::uint8_t light = y < 150 ? 0 : ink;
            pixel = {light, light, light, ink};
        }
    }
    TextRecognizerCombined recognizer;
    const auto lines = linesOf(recognizer, *page.bitmap);
    EXPECT_TRUE(find(lines, "4111 1111 1111 1111", *page.bitmap)); // black
    EXPECT_TRUE(find(lines, "555-123-4567", *page.bitmap));        // white
}

} // namespace
} // namespace murkwell
