#include "tests/support/FakeEngines.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

namespace murkwell {
namespace {

using DocumentIO::Document;

std::optional<Document> documentOf(const DocumentIO::LoadResult& result) {
    const auto* const document = std::get_if<Document>(&result);
    return document == nullptr ? std::nullopt : std::optional(*document);
}

std::optional<Document> load(FakeEngines& fakes, std::string_view name) {
    return documentOf(DocumentIO::load(bytesOf("anything"),
                                       std::filesystem::path("/nowhere") / name, fakes.engines()));
}

TEST(Load, TheNameAloneDecidesTheRoute) {
    struct Case {
        const char* name;
        bool pdf;
    };
    for (const Case& c : std::vector<Case>{{"Report.PDF", true},
                                           {"a.b.pdf", true},
                                           {"notes.pdf.png", false},
                                           {"pdf", false},
                                           {".pdf", false},
                                           {"scan.JPG", false},
                                           {"noextension", false},
                                           {"notes.txt", false}}) {
        FakeEngines fakes;
        EXPECT_FALSE(load(fakes, c.name));
        EXPECT_EQ(fakes.renderer.calls, c.pdf ? 1 : 0) << c.name;
        EXPECT_EQ(fakes.codec.decodeCalls, c.pdf ? 0 : 1) << c.name;
    }
}

TEST(Load, BrokenPdfPagesAreLeftOutAndTheOthersMoveUp) {
    FakeEngines fakes;
    const auto first = plainPage(1, 1);
    const auto third = plainPage(3, 3);
    fakes.renderer.pages = {{first}, {}, {third, false}};
    const auto document = load(fakes, "a.pdf");
    ASSERT_TRUE(document);
    ASSERT_EQ(document->pages.size(), 2U);
    EXPECT_EQ(document->pages[0].image, first);
    EXPECT_EQ(document->pages[1].image, third);
    EXPECT_TRUE(document->pages[0].isComplete);
    EXPECT_FALSE(document->pages[1].isComplete);
    EXPECT_EQ(document->omittedPages, 1U);
    EXPECT_TRUE(document->isPDF);
    EXPECT_EQ(document->imageType, ContentType::pdf);
    EXPECT_EQ(document->url, "/nowhere/a.pdf");
}

TEST(Load, NoneWhenNoPageIsLeft) {
    FakeEngines fakes;
    fakes.renderer.pages = {{}, {}};
    EXPECT_FALSE(load(fakes, "a.pdf"));
    fakes.renderer.pages = std::vector<RenderedPage>{};
    EXPECT_FALSE(load(fakes, "a.pdf"));
    fakes.codec.decoded = DecodedImage{nullptr, "public.png"};
    EXPECT_FALSE(load(fakes, "a.png"));
}

TEST(Load, ImageTypeIsWhatTheDecoderSaysThenTheNameThenPng) {
    struct Case {
        const char* decoded;
        const char* name;
        ContentType type;
    };
    for (const Case& c : std::vector<Case>{{"public.tiff", "a.png", ContentType::tiff},
                                           {"vendor.unheard-of", "a.JPG", ContentType::jpeg},
                                           {"", "a.gif", ContentType::gif},
                                           {"vendor.unheard-of", "a.xyz", ContentType::png},
                                           {"", "a", ContentType::png}}) {
        FakeEngines fakes;
        fakes.codec.decoded = DecodedImage{plainBitmap(2, 2), c.decoded};
        const auto document = load(fakes, c.name);
        ASSERT_TRUE(document);
        EXPECT_EQ(document->imageType, c.type) << c.decoded << " " << c.name;
        EXPECT_FALSE(document->isPDF);
        EXPECT_EQ(document->pages.size(), 1U);
    }
}

TEST(Load, FromAFileThatIsThereOrNot) {
    FakeEngines fakes;
    fakes.codec.decoded = DecodedImage{plainBitmap(2, 2), "public.png"};
    const TemporaryFolder folder;
    EXPECT_TRUE(documentOf(DocumentIO::load(folder.write("a.png", "x"), fakes.engines())));
    EXPECT_FALSE(documentOf(DocumentIO::load(folder / "missing.png", fakes.engines())));
    EXPECT_FALSE(documentOf(DocumentIO::load(folder.path, fakes.engines())));
}

TEST(Load, HandsThePasswordOnAndTellsWhenOneIsNeeded) {
    FakeEngines fakes;
    fakes.renderer.failure = LoadFailure::needsPassword;
    const auto result = DocumentIO::load(bytesOf("x"), "a.pdf", fakes.engines(), "open sesame");
    EXPECT_EQ(fakes.renderer.password, "open sesame");
    EXPECT_EQ(std::get<LoadFailure>(result), LoadFailure::needsPassword);
}

} // namespace
} // namespace murkwell
