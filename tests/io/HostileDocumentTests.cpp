#include "io/MurkwellDocument.h"

#include "tests/support/RawPropertyList.h"

#include <cmath>
#include <functional>
#include <gtest/gtest.h>
#include <limits>
#include <random>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace murkwell {
namespace {

// What the test of a broken document changes in a good one.
struct BinaryCase {
    const char* what;
    std::function<void(RawPropertyList&)> change;
};

std::function<void(RawPropertyList&)> replaced(unsigned object, std::string content) {
    return [=](RawPropertyList& list) { list.objects[object] = content; };
}

const double infinity = std::numeric_limits<double>::infinity();

std::vector<BinaryCase> refusedBinaries() {
    using namespace Raw;
    return {
        {"version is missing",
         replaced(document, rawDictionary({nameKey, dataKey, pagesKey, name, data, pages}))},
        {"pages are missing",
         replaced(document, rawDictionary({versionKey, nameKey, dataKey, version, name, data}))},
        {"a key comes twice",
         replaced(document, rawDictionary({versionKey, nameKey, dataKey, pagesKey, versionKey,
                                           version, name, data, pages, version}))},
        {"a box's key comes twice",
         replaced(redaction, rawDictionary({rectKey, styleKey, detectedKey, detectedKey, rect,
                                            style, detected, detected}))},
        {"a key is a number",
         replaced(document, rawDictionary({versionKey, nameKey, dataKey, pagesKey, version, version,
                                           name, data, pages, version}))},
        {"detected is missing",
         replaced(redaction, rawDictionary({rectKey, styleKey, rect, style}))},
        {"detected is a number", replaced(detected, "\x10\x01")},
        {"version is a string", replaced(version, rawString("1"))},
        {"version is a real", replaced(version, rawReal(1))},
        {"version needs more than 64 bits",
         replaced(version, "\x14" + bigEndian(0, 8) + bigEndian(1ULL << 63, 8))},
        {"the name is data", replaced(name, "\x43"
                                            "abc")},
        {"the name is a lone surrogate", replaced(name, "\x61\xD8\x01")},
        {"the name is not ASCII", replaced(name, "\x51\xE9")},
        {"the data is a string", replaced(data, rawString("PNG"))},
        {"pages are a dictionary", replaced(pages, rawDictionary({}))},
        {"a page is a number", replaced(pages, rawArray({version}))},
        {"a box is an array", replaced(page, rawArray({rect}))},
        {"unknown style", replaced(style, rawString("blur"))},
        {"style in other letter case", replaced(style, rawString("Noise"))},
        {"rect of one pair", replaced(rect, rawArray({origin}))},
        {"rect of three pairs", replaced(rect, rawArray({origin, size, size}))},
        {"rect of four numbers", replaced(rect, rawArray({x, y, width, height}))},
        {"pair of one number", replaced(origin, rawArray({x}))},
        {"pair of three numbers", replaced(size, rawArray({x, y, x}))},
        {"x is a string", replaced(x, rawString("1"))},
        {"x is not a number", replaced(x, rawReal(std::nan("")))},
        {"y is infinite", replaced(y, rawReal(-infinity))},
        {"width is infinite in 32 bits", replaced(width, "\x22\x7F\x80" + std::string(2, '\0'))},
        {"a real of 16 bits", replaced(height, "\x21"
                                               "ab")},
        {"pages hold themselves", replaced(pages, rawArray({pages}))},
        {"a page holds itself", replaced(page, rawArray({page}))},
        {"the document is its own pages",
         replaced(document, rawDictionary({versionKey, nameKey, dataKey, pagesKey, version, name,
                                           data, document}))},
        {"a false count in an array", replaced(pages, "\xAF\x13\x7F" + std::string(7, '\xFF'))},
        {"2 GB of data", replaced(data, "\x4F\x12\x7F\xFF\xFF\xFF")},
        {"data without end", replaced(data, "\x4F\x13\x7F" + std::string(7, '\xFF'))},
        {"a false count in a dictionary",
         replaced(redaction, "\xDF\x13\x40" + std::string(7, '\0'))},
        {"a false count in UTF-16", replaced(name, "\x6F\x13\x40" + std::string(7, '\0'))},
        {"a count of 16 bytes", replaced(name, "\x5F\x14" + std::string(16, '\0'))},
        {"a count that is no integer", replaced(name, "\x5F\x23" + std::string(8, '\0'))},
        {"an unknown type", replaced(name, "\x70")},
        {"a date", replaced(version, "\x33" + std::string(8, '\0'))},
        {"null", replaced(version, std::string(1, '\0'))},
        {"a reference beyond the table", replaced(pages, rawArray({200}))},
        {"2^61 objects", [](RawPropertyList& list) { list.count = 1ULL << 61; }},
        {"a few objects more", [](RawPropertyList& list) { list.count = 24; }},
        {"the top lies outside", [](RawPropertyList& list) { list.top = 99; }},
        {"the table lies far outside", [](RawPropertyList& list) { list.tableStart = 1ULL << 63; }},
        {"the table lies in the trailer",
         [](RawPropertyList& list) { list.tableStart = list.text().size() - 16; }},
        {"the table lies on the magic", [](RawPropertyList& list) { list.tableStart = 0; }},
        {"no bytes per reference", [](RawPropertyList& list) { list.referenceSize = 0; }},
        {"no bytes per offset", [](RawPropertyList& list) { list.offsetSize = 0; }},
        {"9 bytes per offset", [](RawPropertyList& list) { list.offsetSize = 9; }},
        {"a name with a control character",
         [](RawPropertyList& list) { list.objects[Raw::name] = rawString("a\x1B.png"); }},
        {"the top is a string", [](RawPropertyList& list) { list.top = Raw::name; }},
    };
}

TEST(HostileDocument, TheUnchangedOneIsGood) {
    const auto document = decode(rawDocument().file());
    ASSERT_TRUE(document);
    EXPECT_EQ(document->sourceFilename, "a.png");
    EXPECT_EQ(document->pages, (std::vector<std::vector<StoredRedaction>>{
                                   {{{0.1, 0.2, 0.3, 0.4}, RedactionStyle::noise, true}}}));
}

TEST(HostileDocument, BrokenBinaryIsRefused) {
    for (const BinaryCase& each : refusedBinaries()) {
        RawPropertyList list = rawDocument();
        each.change(list);
        EXPECT_FALSE(decode(list.file())) << each.what;
    }
}

TEST(HostileDocument, OddButHonestBinaryIsRead) {
    using namespace Raw;
    const std::string unknownKeys = rawDictionary(
        {versionKey, nameKey, dataKey, pagesKey, style, version, name, data, pages, 250});
    for (const BinaryCase& each : std::vector<BinaryCase>{
             {"version 2", replaced(version, "\x10\x02")},
             {"a negative version", replaced(version, "\x13" + std::string(8, '\xFF'))},
             {"a version of 16 bytes",
              replaced(version, "\x14" + bigEndian(0, 8) + bigEndian(7, 8))},
             {"whole numbers in a rect", replaced(x, "\x10\x01")},
             {"reals of 32 bits", replaced(x, "\x22\x3E\x80" + std::string(2, '\0'))},
             {"a box far beyond the page", replaced(width, rawReal(1e300))},
             {"a key in UTF-16", replaced(pagesKey, std::string("\x65\0p\0a\0g\0e\0s", 11))},
             {"an unknown key, its value nowhere", replaced(document, unknownKeys)},
             {"an empty name", replaced(name, rawString(""))},
             {"no data", replaced(data, "\x40")},
             {"two pages that share a list", replaced(pages, rawArray({page, page}))},
             {"no pages", replaced(pages, rawArray({}))},
             {"3 bytes per offset", [](RawPropertyList& list) { list.offsetSize = 3; }},
         }) {
        RawPropertyList list = rawDocument();
        each.change(list);
        EXPECT_TRUE(decode(list.file())) << each.what;
    }
}

const std::string xmlHead = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                            "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
                            "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n";
const std::string xmlBody =
    "<plist version=\"1.0\"><dict>\n"
    "<key>pages</key><array><array><dict>\n"
    "<key>detected</key><false/><key>style</key><string>solid&#87;hite</string>\n"
    "<key>rect</key><array><array><real>0.5</real><integer>0</integer></array>\n"
    "<array> <real> +1e-1 </real> <real>.25</real> </array></array></dict></array></array>\n"
    "<key>sourceData</key><data>\n\tUE5\n\tHIQ==\n</data>\n"
    "<key>sourceFilename</key><string>\xC3\xA9 &amp; \xF0\x9F\x94\x92.png</string>\n"
    "<key>version</key><integer>1</integer></dict></plist>\n";

std::string withXml(const std::string& from, const std::string& to) {
    std::string text = xmlHead + xmlBody;
    const std::size_t at = text.find(from);
    EXPECT_NE(at, std::string::npos) << from;
    return text.replace(at, from.size(), to);
}

TEST(HostileDocument, HandWrittenXmlIsRead) {
    for (const std::string& text : {xmlHead + xmlBody, xmlBody, "<!-- by hand -->" + xmlBody}) {
        const auto document = decode(sharedBytes(text));
        ASSERT_TRUE(document);
        EXPECT_EQ(document->sourceFilename, "\xC3\xA9 & \xF0\x9F\x94\x92.png");
        EXPECT_TRUE(std::ranges::equal(document->sourceData.bytes(), sharedBytes("PNG!").bytes()));
        EXPECT_EQ(document->pages,
                  (std::vector<std::vector<StoredRedaction>>{
                      {{{0.5, 0, 0.1, 0.25}, RedactionStyle::solidWhite, false}}}));
    }
}

TEST(HostileDocument, UnknownKeysOfXmlAreIgnored) {
    for (const char* value :
         {"<string>note</string>", "<date>2026-01-01T00:00:00Z</date>", "<data>AAAA</data>",
          "<dict><key>version</key><array><real>nan</real><true/></array></dict>", "<array/>"}) {
        EXPECT_TRUE(decode(sharedBytes(
            withXml("<key>version", "<key>more</key>" + std::string(value) + "<key>version"))))
            << value;
    }
}

TEST(HostileDocument, BrokenXmlIsRefused) {
    struct Case {
        const char* from;
        std::string to;
    };
    const std::string bomb = [] {
        std::string text = "<!DOCTYPE plist [<!ENTITY a \"aaaaaaaaaa\">";
        for (char c = 'b'; c < 'k'; ++c) {
            text += std::string("<!ENTITY ") + c + " \"";
            for (int i = 0; i < 10; ++i) {
                text += std::string("&") + static_cast<char>(c - 1) + ";";
            }
            text += "\">";
        }
        return text + "]><plist";
    }();
    for (const Case& each : std::vector<Case>{
             {"<plist", bomb},
             {"<plist", "<!DOCTYPE plist [<!ENTITY x SYSTEM \"file:///etc/passwd\">]><plist"},
             {"&amp;", "&name;"},
             {"plist version=\"1.0\"", "list"},
             {"</dict></plist>", "</dict><true/></plist>"},
             {"</dict></plist>", "</dict></plist><plist/>"},
             {"</dict></plist>", "<key>a</key></dict></plist>"},
             {"<key>version</key>", ""},
             {"<key>version</key>", "<key>version</key><key>version</key>"},
             {"<key>version", "<key>version</key><integer>1</integer><key>version"},
             {"<key>version", "more <key>version"},
             {"<integer>1<", "<integer>1.0<"},
             {"<integer>1<", "<integer>99999999999999999999<"},
             {"<integer>1<", "<integer><"},
             {"<integer>1</integer>", "<date>2026-01-01T00:00:00Z</date>"},
             {"<integer>1</integer>", "<float>1</float>"},
             {"<real>0.5", "<real>nan"},
             {"<real>0.5", "<real>-inf"},
             {"<real>0.5", "<real>1e999"},
             {"<real>0.5", "<real>0.5 0.5"},
             {"<real>0.5", "<real>0x1p-1"},
             {"UE5", "UE*"},
             {"HIQ==", "HIQ="},
             {"HIQ==", "HIQ"},
             {"HIQ==", "H==="},
             {"HIQ==", "HI=Q"},
             {"HIQ==", "HIQ==AAAA"},
             {"<false/>", "<false>no</false>"},
             {"<false/>", "<integer>0</integer>"},
             {"solid&#87;hite", "White bar"},
             {"<key>rect</key>", "<key>Rect</key>"},
             {"<array> <real>", "<array> <real>1</real><real>"},
         }) {
        EXPECT_FALSE(decode(sharedBytes(withXml(each.from, each.to)))) << each.from << each.to;
    }
}

TEST(HostileDocument, DeepXmlIsRefusedAlsoUnderAnUnknownKey) {
    std::string open;
    std::string close;
    for (int i = 0; i < 300000; ++i) {
        open += "<array>";
        close += "</array>";
    }
    EXPECT_FALSE(decode(sharedBytes("<plist>" + open + close + "</plist>")));
    EXPECT_FALSE(decode(
        sharedBytes(withXml("<key>version", "<key>more</key>" + open + close + "<key>version"))));
}

TEST(HostileDocument, EveryTruncationIsRefused) {
    for (const std::string& whole : {rawDocument().text(), xmlBody}) {
        const std::size_t end = whole.find_last_not_of('\n') + 1;
        for (std::size_t length = 0; length < end; ++length) {
            EXPECT_FALSE(decode(sharedBytes(whole.substr(0, length)))) << length;
        }
    }
}

// Bytes changed at random: whatever still reads must be a whole document again.
TEST(HostileDocument, RandomDamageIsRefusedOrHarmless) {
    std::mt19937 generator(4);
    const std::vector<std::string> originals{rawDocument().text(), xmlHead + xmlBody};
    for (int round = 0; round < 20000; ++round) {
        std::string text = originals[generator() % 2];
        for (unsigned i = 0; i <= generator() % 4; ++i) {
            text[generator() % text.size()] = static_cast<char>(generator());
        }
        const auto document = decode(sharedBytes(text));
        if (!document) {
            continue;
        }
        for (const auto& page : document->pages) {
            for (const StoredRedaction& box : page) {
                EXPECT_TRUE(std::isfinite(box.rect.x) && std::isfinite(box.rect.height));
            }
        }
        EXPECT_TRUE(encode(*document));
    }
}

// References of 4 bytes from one array to one object, as often as asked.
std::string manyReferences(unsigned object, std::size_t times) {
    std::string array = "\xAF\x12" + bigEndian(times, 4);
    for (std::size_t i = 0; i < times; ++i) {
        array += bigEndian(object, 4);
    }
    return array;
}

// All small references of the document widened to 4 bytes.
RawPropertyList wideDocument() {
    RawPropertyList list = rawDocument();
    list.referenceSize = 4;
    for (std::string& object : list.objects) {
        const auto kind = static_cast<unsigned char>(object[0]) >> 4;
        if (kind == 0xA || kind == 0xD) {
            std::string wide(1, object[0]);
            for (const char reference : object.substr(1)) {
                wide += bigEndian(static_cast<unsigned char>(reference), 4);
            }
            object = wide;
        }
    }
    return list;
}

std::vector<std::pair<const char*, std::string>> bombs() {
    using namespace Raw;
    std::vector<std::pair<const char*, std::string>> files;
    RawPropertyList list = wideDocument();
    list.objects[pages] = manyReferences(page, 2000);
    list.objects[page] = manyReferences(redaction, 500000);
    files.emplace_back("pages that share a page of half a million shared boxes", list.text());
    list = wideDocument();
    list.objects[pages] = manyReferences(page, 2000000);
    list.objects[page] = "\xA0";
    files.emplace_back("two million shared empty pages", list.text());
    list = wideDocument();
    list.objects[name] = "\x5F\x12" + bigEndian(20U << 20, 4) + std::string(20U << 20, 'a');
    files.emplace_back("a name of 20 MB", list.text());
    files.emplace_back(
        "an XML comment of 20 MB",
        withXml("<key>version", "<!--" + std::string(20U << 20, ' ') + "-->" + "<key>version"));
    files.emplace_back("an XML key of 20 MB",
                       withXml("<key>version",
                               "<key>" + std::string(20U << 20, 'k') + "</key><date/><key>versio"));
    return files;
}

// In kilobytes, for a process of its own that does nothing but decode; none when it crashed or
// when the file was accepted.
std::optional<long> memoryTakenByRefusing(const SharedBytes& file) {
    const pid_t child = ::fork();
    if (child == 0) {
        rusage before{};
        ::getrusage(RUSAGE_SELF, &before);
        const bool refused = !decode(file);
        rusage after{};
        ::getrusage(RUSAGE_SELF, &after);
        const long megabytes = (after.ru_maxrss - before.ru_maxrss) / 1024;
        ::_exit(refused ? static_cast<int>(std::min(megabytes, 254L)) : 255);
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    if (!WIFEXITED(status) || WEXITSTATUS(status) == 255) {
        return std::nullopt;
    }
    return WEXITSTATUS(status);
}

// The address sanitizer keeps what is freed for a while, the thread sanitizer keeps account of all
// that is touched.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr int mostMegabytes = 64;
#else
constexpr int mostMegabytes = 16;
#endif

TEST(HostileDocument, BombsTakeLittleMemory) {
    for (const auto& [what, text] : bombs()) {
        const SharedBytes file = sharedBytes(text);
        const auto megabytes = memoryTakenByRefusing(file);
        ASSERT_TRUE(megabytes) << what;
        EXPECT_LT(*megabytes, mostMegabytes) << what;
    }
}

} // namespace
} // namespace murkwell
