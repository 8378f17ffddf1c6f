#include "core/RandomSource.h"
#include "core/Redaction.h"
#include "tests/support/ScriptedRandomSource.h"

#include <gtest/gtest.h>
#include <set>
#include <string>

namespace murkwell {
namespace {

TEST(RedactionStyle, RawValuesRoundTripAndNothingElseIsAccepted) {
    for (const RedactionStyle style : allRedactionStyles) {
        EXPECT_EQ(redactionStyle(rawValue(style)), style);
    }
    for (const char* text : {"", "Noise", "NOISE", "noise ", "SolidBlack", "Black bar", "blur"}) {
        EXPECT_EQ(redactionStyle(text), std::nullopt) << text;
    }
}

TEST(RedactionStyle, TextsOfTheThreeStyles) {
    const auto texts = [](RedactionStyle style) {
        return std::string(rawValue(style)) + "|" + std::string(label(style)) + "|" +
               std::string(symbolName(style));
    };
    EXPECT_EQ(texts(allRedactionStyles[0]), "solidBlack|Black bar|rectangle.fill");
    EXPECT_EQ(texts(allRedactionStyles[1]), "solidWhite|White bar|rectangle");
    EXPECT_EQ(texts(allRedactionStyles[2]), "noise|Noise|square.grid.3x3.fill");
}

TEST(Redaction, EqualityTakesAllFourFields) {
    SystemRandomSource random;
    const Redaction box{Uuid::random(random), {0.1, 0.2, 0.3, 0.4}, RedactionStyle::noise, true};
    Redaction other = box;
    EXPECT_EQ(box, other);
    other.id = Uuid::random(random);
    EXPECT_NE(box, other);
    other = box;
    other.rect.height = 0.5;
    EXPECT_NE(box, other);
    other = box;
    other.style = RedactionStyle::solidBlack;
    EXPECT_NE(box, other);
    other = box;
    other.detected = false;
    EXPECT_NE(box, other);
}

TEST(Uuid, IsOfVersion4WhateverTheBits) {
    for (const std::uint64_t bits : {std::uint64_t{0}, UINT64_MAX}) {
        ScriptedRandomSource random({bits});
        const Uuid uuid = Uuid::random(random);
        EXPECT_EQ(uuid.bytes[6] >> 4, 4);
        EXPECT_EQ(uuid.bytes[8] >> 6, 2);
    }
}

TEST(Uuid, TenThousandDiffer) {
    SystemRandomSource random;
    std::set<Uuid> seen;
    for (int i = 0; i < 10000; ++i) {
        seen.insert(Uuid::random(random));
    }
    EXPECT_EQ(seen.size(), 10000U);
}

} // namespace
} // namespace murkwell
