#include "detect/PIIKind.h"

#include "detect/PatternMatcher.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace murkwell {
namespace {

std::vector<std::u16string> found(PIIKind kind, const std::u16string& line) {
    std::vector<std::u16string> texts;
    for (const TextRange& range : PatternMatcher::compile(*pattern(kind))->matches(line)) {
        texts.push_back(line.substr(range.begin, range.end - range.begin));
    }
    return texts;
}

TEST(PIIKind, OnlyItsExactRawValueNamesAKind) {
    for (const PIIKind kind : allPIIKinds) {
        EXPECT_EQ(piiKind(rawValue(kind)), kind);
    }
    for (const char* const other : {"", "Email", "emails", "faces ", "creditcard", "ipaddress"}) {
        EXPECT_EQ(piiKind(other), std::nullopt) << other;
    }
}

TEST(PIIKind, PatternsHaveTheirFixedLengths) {
    const std::vector<std::size_t> lengths{37, 21, 55, 22, 27};
    for (std::size_t i = 0; i < lengths.size(); ++i) {
        EXPECT_EQ(pattern(allPIIKinds.at(i))->size(), lengths[i]);
    }
    EXPECT_EQ(pattern(PIIKind::faces), std::nullopt);
}

TEST(Patterns, WhatEachKindFindsInALine) {
    using enum PIIKind;
    using Texts = std::vector<std::u16string>;
    struct Case {
        PIIKind kind;
        std::u16string line;
        Texts expected;
    };
    for (const Case& c : std::vector<Case>{
             {email, u"write to jo.doe@MAIL.Example.COM today", {u"jo.doe@MAIL.Example.COM"}},
             {email, u"jo@example.c", {}},
             {email, u"a@b.co,c@d.org", {u"a@b.co", u"c@d.org"}},
             {email, u"jo@example.com\u00e9", {u"jo@example.com"}},
             {email, u"zo\u00ebly@example.com", {u"ly@example.com"}},
             {email, u"j\u017fo@example.com", {u"j\u017fo@example.com"}}, // folds to s
             {ssn, u"SSN 123-45-6789.", {u"123-45-6789"}},
             {ssn, u"123456789 and 123 45 6789", {}},
             {ssn, u"1123-45-6789 123-45-67890 x123-45-6789 _123-45-6789", {}},
             {ssn,
              u"\u0661\u0662\u0663-\u0664\u0665-\u0666\u0667\u0668\u0669",
              {u"\u0661\u0662\u0663-\u0664\u0665-\u0666\u0667\u0668\u0669"}},
             {ssn, u"123-45-6789\u0301", {}}, // a combining mark belongs to the word
             {phone, u"(555) 123-4567", {u"(555) 123-4567"}},
             {phone, u"555.123.4567", {u"555.123.4567"}},
             {phone, u"+1 555 123 4567", {u"+1 555 123 4567"}},
             {phone, u"5551234567", {u"5551234567"}},
             {phone, u"12345678901234", {u"123456789012"}},
             {phone, u"555\u00a0123\u00a04567", {u"555\u00a0123\u00a04567"}},
             {phone, u"555  123 4567", {}},
             {phone, u"555 123 456", {}},
             {creditCard, u"4111 1111 1111 1111", {u"4111 1111 1111 1111"}},
             {creditCard, u"4111-1111-1111-1111", {u"4111-1111-1111-1111"}},
             {creditCard, u"4111 1111 1111 1112", {u"4111 1111 1111 1112"}},
             {creditCard, u"card 4111 1111 1111 1111 valid", {u"4111 1111 1111 1111 "}},
             {creditCard, u"12345678901234", {u"12345678901234"}},
             {creditCard, u"123456789012", {}},
             {creditCard, u"12345678901234567", {}},
             {ipAddress, u"192.168.0.1 and 999.999.999.999", {u"192.168.0.1", u"999.999.999.999"}},
             {ipAddress, u"1.2.3", {}},
             {ipAddress, u"1234.1.1.1", {}},
         }) {
        EXPECT_EQ(found(c.kind, c.line), c.expected)
            << rawValue(c.kind) << " in line " << testing::PrintToString(c.line);
    }
}

TEST(PatternMatcher, ABrokenExpressionDoesNotCompile) {
    EXPECT_FALSE(PatternMatcher::compile("(unclosed").has_value());
}

TEST(PatternMatcher, RangesCountUtf16CodeUnits) {
    const auto matcher = PatternMatcher::compile("b+");
    EXPECT_EQ(matcher->matches(u"\U0001f600abb"), (std::vector<TextRange>{{3, 5}}));
}

TEST(PatternMatcher, LoneSurrogatesAndEmptyLinesAreHarmless) {
    const auto matcher = PatternMatcher::compile(*pattern(PIIKind::ssn));
    EXPECT_TRUE(matcher->matches({}).empty());
    const std::u16string line{0xd83d, u' ', u'1', u'2', u'3', u'-', u'4',
                              u'5',   u'-', u'6', u'7', u'8', u'9', 0xde00};
    EXPECT_EQ(matcher->matches(line), (std::vector<TextRange>{{2, 13}}));
}

} // namespace
} // namespace murkwell
