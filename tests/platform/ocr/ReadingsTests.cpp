#include "platform/ocr/Readings.h"

#include "platform/ocr/SymbolAlignment.h"

#include <gtest/gtest.h>
#include <opencv2/imgproc.hpp>
#include <set>
#include <string>
#include <vector>

namespace murkwell {
namespace {

constexpr int pitch = 24; // columns a character

// A strip on which every character is a bar, and what a reader that sees all of them answers.
struct DrawnLine {
    explicit DrawnLine(const std::vector<std::string>& characters) {
        const int width = pitch * static_cast<int>(characters.size() + 1);
        strip.image = cv::Mat(LineStrip::height + 2 * LineStrip::margin, width, CV_8UC3,
                              cv::Scalar::all(255));
        strip.toPage = cv::Matx33d::eye();
        const auto right = static_cast<float>(width);
        strip.corners = {cv::Point2f{0, 0}, {right, 0}, {right, 48}, {0, 48}};
        for (std::size_t i = 0; i < characters.size(); ++i) {
            const int left = 10 + pitch * static_cast<int>(i);
            if (characters[i] != " ") {
                cv::rectangle(strip.image, {left, 16}, {left + 17, 44}, {0, 0, 0}, cv::FILLED);
            }
            reading.characters.push_back({characters[i], left + 9.0, 1});
        }
    }

    LineStrip strip;
    StripReading reading;
};

std::set<std::string> textsOf(const DrawnLine& line, const StripReading& ppOcr) {
    std::set<std::string> texts;
    const auto read = pageLine(line.strip, Direction::right, line.reading, ppOcr);
    for (const LineText& text : read.value_or(PageLine{}).texts) {
        texts.insert(text.text);
    }
    return texts;
}

TEST(Readings, AllAreKept) {
    struct Case {
        const char* what;
        std::vector<std::string> tesseract;
        std::vector<std::string> ppOcr;
        std::set<std::string> expected;
    };
    for (const Case& c : std::vector<Case>{
             {"nothing", {}, {}, {""}},
             {"one reader", {"a", "b"}, {}, {"ab"}},
             {"the other", {}, {"a", "b"}, {"ab"}},
             {"both", {"ü", "b"}, {"u", "b"}, {"üb", "ub"}},
             {"what is set for what is typed", {"a", "®", "b", "–", "ﬁ"}, {}, {"a®b–ﬁ", "a@b-fi"}},
             {"a nought in a name, an O in a number, and what could be either",
              {"0", "'", "B", "5", "O", "1", "O", "b"},
              {},
              {"0'B5O1Ob", "O'B501Ob"}},
             {"a space that the reader sees where none is",
              {"b", "a", "n", "k", " ", "@", "n", "e", "t"},
              {},
              {"bank @net", "bank@net"}},
         }) {
        // A space that is seen takes no room: only what is drawn does.
        std::vector<std::string> drawn = c.tesseract.empty() ? c.ppOcr : c.tesseract;
        std::erase(drawn, " ");
        DrawnLine line(drawn);
        if (c.tesseract.empty()) {
            line.reading = {};
        } else if (c.tesseract != drawn) {
            line.reading.characters.insert(line.reading.characters.begin() + 4, {" ", 92, 1});
        }
        EXPECT_EQ(textsOf(line, DrawnLine(c.ppOcr).reading), c.expected) << c.what;
    }
}

TEST(Readings, WhatACharacterNearlyWasIsReadToo) {
    DrawnLine second({"a", "t", "b"});
    second.reading.characters[1].nearly = "@";
    EXPECT_EQ(textsOf(DrawnLine({"a", "l", "b"}), second.reading),
              (std::set<std::string>{"alb", "atb", "a@b"}));
}

TEST(Symbols, StandOnTheirInkWhateverTheReaderSaysOfTheirEnds) {
    const DrawnLine line({"n", "o", "8", " ", "a", "7", ","});
    std::vector<ReadSymbol> symbols;
    for (const ReadCharacter& character : line.reading.characters) {
        if (character.text != " ") {
            const double left = character.centre - 9;
            symbols.push_back({character.text, left, left + 18, character.text == "a"});
        }
    }
    symbols[2].right = 170; // the last symbol of a word, out to the end of the strip
    symbols[4].left -= 14;  // half a symbol off
    const std::vector<double> centres = centresOf(symbols, InkProfile(line.strip.line(), .3));
    ASSERT_EQ(centres.size(), symbols.size());
    const double expected[] = {19, 43, 67, 115, 139, 163};
    for (std::size_t i = 0; i < centres.size(); ++i) {
        EXPECT_NEAR(centres[i], expected[i], 2) << i;
    }
}

} // namespace
} // namespace murkwell
