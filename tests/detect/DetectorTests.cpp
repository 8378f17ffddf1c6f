#include "detect/Detector.h"

#include "core/RandomSource.h"
#include "tests/support/FakeRecognition.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <set>
#include <thread>
#include <vector>

namespace murkwell {
namespace {

constexpr auto style = RedactionStyle::noise;

class DetectorTest : public testing::Test {
protected:
    Detector::Findings search(const PIIKinds& kinds) {
        return Detector::detect(*page, kinds, style, {text, faces, random});
    }
    std::vector<Redaction> detect(const PIIKinds& kinds) { return search(kinds).redactions; }

    Detector::Findings searchFor(std::string_view query, bool fuzzy) {
        return Detector::findMatches(query, *page, fuzzy, style, {text, faces, random});
    }
    std::vector<Redaction> find(std::string_view query, bool fuzzy) {
        return searchFor(query, fuzzy).redactions;
    }

    // Which columns of the first line a box covers, counted in characters.
    static std::pair<long, long> columns(const Redaction& redaction) {
        return {std::lround(redaction.rect.minX() * 100), std::lround(redaction.rect.maxX() * 100)};
    }

    std::shared_ptr<Bitmap> page = Bitmap::create(1, 1);
    FakeTextRecognizer text{std::vector<RecognizedLine>{}};
    FakeFaceDetector faces{std::vector<RecognizerRect>{}};
    SystemRandomSource random;
};

const PIIKinds everything(allPIIKinds.begin(), allPIIKinds.end());
using Columns = std::pair<long, long>;

TEST_F(DetectorTest, OnlyWhatTheKindsNeedIsRun) {
    struct Case {
        PIIKinds kinds;
        int textCalls, faceCalls;
    };
    for (const Case& c : std::vector<Case>{
             {{}, 0, 0},
             {{PIIKind::faces}, 0, 1},
             {{PIIKind::ssn}, 1, 0},
             {{PIIKind::email, PIIKind::phone, PIIKind::faces}, 1, 1},
         }) {
        text.calls = 0;
        faces.calls = 0;
        EXPECT_TRUE(detect(c.kinds).empty());
        EXPECT_EQ(text.calls, c.textCalls);
        EXPECT_EQ(faces.calls, c.faceCalls);
    }
}

TEST_F(DetectorTest, ReadingsOfOnePlaceCoverItOnce) {
    struct Case {
        std::vector<const char*> readings;
        std::vector<Columns> covered;
    };
    for (const Case& c : std::vector<Case>{
             {{"a@b.org", "a@b.org"}, {{0, 7}}},
             {{"a@b.co.org", "a@b.co.0rg", "x@b.org"}, {{0, 10}}},
             {{"a@b.co 0rg", "a@b.co.org"}, {{0, 10}}},
             {{"a@b.org", " a@b.org"}, {{0, 7}, {1, 8}}},
         }) {
        text.answer->clear();
        for (const char* reading : c.readings) {
            text.answer->push_back(asciiLine(reading));
        }
        std::vector<Columns> covered;
        for (const Redaction& redaction : detect({PIIKind::email})) {
            covered.push_back(columns(redaction));
        }
        EXPECT_EQ(covered, c.covered) << c.readings[0];
        for (RecognizedLine& line : *text.answer) { // in places of their own
            line.box.y += static_cast<double>(&line - text.answer->data());
        }
        EXPECT_EQ(detect({PIIKind::email}).size(), c.readings.size());
    }
}

TEST_F(DetectorTest, MatchesComeByLineThenKindThenPositionAndFacesLast) {
    text.answer = {asciiLine("1.2.3.4 a@b.co 5.6.7.8 c@d.co"), asciiLine("123-45-6789")};
    faces.answer = {{{0.4, 0.4, 0.2, 0.2}}};
    const auto boxes = detect(everything);
    ASSERT_EQ(boxes.size(), 6U);
    EXPECT_EQ(columns(boxes[0]), Columns(0, 7));
    EXPECT_EQ(columns(boxes[1]), Columns(15, 22));
    EXPECT_EQ(columns(boxes[2]), Columns(8, 14));
    EXPECT_EQ(columns(boxes[3]), Columns(23, 29));
    EXPECT_EQ(columns(boxes[4]), Columns(0, 11));
    EXPECT_NEAR(boxes[5].rect.height, 0.33, 1e-12);
}

TEST_F(DetectorTest, EveryBoxIsDetectedInTheChosenStyleAndHasItsOwnIdentity) {
    text.answer = {asciiLine("a@b.co c@d.co"), asciiLine("acme acme")};
    faces.answer = {{{0.4, 0.4, 0.2, 0.2}}};
    std::vector<Redaction> all = detect(everything);
    for (const bool fuzzy : {false, true}) {
        std::ranges::copy(find("acme", fuzzy), std::back_inserter(all));
    }
    std::set<Uuid> identities;
    for (const Redaction& box : all) {
        EXPECT_TRUE(box.detected);
        EXPECT_EQ(box.style, style);
        identities.insert(box.id);
    }
    EXPECT_EQ(all.size(), 7U);
    EXPECT_EQ(identities.size(), all.size());
}

TEST_F(DetectorTest, NothingIsMergedAndTheCardComesFirstWhenTwoKindsMatchTheSameDigits) {
    text.answer = {asciiLine("12345678901234")};
    const auto boxes = detect({PIIKind::phone, PIIKind::creditCard});
    ASSERT_EQ(boxes.size(), 2U);
    EXPECT_EQ(columns(boxes[0]), Columns(0, 14));
    EXPECT_EQ(columns(boxes[1]), Columns(0, 12));
}

TEST_F(DetectorTest, AFailingEngineTakesOnlyItsOwnBoxesAwayAndIsNamed) {
    struct Case {
        bool textWorks, facesWork;
        PIIKinds kinds;
        std::optional<Outcome> text, faces;
        std::size_t boxes;
    };
    for (const Case& c : std::vector<Case>{
             {true, true, everything, Outcome::whole, Outcome::whole, 2},
             {true, false, everything, Outcome::whole, Outcome::failed, 1},
             {false, true, everything, Outcome::failed, Outcome::whole, 1},
             {false, false, everything, Outcome::failed, Outcome::failed, 0},
             {false, false, {PIIKind::email}, Outcome::failed, std::nullopt, 0},
             {false, false, {PIIKind::faces}, std::nullopt, Outcome::failed, 0},
             {false, false, {}, std::nullopt, std::nullopt, 0},
         }) {
        text.answer.reset();
        faces.answer.reset();
        if (c.textWorks) {
            text.answer = {asciiLine("a@b.co")};
        }
        if (c.facesWork) {
            faces.answer = {{{0.4, 0.4, 0.2, 0.2}}};
        }
        const auto findings = search(c.kinds);
        EXPECT_EQ(findings.text, c.text);
        EXPECT_EQ(findings.faces, c.faces);
        EXPECT_EQ(findings.redactions.size(), c.boxes);
    }
    EXPECT_EQ(searchFor("a", false).text, Outcome::failed);
    text.answer = {asciiLine("a")};
    text.outcome = Outcome::partial;
    EXPECT_EQ(searchFor("a", false).text, Outcome::partial);
    EXPECT_EQ(search({PIIKind::email}).text, Outcome::partial);
    EXPECT_EQ(searchFor(" ", false).text, std::nullopt);
}

TEST_F(DetectorTest, AMatchWithoutCharacterBoxesCoversItsLine) {
    RecognizedLine line = asciiLine("write a@b.co now");
    line.characterBoxes.clear();
    text.answer = {line};
    for (const auto& boxes : {detect({PIIKind::email}), find("a@b", false)}) {
        ASSERT_EQ(boxes.size(), 1U);
        EXPECT_EQ(columns(boxes[0]), Columns(0, 99));
    }
}

TEST_F(DetectorTest, AQueryOfWhiteSpaceReadsNothing) {
    text.answer = {asciiLine("   ")};
    for (const char* const query : {"", "  ", "\r\n\t", "\xe2\x80\x83\xe2\x80\xa8"}) {
        EXPECT_TRUE(find(query, false).empty());
        EXPECT_TRUE(find(query, true).empty());
    }
    EXPECT_EQ(text.calls, 0);
}

TEST_F(DetectorTest, ExactFindTakesThePhraseFuzzyFindItsWords) {
    text.answer = {asciiLine("Dear John Smith, J0hn")};
    const auto exact = find("\n john smith ", false);
    ASSERT_EQ(exact.size(), 1U);
    EXPECT_EQ(columns(exact[0]), Columns(5, 15));
    const auto fuzzy = find("John Smith", true);
    ASSERT_EQ(fuzzy.size(), 3U);
    EXPECT_EQ(columns(fuzzy[0]), Columns(5, 9));
    EXPECT_EQ(columns(fuzzy[1]), Columns(10, 15));
    EXPECT_EQ(columns(fuzzy[2]), Columns(17, 21));
}

TEST_F(DetectorTest, HostileLinesAndQueriesEndWithoutHarm) {
    std::vector<RecognizedLine> lines;
    for (const std::string& hostile :
         {std::string(), std::string(10000, '1'), std::string(10000, 'x') + "@b.co",
          std::string("\xed\xa0\xbd 123-45-6789"), std::string("\xff\xfe"),
          std::string("e\xcc\x81\xcc\x81\xcc\x81 \xf0\x9f\x91\xa9\xe2\x80\x8d\xf0\x9f\x91\xa7"),
          std::string("\xd7\xa9\xd7\x9c\xd7\x95\xd7\x9d 1.2.3.4")}) {
        lines.push_back(asciiLine(hostile));
    }
    text.answer = lines;
    EXPECT_FALSE(detect(everything).empty());
    for (const std::string& query : {std::string(10000, 'x'), std::string("\xcc\x81\xcc\x82"),
                                     std::string(".*(\\E["), std::string("\xed\xa0\xbd")}) {
        for (const bool fuzzy : {false, true}) {
            for (const Redaction& box : find(query, fuzzy)) {
                EXPECT_GE(box.rect.width, 0);
            }
        }
    }
}

TEST_F(DetectorTest, FourSearchesAtOnceAgree) {
    text.answer = {asciiLine("a@b.co 123-45-6789"), asciiLine("Smith \xc3\xa9")};
    faces.answer = {{{0.4, 0.4, 0.2, 0.2}}};
    std::vector<std::size_t> counts(4);
    {
        std::vector<std::jthread> threads;
        for (std::size_t& count : counts) {
            threads.emplace_back([&] {
                for (int round = 0; round < 20; ++round) {
                    count += detect(everything).size() + find("smyth", true).size() +
                             find("SMITH", false).size();
                }
            });
        }
    }
    EXPECT_EQ(counts, std::vector<std::size_t>(4, 20 * 5));
}

} // namespace
} // namespace murkwell
