#include "platform/pdf/PdfRendererMuPdf.h"

#include "tests/support/PdfBuilder.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <random>
#include <span>

namespace murkwell {
namespace {

constexpr Rgba white{255, 255, 255, 255};
constexpr Rgba red{255, 0, 0, 255};

// None when the file does not open.
using Pages = std::optional<std::vector<BitmapRef>>;

Pages render(std::span<const std::byte> pdf, std::size_t threads = 2) {
    const auto result = PdfRendererMuPdf(threads).render(pdf, std::nullopt);
    const auto* const rendered = std::get_if<std::vector<RenderedPage>>(&result);
    if (rendered == nullptr) {
        return std::nullopt;
    }
    std::vector<BitmapRef> pages;
    for (const RenderedPage& page : *rendered) {
        pages.push_back(page.image ? page.image->unpack() : nullptr);
    }
    return pages;
}

// "20x10" for every page, "-" for one that could not be rendered.
std::string sizes(const Pages& pages) {
    if (!pages) {
        return "none";
    }
    std::string text;
    for (const BitmapRef& page : *pages) {
        text += text.empty() ? "" : " ";
        text += page ? std::to_string(page->width()) + "x" + std::to_string(page->height()) : "-";
    }
    return text;
}

// Where a picture is not white: "x,y,w,h", or "" when it is all white.
std::string inked(const Bitmap& page) {
    int left = page.width();
    int top = page.height();
    int right = 0;
    int bottom = 0;
    for (int y = 0; y < page.height(); ++y) {
        for (int x = 0; x < page.width(); ++x) {
            if (page.row(y)[static_cast<std::size_t>(x)] != white) {
                left = std::min(left, x);
                top = std::min(top, y);
                right = std::max(right, x + 1);
                bottom = std::max(bottom, y + 1);
            }
        }
    }
    if (right == 0) {
        return "";
    }
    return std::to_string(left) + "," + std::to_string(top) + "," + std::to_string(right - left) +
           "," + std::to_string(bottom - top);
}

// A one-page document that paints a red square into the lower left 10 x 10 points.
std::vector<std::byte> withSquare(const std::string& pageEntries,
                                  const std::string& content = "1 0 0 rg 0 0 10 10 re f") {
    PdfBuilder builder;
    const int stream = builder.addStream(content);
    const int page = builder.add("<< /Type /Page /Contents " + PdfBuilder::ref(stream) + " " +
                                 pageEntries + " >>");
    const int tree =
        builder.add("<< /Type /Pages /Count 1 /Kids [" + PdfBuilder::ref(page) + "] >>");
    return builder.finish(builder.add("<< /Type /Catalog /Pages " + PdfBuilder::ref(tree) + " >>"));
}

TEST(PdfRendererMuPdf, PageSizes) {
    struct Case {
        const char* page;
        const char* size;
    };
    for (const Case& c : std::vector<Case>{
             {"/MediaBox [0 0 612 792]", "1224x1584"},
             {"/MediaBox [0 0 612 792] /Rotate 90", "1584x1224"},
             {"/MediaBox [0 0 612 792] /Rotate 180", "1224x1584"},
             {"/MediaBox [0 0 612 792] /Rotate -90", "1584x1224"},
             {"/MediaBox [0 0 612 792] /Rotate 450", "1584x1224"},
             {"/MediaBox [0 0 595.28 841.89]", "1191x1684"},
             {"/MediaBox [100 50 20 10]", "160x80"},
             {"/MediaBox [-10 -20 30 20]", "80x80"},
             {"/MediaBox [0 0 100 100] /CropBox [20 20 40 40]", "200x200"},
             {"/MediaBox [0 0 100 100] /UserUnit 3", "200x200"},
             {"/MediaBox [0 0 0.25 1]", "1x2"},
             {"/MediaBox [0 0 0.2 1]", "-"},
             {"/MediaBox [0 0 595 2147483647]", "-"},
             {"/MediaBox [0 0 0 0]", "-"},
             {"/MediaBox [0 0 612 0]", "-"},
             {"/MediaBox [0 0 612]", "1224x1584"},
             {"/MediaBox (wrong)", "1224x1584"},
             {"", "1224x1584"},
         }) {
        EXPECT_EQ(sizes(render(PdfBuilder::document({c.page}))), c.size) << c.page;
    }
}

TEST(PdfRendererMuPdf, ShowsTheWholeMediaBoxUprightOnOpaqueWhite) {
    struct Case {
        const char* page;
        const char* square;
    };
    for (const Case& c : std::vector<Case>{
             {"/MediaBox [0 0 50 30]", "0,40,20,20"},
             {"/MediaBox [0 0 50 30] /Rotate 90", "0,0,20,20"},
             {"/MediaBox [0 0 50 30] /Rotate 180", "80,0,20,20"},
             {"/MediaBox [0 0 50 30] /Rotate 270", "40,80,20,20"},
             {"/MediaBox [-5 -5 45 25]", "10,30,20,20"},
             {"/MediaBox [0 0 50 30] /CropBox [20 10 30 20]", "0,40,20,20"},
             {"/MediaBox [0 0 50 30] /UserUnit 2", "0,40,20,20"},
         }) {
        const auto pages = render(withSquare(c.page));
        ASSERT_EQ(pages->size(), 1U);
        EXPECT_EQ(inked(*pages->front()), c.square) << c.page;
        EXPECT_EQ(std::ranges::count(pages->front()->pixels(), red), 400) << c.page;
    }
}

TEST(PdfRendererMuPdf, TransparencyComesOutOpaque) {
    const auto pages = render(withSquare(
        "/MediaBox [0 0 50 30] /Group << /S /Transparency /CS /DeviceRGB /I true /K true >> "
        "/Resources << /ExtGState << /Half << /ca 0.5 /BM /Multiply >> >> >>",
        "/Half gs 1 0 0 rg 0 0 10 10 re f"));
    const auto pixels = pages->front()->pixels();
    EXPECT_EQ(std::ranges::count(pixels, 255, &Rgba::a), std::ssize(pixels));
    const Rgba blended = pages->front()->row(50)[5];
    EXPECT_EQ(blended.r, 255);
    EXPECT_NEAR(blended.g, 128, 2);
}

TEST(PdfRendererMuPdf, DrawsAnnotationsAsAViewerDoes) {
    const auto withAnnotation = [](const std::string& flags) {
        PdfBuilder builder;
        const int appearance = builder.addStream("1 0 0 rg 0 0 10 10 re f",
                                                 "/Type /XObject /Subtype /Form /BBox [0 0 10 10]");
        const int annotation =
            builder.add("<< /Type /Annot /Subtype /Stamp /Rect [20 10 30 20] /AP << /N " +
                        PdfBuilder::ref(appearance) + " >> /F " + flags + " >>");
        const int page = builder.add("<< /Type /Page /MediaBox [0 0 50 30] /Annots [" +
                                     PdfBuilder::ref(annotation) + "] >>");
        const int tree =
            builder.add("<< /Type /Pages /Count 1 /Kids [" + PdfBuilder::ref(page) + "] >>");
        return builder.finish(
            builder.add("<< /Type /Catalog /Pages " + PdfBuilder::ref(tree) + " >>"));
    };
    constexpr const char* printed = "4";
    constexpr const char* hidden = "2";
    EXPECT_EQ(inked(*render(withAnnotation(printed))->front()), "40,20,20,20");
    EXPECT_EQ(inked(*render(withAnnotation(hidden))->front()), "");
    // One that does not say how it looks, on every page.
    const std::string page = "/MediaBox [0 0 50 30] /Annots [<< /Type /Annot /Subtype /Square "
                             "/Rect [20 10 30 20] /IC [1 0 0] /C [1 0 0] >>]";
    const auto pages = render(PdfBuilder::document({page, page, page}), 1);
    for (const BitmapRef& drawn : *pages) {
        EXPECT_EQ(inked(*drawn), "40,20,20,20");
    }
}

TEST(PdfRendererMuPdf, KeepsTheOrderOfManyPagesRenderedInParallel) {
    std::vector<std::string> pages;
    std::string expected;
    for (int i = 1; i <= 700; ++i) {
        pages.push_back("/MediaBox [0 0 " + std::to_string(i) + " 1]");
        expected += (i == 1 ? "" : " ") + std::to_string(2 * i) + "x2";
    }
    EXPECT_EQ(sizes(render(PdfBuilder::document(pages))), expected);
}

TEST(PdfRendererMuPdf, BrokenPagesAreNullAndTheOthersStay) {
    EXPECT_EQ(sizes(render(PdfBuilder::document(
                  {"/MediaBox [0 0 10 10]", "/MediaBox [0 0 0.1 0.1]", "/MediaBox [0 0 20 20]"}))),
              "20x20 - 40x40");
}

// A picture shown large on every third page and small on the others; what is on a page must not
// depend on the pages that were drawn before on the same thread.
TEST(PdfRendererMuPdf, TheNumberOfThreadsChangesNoPixel) {
    PdfBuilder builder;
    std::string samples;
    for (int i = 0; i < 200 * 200; ++i) {
        samples += static_cast<char>(i * i / 7 % 251);
    }
    const int picture =
        builder.addStream(samples, "/Type /XObject /Subtype /Image /Width 200 /Height 200 "
                                   "/ColorSpace /DeviceGray /BitsPerComponent 8");
    const auto content = [&](int size) {
        const std::string side = std::to_string(size);
        return builder.addStream("q " + side + " 0 0 " + side + " 3 3 cm /P Do Q");
    };
    const int large = content(100);
    const int small = content(11);
    std::string kids;
    for (int i = 0; i < 12; ++i) {
        kids += PdfBuilder::ref(builder.add(
                    "<< /Type /Page /MediaBox [0 0 110 110] /Resources << /XObject << /P " +
                    PdfBuilder::ref(picture) + " >> >> /Contents " +
                    PdfBuilder::ref(i % 3 == 0 ? large : small) + " >>")) +
                " ";
    }
    const int tree = builder.add("<< /Type /Pages /Count 12 /Kids [" + kids + "] >>");
    const auto pdf =
        builder.finish(builder.add("<< /Type /Catalog /Pages " + PdfBuilder::ref(tree) + " >>"));
    const auto one = render(pdf, 1);
    ASSERT_EQ(one->size(), 12U);
    for (const std::size_t threads : {2U, 6U, 16U}) {
        const auto pages = render(pdf, threads);
        for (std::size_t i = 0; i < pages->size(); ++i) {
            EXPECT_TRUE(std::ranges::equal((*pages)[i]->pixels(), (*one)[i]->pixels()))
                << threads << " threads, page " << i + 1;
        }
    }
    // Nor does it matter which pages there are before.
    EXPECT_TRUE(std::ranges::equal((*one)[1]->pixels(), (*one)[11]->pixels()));
}

// Where the table of contents points to the wrong place, whether a page shows it or only what is
// drawn there.
TEST(PdfRendererMuPdf, ReadsDamagedFilesAsAWhole) {
    PdfBuilder builder;
    const int squares[]{builder.addStream("0 0 10 10 re f"), builder.addStream("5 5 10 10 re f")};
    std::string kids;
    for (const int square : squares) {
        kids += PdfBuilder::ref(builder.add("<< /Type /Page /MediaBox [0 0 20 20] /Contents " +
                                            PdfBuilder::ref(square) + " >>")) +
                " ";
    }
    const int tree = builder.add("<< /Type /Pages /Count 2 /Kids [" + kids + "] >>");
    const int root = builder.add("<< /Type /Catalog /Pages " + PdfBuilder::ref(tree) + " >>");
    const auto whole = builder.finish(root);
    const std::string_view text(reinterpret_cast<const char*>(whole.data()), whole.size());
    const std::size_t table = text.find("0000000000 65535 f");
    constexpr std::size_t entry = 20;
    for (int object = 1; object <= root; ++object) {
        for (const std::size_t threads : {1U, 2U}) {
            auto damaged = whole;
            damaged[table + entry * static_cast<std::size_t>(object) + 9] ^= std::byte{1};
            const auto pages = render(damaged, threads);
            ASSERT_EQ(sizes(pages), "40x40 40x40") << object;
            EXPECT_EQ(inked(*(*pages)[0]), "0,20,20,20") << object;
            EXPECT_EQ(inked(*(*pages)[1]), "10,10,20,20") << object;
        }
    }
}

TEST(PdfRendererMuPdf, PageTreesThatLie) {
    struct Case {
        const char* what;
        std::vector<std::string> objects; // numbered from 1; the catalogue comes first
        const char* sizes;
    };
    const std::string catalogue = "<< /Type /Catalog /Pages 2 0 R >>";
    const std::string page = "<< /Type /Page /MediaBox [0 0 10 10] >>";
    for (const Case& c : std::vector<Case>{
             {"a count of a billion",
              {catalogue, "<< /Type /Pages /Count 1000000000 /Kids [3 0 R] >>", page},
              "20x20"},
             {"a count of nothing",
              {catalogue, "<< /Type /Pages /Count 0 /Kids [3 0 R 3 0 R] >>", page},
              "20x20 20x20"},
             {"a cycle",
              {catalogue, "<< /Type /Pages /Count 2 /Kids [3 0 R 2 0 R 4 0 R] >>", page, page},
              "20x20 20x20"},
             {"the root is a page", {"<< /Type /Catalog /Pages 2 0 R >>", page}, "20x20"},
             {"kids that are not there",
              {catalogue, "<< /Type /Pages /Count 3 /Kids [9 0 R null 7 3 0 R] >>", page},
              "20x20"},
             {"a page written into the list",
              {catalogue, "<< /Type /Pages /Count 1 /Kids [" + page + "] >>"},
              "20x20"},
             {"what is inherited comes from the nearest node",
              {catalogue,
               "<< /Type /Pages /Count 2 /MediaBox [0 0 5 5] /Rotate 90 /Kids [3 0 R 5 0 R] >>",
               "<< /Type /Pages /Count 1 /MediaBox [0 0 7 8] /Kids [4 0 R] >>", "<< /Type /Page >>",
               "<< /Type /Page /MediaBox [0 0 3 4] /Rotate 0 >>"},
              "16x14 6x8"},
             {"a share bomb: ten levels that list the next one ten times",
              [&] {
                  std::vector<std::string> objects{catalogue};
                  for (int i = 3; i < 13; ++i) {
                      std::string kids;
                      for (int k = 0; k < 10; ++k) {
                          kids += std::to_string(i) + " 0 R ";
                      }
                      objects.push_back("<< /Type /Pages /Kids [" + kids + "] >>");
                  }
                  objects.push_back(page);
                  return objects;
              }(),
              "20x20 20x20 20x20 20x20 20x20 20x20 20x20 20x20 20x20 20x20"},
             {"no pages", {catalogue, "<< /Type /Pages /Count 0 /Kids [] >>"}, "none"},
             {"no tree", {"<< /Type /Catalog >>"}, "none"},
         }) {
        PdfBuilder builder;
        for (const std::string& object : c.objects) {
            builder.add(object);
        }
        EXPECT_EQ(sizes(render(builder.finish(1))), c.sizes) << c.what;
    }
}

TEST(PdfRendererMuPdf, RefusesWhatNeedsAPasswordAndWhatIsNoPdf) {
    PdfBuilder builder;
    const int page = builder.add("<< /Type /Page /MediaBox [0 0 10 10] >>");
    const int tree =
        builder.add("<< /Type /Pages /Count 1 /Kids [" + PdfBuilder::ref(page) + "] >>");
    const int root = builder.add("<< /Type /Catalog /Pages " + PdfBuilder::ref(tree) + " >>");
    const std::string key = "<" + std::string(64, '4') + ">";
    const auto locked = builder.finish(
        root, "/ID [<00> <00>] /Encrypt << /Filter /Standard /V 1 /R 2 /Length 40 /P -4 /O " + key +
                  " /U " + key + " >>");
    EXPECT_EQ(sizes(render(locked)), "none");
    EXPECT_EQ(sizes(render({})), "none");
    EXPECT_EQ(sizes(render(std::as_bytes(std::span("\x89PNG\r\n\x1a\n")))), "none");
}

TEST(PdfRendererMuPdf, KeepsWhatWasDrawnBeforeAPageBreaks) {
    // A font that draws with itself, after the square.
    PdfBuilder builder;
    const int font = 1;
    builder.add("<< /Type /Font /Subtype /Type3 /FontBBox [0 0 10 10] /FontMatrix [1 0 0 1 0 0] "
                "/FirstChar 65 /LastChar 65 /Widths [10] /Encoding << /Differences [65 /A] >> "
                "/CharProcs << /A 2 0 R >> /Resources << /Font << /F 1 0 R >> >> >>");
    builder.addStream("10 0 d0 BT /F 1 Tf (A) Tj ET");
    const int content = builder.addStream("1 0 0 rg 0 0 10 10 re f BT /F 1 Tf (A) Tj ET");
    const int page =
        builder.add("<< /Type /Page /MediaBox [0 0 50 30] /Contents " + PdfBuilder::ref(content) +
                    " /Resources << /Font << /F " + PdfBuilder::ref(font) + " >> >> >>");
    const int tree =
        builder.add("<< /Type /Pages /Count 1 /Kids [" + PdfBuilder::ref(page) + "] >>");
    const auto pages = render(
        builder.finish(builder.add("<< /Type /Catalog /Pages " + PdfBuilder::ref(tree) + " >>")));
    ASSERT_TRUE(pages && pages->front());
    EXPECT_EQ(inked(*pages->front()), "0,40,20,20");
}

TEST(PdfRendererMuPdf, DamagedFilesGiveNoneOrPages) {
    const auto whole = withSquare("/MediaBox [0 0 50 30]");
    for (std::size_t length = 0; length < whole.size(); length += 7) {
        (void)render(std::span(whole).first(length));
    }
    std::mt19937 random(1);
    for (int round = 0; round < 300; ++round) {
        auto damaged = whole;
        for (unsigned i = 0; i < 1 + random() % 8; ++i) {
            damaged[random() % damaged.size()] = static_cast<std::byte>(random() % 256);
        }
        const auto pages = render(damaged);
        EXPECT_TRUE(!pages || pages->size() < 10);
    }
}

} // namespace
} // namespace murkwell
