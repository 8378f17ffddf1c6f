#include "tests/support/FakeEngines.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

namespace murkwell {
namespace {

constexpr Rgba black{0, 0, 0, 255};

using Lists = std::vector<std::vector<Redaction>>;

Redaction wholePage() {
    return {Uuid{}, {0, 0, 1, 1}, RedactionStyle::solidBlack, false};
}

DocumentIO::Document pdfOf(int pageCount) {
    DocumentIO::Document document{"/nowhere/a.pdf", true, ContentType::pdf, {}};
    for (int i = 0; i < pageCount; ++i) {
        document.pages.push_back({plainPage(10 + i, 10)});
    }
    return document;
}

DocumentIO::Document imageOf(const ContentType& type) {
    return {"/nowhere/a.bin", false, type, {{plainPage(10, 10)}}};
}

TEST(Write, EveryPageOfAPdfIsBurnedAfreshInOrder) {
    FakeEngines fakes;
    const TemporaryFolder folder;
    const auto document = pdfOf(3);
    ASSERT_TRUE(DocumentIO::write(document, Lists{{}, {wholePage()}, {}}, folder / "out.pdf",
                                  fakes.engines()));
    ASSERT_EQ(fakes.writer.pages.size(), 3U);
    for (std::size_t i = 0; i < 3; ++i) {
        const Bitmap& burned = *fakes.writer.pages[i];
        EXPECT_EQ(burned.width(), 10 + static_cast<int>(i));
        EXPECT_EQ(burned.pixels().front(),
                  i == 1 ? black : document.pages[i].image->unpack()->pixels().front());
    }
    EXPECT_EQ(contentOf(folder / "out.pdf"), "a PDF");
}

TEST(Write, ListsMayBeFewerOrMoreThanPages) {
    FakeEngines fakes;
    const TemporaryFolder folder;
    EXPECT_TRUE(
        DocumentIO::write(pdfOf(3), Lists{{wholePage()}}, folder / "a.pdf", fakes.engines()));
    EXPECT_EQ(fakes.writer.pages[0]->pixels().front(), black);
    EXPECT_NE(fakes.writer.pages[1]->pixels().front(), black);
    EXPECT_TRUE(
        DocumentIO::write(pdfOf(1), Lists{{}, {wholePage()}}, folder / "b.pdf", fakes.engines()));
    EXPECT_EQ(fakes.writer.pages.size(), 1U);
}

TEST(Write, ImageFormatFollowsTheSourceNeverTheName) {
    struct Case {
        const char* what;
        ContentType source;
        std::vector<std::string> encodable;
        const char* written;
    };
    for (const Case& c : std::vector<Case>{
             {"its own", ContentType::tiff, {"public.tiff"}, "public.tiff default 200"},
             {"JPEG", ContentType::jpeg, {"public.jpeg"}, "public.jpeg 0.92 200"},
             {"a kind of JPEG", ContentType::mpo, {"public.jpeg"}, "public.jpeg 0.92 200"},
             {"a kind of JPEG with an encoder of its own",
              ContentType::mpo,
              {"public.jpeg", "public.mpo-image"},
              "public.mpo-image default 200"},
             {"no encoder", ContentType::heic, {"public.jpeg"}, "public.png default 200"},
             {"PNG is not asked for", ContentType::png, {}, "public.png default 200"},
         }) {
        FakeEngines fakes;
        fakes.codec.encodable = c.encodable;
        const TemporaryFolder folder;
        EXPECT_TRUE(DocumentIO::write(imageOf(c.source), {}, folder / "out.jpg", fakes.engines()));
        EXPECT_EQ(contentOf(folder / "out.jpg"), c.written) << c.what;
    }
}

TEST(Write, OnlyAGifLimitsTheColoursOfNoise) {
    const auto page = Bitmap::create(256, 100);
    for (std::size_t i = 0; i < page->pixels().size(); ++i) {
        page->pixels()[i] = {static_cast<std::uint8_t>(i), 0, 0, 255};
    }
    const Redaction lowerHalf{Uuid{}, {0, 0.5, 1, 0.5}, RedactionStyle::noise, false};
    for (const ContentType& type : {ContentType::gif, ContentType::png}) {
        FakeEngines fakes;
        fakes.codec.encodable = {std::string(type.identifier())};
        const TemporaryFolder folder;
        ASSERT_TRUE(DocumentIO::write({"/nowhere/a", false, type, {{PackedBitmap::pack(page)}}},
                                      Lists{{lowerHalf}}, folder / "out", fakes.engines()));
        const auto noise = std::span(fakes.codec.encoded).subspan(12800);
        EXPECT_EQ(std::ranges::all_of(noise, [](Rgba p) { return p.g == 0 && p.b == 0; }),
                  type == ContentType::gif);
    }
}

TEST(Write, AFailureLeavesTheDestinationAsItWas) {
    const TemporaryFolder folder;
    const auto destination = folder.write("out.pdf", "older and longer than the new one");
    FakeEngines fakes;
    fakes.writer.result = std::nullopt;
    EXPECT_FALSE(DocumentIO::write(pdfOf(2), {}, destination, fakes.engines()));
    fakes.codec.fails = true;
    EXPECT_FALSE(DocumentIO::write(imageOf(ContentType::png), {}, destination, fakes.engines()));
    EXPECT_FALSE(DocumentIO::write(pdfOf(0), {}, destination, fakes.engines()));
    EXPECT_EQ(contentOf(destination), "older and longer than the new one");
    EXPECT_EQ(folder.entryCount(), 1);
}

TEST(Write, NeverOverTheSourceByWhateverName) {
    FakeEngines fakes;
    const TemporaryFolder folder;
    auto document = pdfOf(1);
    document.url = folder.write("source.pdf", "the source");
    std::filesystem::create_symlink("source.pdf", folder / "link.pdf");
    std::filesystem::create_hard_link(document.url, folder / "hard.pdf");
    for (const char* name : {"source.pdf", "./source.pdf", "link.pdf", "hard.pdf"}) {
        EXPECT_FALSE(DocumentIO::write(document, {}, folder / name, fakes.engines())) << name;
    }
    EXPECT_EQ(contentOf(document.url), "the source");
}

TEST(DefaultOutputURL, BesideTheSourceWithTheExtensionOfWhatIsWritten) {
    struct Case {
        const char* source;
        ContentType type;
        const char* proposed;
    };
    for (const Case& c : std::vector<Case>{
             {"/docs/Scan 3.PDF", ContentType::pdf, "/docs/Scan 3-redacted.pdf"},
             {"/docs/a.b.pdf", ContentType::pdf, "/docs/a.b-redacted.pdf"},
             {"/pics/IMG_1.JPG", ContentType::jpeg, "/pics/IMG_1-redacted.JPG"},
             {"/pics/scan", ContentType::tiff, "/pics/scan-redacted.tiff"},
             {"/pics/scan", ContentType::data, "/pics/scan-redacted.png"},
             {"/pics/.png", ContentType::png, "/pics/.png-redacted.png"},
             {"relative.png", ContentType::png, "relative-redacted.png"},
         }) {
        const DocumentIO::Document document{c.source, c.type == ContentType::pdf, c.type, {}};
        EXPECT_EQ(DocumentIO::defaultOutputURL(document), c.proposed) << c.source;
    }
}

} // namespace
} // namespace murkwell
