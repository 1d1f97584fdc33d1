#include "feed/tws/feldleser.h"
#include "feed/tws/textflucht.h"

#include <gtest/gtest.h>

namespace zek::tws {
namespace {

std::string Klar(std::string_view roh, bool fluchten = true) {
    std::string puffer;
    return std::string(Klartext(roh, fluchten, puffer));
}

TEST(Klartext, PlainTextIsGivenBackInPlace) {
    const std::string_view roh = "Market data farm connection is OK:usfarm für";
    std::string puffer;
    EXPECT_EQ(Klartext(roh, true, puffer).data(), roh.data());
}

TEST(Klartext, EscapesBecomeLetters) {
    EXPECT_EQ(Klar("f\\u00fcr \\u00DCbung"), "für Übung");
    EXPECT_EQ(Klar("\\u20ac"), "€");
    EXPECT_EQ(Klar("\\ud83d\\ude00"), "😀");
    EXPECT_EQ(Klar("\\u0041\\u0042"), "AB");
}

TEST(Klartext, MalformedEscapesStay) {
    for (const char* text : {"\\u00f", "\\u00", "\\u", "\\", "\\x00fc", "\\u00gg", "\\ud83d", "\\ude00",
                             "\\ud83d\\u0041", "\\u0000", "\\u+0fc", "\\u-0fc", "\\U00fc"})
        EXPECT_EQ(Klar(text), std::string(text) == "\\ud83d\\u0041" ? "\\ud83dA" : text) << text;
}

TEST(Klartext, WhatIsNoUtf8IsLatin1) {
    EXPECT_EQ(Klar("M\xFCnchen"), "München");
    EXPECT_EQ(Klar("M\xFCnchen \\u00fc", true), "München ü");
    EXPECT_EQ(Klar("\xC3"), "Ã");
    EXPECT_EQ(Klar("\xED\xA0\x80"), "\xC3\xAD\xC2\xA0\xC2\x80");  // a surrogate is no UTF-8
    EXPECT_EQ(Klar("\xC0\xAF"), "\xC3\x80\xC2\xAF");              // nor is an overlong slash
    EXPECT_EQ(Klar("\xF4\x90\x80\x80").size(), 8u);               // nor a letter beyond the last
    EXPECT_EQ(Klar("\xF0\x9F\x98\x80"), "😀");
}

TEST(Klartext, WithoutEscapesABackslashIsOnlyABackslash) {
    EXPECT_EQ(Klar("f\\u00fcr", false), "f\\u00fcr");
}

TEST(Feldleser, EachNulEndsAField) {
    const std::string inhalt("1\0\0x\0", 5);
    Feldleser leser(inhalt);
    std::string_view feld;
    ASSERT_TRUE(leser.Naechstes(feld));
    EXPECT_EQ(feld, "1");
    ASSERT_TRUE(leser.Naechstes(feld));
    EXPECT_EQ(feld, "");
    ASSERT_TRUE(leser.Naechstes(feld));
    EXPECT_EQ(feld, "x");
    EXPECT_FALSE(leser.Naechstes(feld));
}

TEST(LiesZahl, TellsTheKindsOfNoNumberApart) {
    EXPECT_EQ(LiesZahl("").Art, Zahlart::Leer);
    EXPECT_EQ(LiesZahl("  ").Art, Zahlart::Leer);
    EXPECT_EQ(LiesZahl("?").Art, Zahlart::Unlesbar);
    EXPECT_EQ(LiesZahl("Infinity").Art, Zahlart::Ungesetzt);
    EXPECT_EQ(LiesZahl("1.7976931348623157E308").Art, Zahlart::Ungesetzt);
    EXPECT_EQ(LiesZahl("0").Art, Zahlart::Gueltig);
    EXPECT_EQ(LiesZahl("0x10").Art, Zahlart::Unlesbar);
    EXPECT_EQ(LiesZahl("1,234.5").Wert, 1234.5);
    EXPECT_EQ(LiesZahl("-1,234,567").Wert, -1234567);
    EXPECT_EQ(LiesZahl(std::string(1000, '1') + ",000").Art, Zahlart::Unlesbar);
}

TEST(LiesGanz, TakesWholeNumbersInAnyForm) {
    EXPECT_EQ(LiesGanz<int>(""), 0);
    EXPECT_EQ(LiesGanz<int>("-1"), -1);
    EXPECT_EQ(LiesGanz<int>("7.0"), 7);
    EXPECT_EQ(LiesGanz<int>("1e3"), 1000);
    EXPECT_EQ(LiesGanz<int>("1,000"), 1000);
    EXPECT_EQ(LiesGanz<int>("2147483647"), 2147483647);
    EXPECT_EQ(LiesGanz<int>("2147483648"), std::nullopt);
    EXPECT_EQ(LiesGanz<int>("7.5"), std::nullopt);
    EXPECT_EQ(LiesGanz<std::int64_t>("9223372036854775807"), 9223372036854775807);
    EXPECT_EQ(LiesGanz<std::int64_t>("9223372036854775808"), std::nullopt);
}

}  // namespace
}  // namespace zek::tws
