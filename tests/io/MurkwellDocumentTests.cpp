#include "io/MurkwellDocument.h"

#include "tests/support/RawPropertyList.h"
#include "tests/support/TemporaryFolder.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <gtest/gtest.h>
#include <random>
#include <sstream>

namespace murkwell {
namespace {

std::string textOf(const BinaryPropertyList& list) {
    std::string text;
    for (const auto part : list.parts()) {
        text.append(reinterpret_cast<const char*>(part.data()), part.size());
    }
    return text;
}

std::string hex(const std::string& bytes) {
    std::ostringstream text;
    for (const char byte : bytes) {
        constexpr std::string_view digits = "0123456789abcdef";
        const auto value = static_cast<unsigned char>(byte);
        text << digits[value >> 4] << digits[value & 0xF];
    }
    return text.str();
}

// The same lines that property_list_oracle.py prints: every bit of every value.
std::string described(const MurkwellDocument& document) {
    std::ostringstream text;
    const auto source = document.sourceData.bytes();
    text << "version " << document.version << "\nname " << hex(document.sourceFilename) << "\ndata "
         << hex({reinterpret_cast<const char*>(source.data()), source.size()}) << "\n";
    for (const auto& page : document.pages) {
        text << "page\n";
        for (const StoredRedaction& box : page) {
            text << "box";
            for (const double side : {box.rect.x, box.rect.y, box.rect.width, box.rect.height}) {
                text << " " << hex(bigEndian(std::bit_cast<std::uint64_t>(side), 8));
            }
            text << " " << rawValue(box.style) << " " << (box.detected ? "true" : "false") << "\n";
        }
    }
    return text.str();
}

class RandomWork {
public:
    explicit RandomWork(unsigned seed) : generator(seed) {}

    MurkwellDocument next() {
        static const std::array names{"scan.PDF", "Caf\xC3\xA9 & <tag>.png",
                                      "\xF0\x9F\x94\x92\xE2\x80\x8B.jpg", "",
                                      "a name of more than fourteen letters.tiff"};
        MurkwellDocument document{MurkwellDocument::currentVersion,
                                  names[generator() % 5],
                                  sharedBytes(randomBytes()),
                                  {}};
        document.pages.resize(generator() % 20);
        for (auto& page : document.pages) {
            page.resize(generator() % 3 == 0 ? 0 : generator() % 40);
            std::ranges::generate(page, [this] { return box(); });
        }
        return document;
    }

private:
    std::string randomBytes() {
        static const std::array<std::size_t, 6> sizes{0, 14, 15, 255, 256, 70000};
        std::string bytes(sizes[generator() % 6], '\0');
        std::ranges::generate(bytes, [this] { return static_cast<char>(generator()); });
        return bytes;
    }

    double number() {
        static const std::array odd{0.0, -0.0, 1.0, 0.005, 5e-324, 1e300, -0.25};
        if (generator() % 4 == 0) {
            return odd[generator() % odd.size()];
        }
        return std::uniform_real_distribution<double>(0, 1)(generator);
    }

    StoredRedaction box() {
        return {{number(), number(), number(), number()},
                allRedactionStyles[generator() % 3],
                generator() % 2 == 0};
    }

    std::mt19937 generator;
};

TEST(MurkwellDocument, RandomWorksReadBackEveryBit) {
    RandomWork works(1);
    for (int i = 0; i < 300; ++i) {
        const MurkwellDocument document = works.next();
        const auto encoded = encode(document);
        ASSERT_TRUE(encoded);
        const auto decoded = decode(sharedBytes(textOf(*encoded)));
        ASSERT_TRUE(decoded);
        ASSERT_EQ(described(*decoded), described(document));
    }
}

// Walks the offset table by itself: what types are in the file, and how many numbers.
TEST(MurkwellDocument, EveryNumberIsA64BitRealAndOnlyKnownTypesOccur) {
    RandomWork works(2);
    for (int i = 0; i < 50; ++i) {
        const MurkwellDocument document = works.next();
        const std::string file = textOf(encode(document).value());
        const std::string trailer = file.substr(file.size() - 32);
        const auto number = [](const std::string& bytes) {
            std::uint64_t value = 0;
            for (const char byte : bytes) {
                value = value << 8 | static_cast<unsigned char>(byte);
            }
            return value;
        };
        const std::uint64_t table = number(trailer.substr(24, 8));
        const std::size_t width = number(trailer.substr(6, 1));
        std::size_t reals = 0;
        for (std::uint64_t object = 0; object < number(trailer.substr(8, 8)); ++object) {
            const auto offset = number(file.substr(table + object * width, width));
            const auto marker = static_cast<unsigned char>(file[offset]);
            reals += marker == 0x23 ? 1 : 0;
            EXPECT_TRUE(marker == 0x23 || marker == 0x08 || marker == 0x09 || marker == 0x13 ||
                        std::ranges::count(std::array{4, 5, 6, 0xA, 0xD}, marker >> 4) == 1)
                << int{marker};
        }
        std::size_t boxes = 0;
        for (const auto& page : document.pages) {
            boxes += page.size();
        }
        EXPECT_EQ(reals, 4 * boxes);
    }
}

TEST(MurkwellDocument, SavingTwiceGivesTheSameBytes) {
    const MurkwellDocument document = RandomWork(3).next();
    EXPECT_EQ(textOf(encode(document).value()), textOf(encode(document).value()));
}

TEST(MurkwellDocument, SourceIsASliceOfTheFileAndOutlivesIt) {
    const std::string source(1 << 20, 's');
    const auto encoded = encode({1, "a.png", sharedBytes(source), {}});
    ASSERT_TRUE(encoded);
    EXPECT_LT(encoded->head.size() + encoded->tail.size(), 300U);
    std::optional<MurkwellDocument> decoded;
    {
        const SharedBytes file = sharedBytes(textOf(*encoded));
        decoded = decode(file);
        ASSERT_TRUE(decoded);
        EXPECT_GE(decoded->sourceData.bytes().data(), file.bytes().data());
        EXPECT_LT(decoded->sourceData.bytes().data(), file.bytes().data() + file.size());
    }
    EXPECT_TRUE(std::ranges::equal(decoded->sourceData.bytes(), sharedBytes(source).bytes()));
}

TEST(MurkwellDocument, ANameIsStoredAsItCanBeShown) {
    struct Case {
        const char* name;
        const char* stored;
    };
    for (const Case& each : std::vector<Case>{
             {"caf\xE9.png", "caf\xEF\xBF\xBD.png"},
             {"\xC3", "\xEF\xBF\xBD"},
             {"\xE2\x82", "\xEF\xBF\xBD\xEF\xBF\xBD"},
             {"\xC0\xAF", "\xEF\xBF\xBD\xEF\xBF\xBD"},                 // overlong
             {"\xED\xA0\x80", "\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD"}, // a surrogate
             {"\xF4\x8F\xBF\xBF", "\xF4\x8F\xBF\xBF"},                 // the last code point
             {"a\x1B[1m\n\x7F", "a\xEF\xBF\xBD[1m\xEF\xBF\xBD\xEF\xBF\xBD"},
             {"\xC2\x9B\xC2\xA0", "\xEF\xBF\xBD\xC2\xA0"},
             {"\xE2\x80\xAEgnp.exe", "\xEF\xBF\xBDgnp.exe"}, // written from right to left
         }) {
        const auto encoded = encode({1, each.name, {}, {}});
        ASSERT_TRUE(encoded);
        EXPECT_EQ(decode(sharedBytes(textOf(*encoded)))->sourceFilename, each.stored);
    }
}

#ifdef MURKWELL_PYTHON
std::string outputOf(const std::string& arguments) {
    const std::string command =
        MURKWELL_PYTHON " " MURKWELL_TEST_SOURCES "/property_list_oracle.py " + arguments;
    std::string output;
    FILE* const pipe = ::popen(command.c_str(), "r");
    std::array<char, 4096> buffer{};
    while (const std::size_t count = std::fread(buffer.data(), 1, buffer.size(), pipe)) {
        output.append(buffer.data(), count);
    }
    EXPECT_EQ(::pclose(pipe), 0) << command;
    return output;
}

TEST(MurkwellDocument, AnIndependentReaderReadsWhatWeWrite) {
    const TemporaryFolder folder;
    RandomWork works(4);
    std::string expected;
    for (int i = 0; i < 40; ++i) {
        const MurkwellDocument document = works.next();
        folder.write(std::to_string(100 + i), textOf(encode(document).value()));
        expected += described(document);
    }
    EXPECT_EQ(outputOf("read " + folder.path.string()), expected);
}

TEST(MurkwellDocument, WeReadWhatAnIndependentWriterWritesInBothForms) {
    for (const char* form : {"binary", "xml"}) {
        const TemporaryFolder folder;
        const std::string expected =
            outputOf(std::string("write ") + form + " " + folder.path.string());
        std::string found;
        for (int i = 100; std::filesystem::exists(folder.path / std::to_string(i)); ++i) {
            const auto file = contentOf(folder.path / std::to_string(i));
            const auto document = decode(sharedBytes(file));
            ASSERT_TRUE(document) << form << i;
            found += described(*document);
        }
        EXPECT_FALSE(expected.empty());
        EXPECT_EQ(found, expected) << form;
    }
}
#else
TEST(MurkwellDocument, AnIndependentReaderReadsWhatWeWrite) {
    GTEST_SKIP() << "needs python3";
}
#endif

} // namespace
} // namespace murkwell
