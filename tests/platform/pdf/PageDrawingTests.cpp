// What other viewers hide or cover must not show here. Every page has a secret painted in pure red;
// Poppler is asked for its opinion of each.

#include "platform/pdf/PdfRendererMuPdf.h"

#include "tests/support/PdfBuilder.h"
#include "tests/support/TemporaryFolder.h"

#include <algorithm>
#include <cstdlib>
#include <gtest/gtest.h>
#include <sstream>

namespace murkwell {
namespace {

struct Case {
    std::string what;
    std::string content;
    std::string resources{};
    std::vector<std::string> objects{}; // numbered from 1
    std::string page{};
    std::string catalog{};
    bool shows = false;
    bool isWhole = true;
    bool popplerAgrees = true;
};

const std::string secret = "1 0 0 rg 0 0 10 10 re f ";
const std::string cover = "0 g 0 0 10 10 re f ";

std::string stream(const std::string& entries, const std::string& data) {
    return "<< " + entries + " /Length " + std::to_string(data.size()) + " >>\nstream\n" + data +
           "\nendstream";
}

std::string form(const std::string& entries, const std::string& content) {
    return stream("/Type /XObject /Subtype /Form /BBox [0 0 10 10] " + entries, content);
}

std::string image(const std::string& entries, const std::string& data) {
    return stream("/Type /XObject /Subtype /Image " + entries, data);
}

std::string repeated(const std::string& text, int times) {
    std::string all;
    for (int i = 0; i < times; ++i) {
        all += text;
    }
    return all;
}

std::vector<std::byte> built(const Case& c) {
    PdfBuilder builder;
    for (const std::string& object : c.objects) {
        builder.add(object);
    }
    const int content = builder.addStream(c.content);
    const int page =
        builder.add("<< /Type /Page /MediaBox [0 0 50 30] /Contents " + PdfBuilder::ref(content) +
                    " /Resources << " + c.resources + " >> " + c.page + " >>");
    const int tree =
        builder.add("<< /Type /Pages /Count 1 /Kids [" + PdfBuilder::ref(page) + "] >>");
    return builder.finish(
        builder.add("<< /Type /Catalog /Pages " + PdfBuilder::ref(tree) + " " + c.catalog + " >>"));
}

bool isRed(Rgba pixel) {
    return pixel.r > 200 && pixel.g < 100 && pixel.b < 100;
}

bool showsInPoppler(std::span<const std::byte> pdf) {
    const TemporaryFolder folder;
    const auto file = folder.write(
        "page.pdf", std::string_view(reinterpret_cast<const char*>(pdf.data()), pdf.size()));
    const std::string command = "pdftoppm -r 144 -singlefile " + file.string() + " " +
                                (folder / "page").string() + " 2>/dev/null";
    EXPECT_EQ(std::system(command.c_str()), 0);
    std::istringstream picture(contentOf(folder / "page.ppm"));
    std::string word;
    picture >> word >> word >> word >> word;
    picture.get();
    const std::string samples(std::istreambuf_iterator<char>(picture), {});
    EXPECT_EQ(samples.size(), 100U * 60 * 3);
    for (std::size_t i = 0; i + 2 < samples.size(); i += 3) {
        const auto sample = [&](std::size_t k) {
            return static_cast<std::uint8_t>(samples[i + k]);
        };
        if (isRed({sample(0), sample(1), sample(2), 255})) {
            return true;
        }
    }
    return false;
}

void check(const std::vector<Case>& cases) {
    for (const Case& c : cases) {
        const auto pdf = built(c);
        const auto result = PdfRendererMuPdf().render(pdf, std::nullopt);
        const RenderedPage& page = std::get<0>(result).at(0);
        EXPECT_EQ(std::ranges::any_of(page.image->unpack()->pixels(), isRed), c.shows) << c.what;
        EXPECT_EQ(page.isComplete, c.isWhole) << c.what;
        EXPECT_EQ(showsInPoppler(pdf), c.shows == c.popplerAgrees) << c.what;
    }
}

TEST(PageDrawing, GoesOnAfterWhatCannotBeDrawn) {
    const std::string drawsImage = "10 0 0 10 0 0 cm /I Do ";
    const std::string grey = "/Width 8 /Height 8 /BitsPerComponent 8 /ColorSpace /DeviceGray ";
    const std::string noImage = image("/Width 0 /Height 0 /ColorSpace /DeviceGray", "");
    std::vector<Case> cases{
        {"an image without a size",
         secret + "/I Do " + cover,
         "/XObject << /I 1 0 R >>",
         {noImage}},
        {"an image of junk",
         secret + "/I Do " + cover,
         "/XObject << /I 1 0 R >>",
         {image("/Width 2 /Height 2 /Filter /JPXDecode", "junk")}},
        {"an inline image without a size", secret + "BI /W 0 /H 0 ID EI " + cover},
        {"a shading without data", secret + "/S sh " + cover,
         "/Shading << /S << /ShadingType 7 /ColorSpace /DeviceGray >> >>"},
        {"a broken image in a form in a form",
         "/X Do",
         "/XObject << /X 1 0 R >>",
         {form("/Resources << /XObject << /X 2 0 R >> >>", "/X Do"),
          form("/Resources << /XObject << /I 3 0 R >> >>", secret + "/I Do " + cover), noImage}},
        {"a broken stamp before another",
         secret,
         "",
         {"<< /Type /Annot /Subtype /Stamp /Rect [20 0 30 10] /AP << /N 2 0 R >> >>",
          form("/Resources << /XObject << /I 3 0 R >> >>", "/I Do"), noImage,
          "<< /Type /Annot /Subtype /Stamp /Rect [0 0 10 10] /AP << /N 5 0 R >> >>",
          form("", cover)},
         "/Annots [1 0 R 4 0 R]"},
        {"an image whose mask ends early",
         secret + drawsImage,
         "/XObject << /I 1 0 R >>",
         {image(grey + "/SMask 2 0 R", std::string(64, '\0')), image(grey, "abcd")}},
        {"a broken image in a glyph",
         secret + "BT /T 1 Tf (A) Tj ET " + cover,
         "/Font << /T 1 0 R >>",
         {"<< /Type /Font /Subtype /Type3 /FontBBox [0 0 9 9] /FontMatrix [1 0 0 1 0 0] "
          "/FirstChar 65 /LastChar 65 /Widths [9] /Encoding << /Differences [65 /A] >> "
          "/CharProcs << /A 2 0 R >> /Resources << /XObject << /I 3 0 R >> >> >>",
          stream("", "9 0 d0 /I Do"), noImage}},
        {"an image that ends early",
         secret + drawsImage,
         "/XObject << /I 1 0 R >>",
         {image(grey, "abcd")}},
        {"an image that cannot be decoded",
         secret + drawsImage,
         "/XObject << /I 1 0 R >>",
         {image(grey + "/Filter /DCTDecode", "junk")}},
        {"a path around a form",
         secret + "0 g 0 0 10 10 re /X Do f",
         "/XObject << /X 1 0 R >>",
         {form("", "")}},
        {"a number that runs into its operator", secret + "0 g 0 0 10 10re f"},
        {"a form without a box",
         "/X Do",
         "/XObject << /X 1 0 R >>",
         {stream("/Type /XObject /Subtype /Form", secret)}},
    };
    for (Case& c : cases) {
        c.isWhole = false;
    }
    for (std::size_t i = cases.size() - 3; i < cases.size(); ++i) {
        cases[i].shows = true;
        cases[i].popplerAgrees = false;
    }
    cases.push_back(
        {"an inline image among broken tokens",
         secret + repeated("> ", 120) + "BI /W 1 /H 1 /BPC 8 /CS /G ID x\nEI " + cover});
    cases.push_back({"unknown operators", secret + repeated("(x) foo ", 150) + cover});
    cases.push_back({"unknown operators in a form",
                     "/X Do",
                     "/XObject << /X 1 0 R >>",
                     {form("", secret + repeated("foo ", 150) + cover)}});
    cases.push_back({"surplus operands", secret + "0 g 5 6 7 0 0 10 10 re f"});
    cases.push_back({"a surplus name",
                     secret + "/Y /X Do",
                     "/XObject << /X 1 0 R /Y 2 0 R >>",
                     {form("", cover), form("", "")}});
    cases.push_back({"too few operands", secret + "1 0 0 1 0 cm " + cover});
    cases.back().popplerAgrees = false; // it ends the page
    cases.push_back({"a word that ends streams", secret + "endstream " + cover});
    cases.push_back({"surplus operands in a form in a pattern",
                     secret + "/Pattern cs /P scn 0 0 10 10 re f",
                     "/Pattern << /P 1 0 R >>",
                     {stream("/PatternType 1 /PaintType 1 /TilingType 1 /BBox [0 0 10 10] /XStep "
                             "10 /YStep 10 /Resources << /XObject << /X 2 0 R >> >>",
                             "/X Do"),
                      form("", "0 g 1 0 0 10 10 re f")}});
    cases.push_back(
        {"a form in a form that names what only the others have",
         "/X Do",
         "/XObject << /X 1 0 R /Z 3 0 R >>",
         {form("/Resources << /XObject << /Y 2 0 R /C 4 0 R >> >>", "/Y Do"),
          form("/Resources << /Font << >> >>", "/Z Do /C Do"), form("", secret), form("", cover)}});
    cases.push_back({"a line of a negative width", secret + "0 G -20 w 0 5 m 10 5 l S"});
    cases.push_back({"a pattern without steps",
                     secret + "/Pattern cs /P scn 0 0 10 10 re f",
                     "/Pattern << /P 1 0 R >>",
                     {stream("/PatternType 1 /PaintType 1 /TilingType 1 /BBox [0 0 10 10] "
                             "/Resources << >>",
                             cover)}});
    Case none{"a colorant that leaves no marks", "/N cs 1 scn 0 0 10 10 re f",
              "/ColorSpace << /N [/Separation /None /DeviceRGB << /FunctionType 2 /Domain [0 1] "
              "/C0 [1 1 1] /C1 [1 0 0] /N 1 >>] >>"};
    none.shows = true;
    none.isWhole = none.popplerAgrees = false;
    cases.push_back(none);
    cases.push_back({"nothing wrong", secret, "", {}, "", "", true});
    check(cases);
}

TEST(PageDrawing, OptionalContent) {
    // Group 1 is hidden, group 2 is not; more is added after them.
    const auto withGroups = [](const std::string& what, const std::string& content, bool shows,
                               const std::vector<std::string>& more = {},
                               const std::string& resources = "") {
        Case c{what, content,
               "/Font << /F << /Type /Font /Subtype /Type1 /BaseFont /Helvetica >> >> "
               "/Properties << /A 1 0 R /B 2 0 R /M 3 0 R >> " +
                   resources};
        c.objects = {"<< /Type /OCG /Name (A) /Usage << /View << /ViewState /ON >> >> >>",
                     "<< /Type /OCG /Name (B) /Usage << /View << /ViewState /OFF >> >> "
                     "/Intent /Design >>"};
        c.objects.insert(c.objects.end(), more.begin(), more.end());
        c.catalog = "/OCProperties << /OCGs [1 0 R 2 0 R] /D << /OFF [1 0 R] >> >>";
        c.shows = shows;
        return c;
    };
    const auto inMembership = [&](const std::string& entries, bool shows) {
        return withGroups(entries, "/OC /M BDC " + secret + "EMC", shows,
                          {"<< /Type /OCMD " + entries + " >>"});
    };
    Case allShown = inMembership("/OCGs [2 0 R] /P /AllOff", false);
    allShown.catalog = "/OCProperties << /OCGs [1 0 R 2 0 R] /D << >> >>";
    check({
        allShown,
        withGroups("hidden, whatever its use", "/OC /A BDC " + secret + "EMC", false),
        withGroups("shown, whatever its use and intent", "/OC /B BDC " + secret + "EMC", true),
        withGroups("a hidden part of a text object",
                   "1 0 0 rg BT /F 20 Tf /OC /A BDC (III) Tj EMC ET", false),
        withGroups("the rest of a text object",
                   "1 0 0 rg BT /F 20 Tf (III) Tj /OC /A BDC 0 g (I) Tj EMC ET", true),
        withGroups("nested", "/OC /A BDC /OC /B BDC /P BMC EMC EMC " + secret + "EMC", false),
        withGroups("after the end", "/OC /A BDC /P BMC EMC EMC " + secret, true),
        withGroups("a cover after a form that does not close", secret + "/X Do " + cover, false,
                   {"null", form("/Resources << /Properties << /A 1 0 R >> >>", "/OC /A BDC")},
                   "/XObject << /X 4 0 R >>"),
        withGroups("a form that closes too much", "/OC /A BDC /X Do " + secret + "EMC", false,
                   {"null", form("", "EMC EMC")}, "/XObject << /X 4 0 R >>"),
        withGroups("a hidden form in a form", "/X Do", false,
                   {"null", form("/Resources << /XObject << /Y 5 0 R >> >>", "/Y Do"),
                    form("/OC 1 0 R", secret)},
                   "/XObject << /X 4 0 R >>"),
        withGroups("a hidden image", "10 0 0 10 0 0 cm /I Do", false,
                   {"null", image("/OC 3 0 R /Width 1 /Height 1 /BitsPerComponent 8 "
                                  "/ColorSpace /DeviceRGB /Filter /ASCIIHexDecode /OC 1 0 R",
                                  "FF0000>")},
                   "/XObject << /I 4 0 R >>"),
        inMembership("/OCGs [1 0 R 2 0 R]", true),
        inMembership("/OCGs 1 0 R", false),
        inMembership("/OCGs []", false),
        inMembership("", true),
        withGroups("a form that names a layer which only the page has", "/X Do", false,
                   {"null", form("/Resources << >>", "/OC /A BDC " + secret + "EMC")},
                   "/XObject << /X 4 0 R >>"),
        inMembership("/OCGs [1 0 R 2 0 R] /P /AllOn", false),
        inMembership("/OCGs [1 0 R 2 0 R] /P /AnyOff", true),
        inMembership("/OCGs [1 0 R 2 0 R] /P /AllOff", false),
        inMembership("/OCGs [2 0 R] /VE [/Not 2 0 R]", false),
        inMembership("/VE [/And 2 0 R [/Not 1 0 R]]", true),
        inMembership("/VE [/Or 1 0 R [/And 1 0 R 2 0 R]]", false),
    });
}

TEST(PageDrawing, SoftMasks) {
    const auto masked = [](const std::string& what, const std::string& content,
                           const std::string& mask, const std::string& group, bool shows) {
        return Case{
            what,    content, "/ExtGState << /G << /SMask << " + mask + " /G 1 0 R >> >> >>",
            {group}, "",      "",
            shows};
    };
    const std::string inverse = " /TR << /FunctionType 2 /Domain [0 1] /C0 [1] /C1 [0] /N 1 >> ";
    const std::string group = "/Group << /S /Transparency /CS /DeviceGray >>";
    const std::string white = form(group, "1 g 0 0 10 10 re f");
    const std::string black = form(group, "0 g 0 0 10 10 re f");
    // The backdrop is transferred, too, as the standard has it.
    Case outside = masked("outside the group, inverted", "/G gs 1 0 0 rg 20 0 10 10 re f",
                          "/S /Luminosity" + inverse, white, true);
    outside.popplerAgrees = false;
    check({
        masked("plain", "/G gs " + secret, "/S /Luminosity", white, true),
        masked("inverted, nothing is left", "/G gs " + secret, "/S /Luminosity" + inverse, white,
               false),
        masked("inverted, all is left", secret + "/G gs " + cover, "/S /Luminosity" + inverse,
               black, false),
        masked("alpha, inverted", "/G gs " + secret, "/S /Alpha" + inverse, black, false),
        masked("a transfer to nothing", "/G gs " + secret,
               "/S /Luminosity /TR << /FunctionType 2 /Domain [0 1] /C0 [0] /C1 [0] /N 1 >>", white,
               false),
        masked("a form that is no group", secret + "/G gs " + cover, "/S /Luminosity", form("", ""),
               false),
        masked("no group", secret + "/G gs " + cover, "/S /Luminosity", "null", false),
        outside,
    });
}

TEST(PageDrawing, Annotations) {
    const auto covered = [](const std::string& annotation) {
        return Case{annotation,
                    secret,
                    "",
                    {"<< /Type /Annot /Rect [0 0 10 10] " + annotation + " >>", form("", cover)},
                    "/Annots [1 0 R]"};
    };
    Case order{"fields in their place",
               "",
               "",
               {"<< /Type /Annot /Subtype /Widget /Rect [0 0 10 10] /AP << /N 2 0 R >> >>",
                form("", secret),
                "<< /Type /Annot /Subtype /Stamp /Rect [0 0 10 10] /AP << /N 4 0 R >> >>",
                form("", cover)},
               "/Annots [1 0 R 3 0 R]"};
    Case hidden = covered("/Subtype /Square /F 2 /AP << /N 2 0 R >>");
    hidden.shows = true;
    check({covered("/Subtype /Link /AP << /N 2 0 R >>"),
           covered("/Subtype /Popup /AP << /N 2 0 R >>"),
           covered("/Subtype /Widget /AP << /N 2 0 R >>"),
           covered("/Subtype /Square /F 1 /AP << /N 2 0 R >>"),
           covered("/Subtype /Square /AP << /N << /On 2 0 R >> >>"), hidden, order});
}

// Most annotations do not say how they look, and every viewer knows.
TEST(PageDrawing, AnnotationsWithoutAnAppearance) {
    const auto drawn = [](const std::string& annotation) {
        Case c{annotation, "", "", {"<< /Type /Annot /C [1 0 0] " + annotation + " >>"}};
        c.page = "/Annots [1 0 R]";
        c.shows = true;
        return c;
    };
    const auto covering = [&](const std::string& annotation) {
        Case c = drawn(annotation);
        c.content = secret;
        c.shows = false;
        return c;
    };
    Case field = drawn("/Subtype /Widget /FT /Tx /T (g) /V (MMM) /F 4 /Rect [0 0 50 30] "
                       "/DA (/F 20 Tf 1 0 0 rg)");
    field.catalog = "/AcroForm << /Fields [1 0 R] /NeedAppearances true /DA (/F 20 Tf 1 0 0 rg) "
                    "/DR << /Font << /F << /Type /Font /Subtype /Type1 /BaseFont /Helvetica >> "
                    ">> >> >>";
    check({field, covering("/Subtype /Square /Rect [-5 -5 15 15] /IC [0 0 0] /C [0 0 0]"),
           covering("/Subtype /Circle /Rect [-9 -9 19 19] /IC [0 0 0] /C [0 0 0]"),
           covering("/Subtype /Ink /Rect [0 0 20 20] /C [0 0 0] /BS << /W 20 >> "
                    "/InkList [[0 5 10 5]]"),
           covering("/Subtype /Line /Rect [0 0 20 20] /C [0 0 0] /BS << /W 20 >> /L [-9 5 19 5]"),
           drawn("/Subtype /Square /Rect [5 5 45 25]"),
           drawn("/Subtype /FreeText /Rect [0 0 50 30] /Contents (MMM) "
                 "/DA (/Helv 20 Tf 1 0 0 rg)"),
           drawn("/Subtype /Highlight /Rect [5 5 45 25] /QuadPoints [5 25 45 25 5 5 45 5]"),
           drawn("/Subtype /Underline /Rect [5 5 45 25] /QuadPoints [5 25 45 25 5 5 45 5] "
                 "/BS << /W 4 >>"),
           drawn("/Subtype /Polygon /Rect [5 5 45 25] /Vertices [5 5 45 5 25 25] /IC [1 0 0]")});
}

} // namespace
} // namespace murkwell
