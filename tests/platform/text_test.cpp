#include "platform/text.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace zek {
namespace {

std::string Byte(int wert) {
    return std::string(1, static_cast<char>(static_cast<unsigned char>(wert)));
}

TEST(Codepage, EveryByteComesBackUnchanged) {
    for (int b = 0; b < 256; ++b) EXPECT_EQ(NachCodepage(AusCodepage(Byte(b))), Byte(b)) << b;
}

TEST(Codepage, TheSpecialRangeIsThatOfWindows1252) {
    EXPECT_EQ(AusCodepage("\x80\x82\x83\x84\x85\x86\x87\x88\x89\x8A\x8B\x8C\x8E"), "€‚ƒ„…†‡ˆ‰Š‹ŒŽ");
    EXPECT_EQ(AusCodepage("\x91\x92\x93\x94\x95\x96\x97\x98\x99\x9A\x9B\x9C\x9E\x9F"), "‘’“”•–—˜™š›œžŸ");
    EXPECT_EQ(AusCodepage("\xE4\xF6\xFC\xC4\xD6\xDC\xDF"), "äöüÄÖÜß");
    EXPECT_EQ(NachCodepage("Börsenplatz 5 €"), "B\xF6rsenplatz 5 \x80");
}

TEST(Codepage, TheFiveBytesWithoutAMeaningTravelAsControlCharacters) {
    EXPECT_EQ(AusCodepage("\x81\x8D\x8F\x90\x9D"), "\xC2\x81\xC2\x8D\xC2\x8F\xC2\x90\xC2\x9D");
    EXPECT_EQ(NachCodepage("\xC2\x80"), "?");
}

TEST(Codepage, WhatHasNoPlaceBecomesAQuestionMark) {
    EXPECT_EQ(NachCodepage("Ω日😀x"), "???x");
    EXPECT_EQ(NachCodepage("a\xFF"
                           "b"),
              "a?b");
    EXPECT_EQ(NachCodepage("a\xC3"), "a?");
    EXPECT_EQ(NachCodepage("\xC0\xAF"), "??") << "an overlong form is malformed";
    EXPECT_EQ(NachCodepage("\xED\xA0\x80"), "???") << "so is a surrogate";
}

TEST(Zahltext, HasADecimalCommaAndNoTrailingZeros) {
    EXPECT_EQ(Zahltext(12.5), "12,5");
    EXPECT_EQ(Zahltext(0.0), "0");
    EXPECT_EQ(Zahltext(-0.0), "0");
    EXPECT_EQ(Zahltext(-2.25), "-2,25");
    EXPECT_EQ(Zahltext(0.1 + 0.2), "0,3");
    EXPECT_EQ(Zahltext(1000000.0), "1000000");
    EXPECT_EQ(Zahltext(0.0001), "0,0001");
}

TEST(Zahltext, UsesAnExponentForVeryLargeAndVerySmallValues) {
    EXPECT_EQ(Zahltext(1.5e20), "1,5E+20");
    EXPECT_EQ(Zahltext(1e-7), "1E-07");
    EXPECT_EQ(Zahltext(1e15), "1E+15");
    EXPECT_EQ(Zahltext(123456789012345.0), "123456789012345");
}

TEST(Zahltext, OfASingleHasSevenDigits) {
    EXPECT_EQ(Zahltext(0.1F), "0,1");
    EXPECT_EQ(Zahltext(1234567.0F), "1234567");
    EXPECT_EQ(Zahltext(1e7F), "1E+07");
    EXPECT_EQ(Zahltext(-2.123456e38F), "-2,123456E+38");
}

TEST(Zahltext, ForSettingsHasAPoint) {
    EXPECT_EQ(ZahltextPunkt(45973.5), "45973.5");
}

TEST(Zahlwert, IsTheLongestLeadingNumber) {
    EXPECT_EQ(Zahlwert("5abc"), 5);
    EXPECT_EQ(Zahlwert(" 1 2"), 12);
    EXPECT_EQ(Zahlwert("abc"), 0);
    EXPECT_EQ(Zahlwert("12,5"), 12);
    EXPECT_EQ(Zahlwert("1e3"), 1000);
    EXPECT_EQ(Zahlwert("1e"), 1);
    EXPECT_EQ(Zahlwert("-.5"), -0.5);
    EXPECT_EQ(Zahlwert("+7."), 7);
    EXPECT_EQ(Zahlwert("1.2.3"), 1.2);
    EXPECT_EQ(Zahlwert(""), 0);
    EXPECT_EQ(Zahlwert("True"), 0);
    EXPECT_EQ(Zahlwert("inf"), 0);
    EXPECT_EQ(Zahlwert("1e999"), 0);
}

TEST(Numerisch, IsOneWholeGermanNumber) {
    for (const char* gut : {"1", " 1100", "-1", "+3", "1,5", ",5", "1.000", "1.234.567,89", "1E3", "1,5e-2", "5,"}) {
        EXPECT_TRUE(IstNumerisch(gut)) << gut;
    }
    for (const char* schlecht : {"", " ", "abc", "1a", "1 2", "1,2,3", "1,2.3", ".5", "-", ",", "1e", "--1", "0x1"}) {
        EXPECT_FALSE(IstNumerisch(schlecht)) << schlecht;
    }
}

TEST(Numerisch, PointsAreThousandsSeparators) {
    EXPECT_EQ(ZahlAusDeutsch("1.234,5"), 1234.5);
    EXPECT_EQ(ZahlAusDeutsch(" -1,5E+2 "), -150.0);
    EXPECT_EQ(ZahlAusDeutsch("abc"), std::nullopt);
}

TEST(Ganzzahl, IsTheWholeTextOrNothing) {
    EXPECT_EQ(Ganzzahl(" 42 "), 42);
    EXPECT_EQ(Ganzzahl("+7"), 7);
    EXPECT_EQ(Ganzzahl("-7"), -7);
    for (const char* schlecht : {"", "4x", "1.5", "+-1", "99999999999999999999"}) {
        EXPECT_EQ(Ganzzahl(schlecht), std::nullopt) << schlecht;
    }
}

TEST(FesteStellen, RoundsHalfAwayFromZeroByTheDecimalValue) {
    EXPECT_EQ(FesteStellen(12.345, 1), "12,3");
    EXPECT_EQ(FesteStellen(12.345, 2), "12,35");
    EXPECT_EQ(FesteStellen(0.05, 1), "0,1");
    EXPECT_EQ(FesteStellen(-0.25, 1), "-0,3");
    EXPECT_EQ(FesteStellen(99.95, 1), "100,0");
    EXPECT_EQ(FesteStellen(0.5, 0), "1");
    EXPECT_EQ(FesteStellen(0, 1), "0,0");
    EXPECT_EQ(FesteStellen(-0.01, 1), "0,0");
    EXPECT_EQ(FesteStellen(1e-9, 1), "0,0");
    EXPECT_EQ(FesteStellen(1e18, 1), "1000000000000000000,0");
}

TEST(Tausenderpunkte, GroupByThrees) {
    EXPECT_EQ(MitTausenderpunkten(0), "0");
    EXPECT_EQ(MitTausenderpunkten(999), "999");
    EXPECT_EQ(MitTausenderpunkten(1000), "1.000");
    EXPECT_EQ(MitTausenderpunkten(12345678), "12.345.678");
    EXPECT_EQ(MitTausenderpunkten(-123456), "-123.456");
    EXPECT_EQ(MitTausenderpunkten(-999), "-999");
}

TEST(Buchstaben, ChangeCaseWithUmlauts) {
    EXPECT_EQ(Kleinbuchstaben("ÄÖÜ ŠŒŽŸ ABC × Ω"), "äöü šœžÿ abc × Ω");
    EXPECT_EQ(Grossbuchstaben("äöüß šœžÿ abc ÷"), "ÄÖÜß ŠŒŽŸ ABC ÷");
    EXPECT_TRUE(GleichOhneGrossKlein("Börse", "BÖRSE"));
    EXPECT_FALSE(GleichOhneGrossKlein("Börse", "Borse"));
    EXPECT_FALSE(GleichOhneGrossKlein("a", "ab"));
    EXPECT_FALSE(GleichOhneGrossKlein("\xFF", "\xFE"));
}

TEST(Texte, FromOutsideAreCutAt8192BytesBehindAWholeLetter) {
    const std::string gerade(8192, 'x');
    EXPECT_EQ(Anzeigetext(gerade), gerade);
    EXPECT_EQ(Anzeigetext(gerade + "y"), std::string(8189, 'x') + "…");
    EXPECT_EQ(Anzeigetext(std::string(8188, 'x') + "ü" + gerade), std::string(8188, 'x') + "…");
    EXPECT_EQ(Anzeigetext(std::string(8187, 'x') + "ü" + gerade), std::string(8187, 'x') + "ü…");
    EXPECT_EQ(Anzeigetext(std::string(8186, 'x') + "\U0001F600" + gerade), std::string(8186, 'x') + "…");
    EXPECT_EQ(Anzeigetext(std::string(9000, '\x80')).size(), 8189u) << "no UTF-8 at all";
    EXPECT_EQ(Anzeigetext(""), "");
}

TEST(Texte, AreTrimmedAndSplit) {
    EXPECT_EQ(Getrimmt(" \t a b \t"), "a b");
    EXPECT_EQ(Getrimmt("   "), "");
    EXPECT_EQ(Teile("a,,b,", ','), (std::vector<std::string>{"a", "", "b", ""}));
    EXPECT_TRUE(Teile("", ',').empty());
}

}  // namespace
}  // namespace zek
