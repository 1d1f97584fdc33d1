#include "luecken/handelszeiten.h"

#include "platform/datum.h"

#include <gtest/gtest.h>

namespace zek {
namespace {

Zeit Am(int tag, int stunde, int minute = 0) {
    return AufMillisekunde(ZeitpunktAus(2026, 11, tag, stunde, minute, 0));
}

std::string Normal(std::string_view text) {
    const auto zeiten = Handelszeiten::Aus(text);
    return zeiten ? zeiten->Text() : "unlesbar";
}

TEST(HandelszeitenTest, AWeekReadsAsItIsWritten) {
    EXPECT_EQ(Normal("Mo 09:00-17:30, Di 00:00-24:00"), "Mo 09:00-17:30, Di 00:00-24:00");
    EXPECT_EQ(Normal("Mo 23:00-Di 22:00,Di 23:00 - Mi 22:00"), "Mo 23:00-Di 22:00, Di 23:00-Mi 22:00");
    EXPECT_EQ(Normal("Mo 22:00-02:00"), "Mo 22:00-Di 02:00") << "an end before its beginning is on the next day";
    EXPECT_EQ(Normal("So 23:00-Mo 22:00"), "Mo 00:00-22:00, So 23:00-24:00");
    EXPECT_EQ(Normal("nie"), "nie");
    for (const char* text : {"", "Mo", "09:00-17:00", "Mo 9:00-17:00", "Mo 09:00-25:00", "Mo 09:60-17:00",
                             "Xx 09:00-17:00", "Mo 09:00-17:00, "})
        EXPECT_EQ(Normal(text), "unlesbar") << text;
}

TEST(HandelszeitenTest, TheRestIsWhatIsNotOpenFromWhateverMomentOn) {
    const auto zeiten = *Handelszeiten::Aus("So 23:00-Mo 22:00, Di 09:00-17:30");
    const Zeitspannen erwartet({{Am(15, 12), Am(15, 23)}, {Am(16, 22), Am(17, 9)}, {Am(17, 17, 30), Am(22, 23)}});
    EXPECT_EQ(zeiten.Ruhe(Am(15, 12), Am(23, 1)), erwartet);
    EXPECT_TRUE(zeiten.Ruhe(Am(16, 1), Am(16, 22)).IstLeer());
    EXPECT_EQ(zeiten.Ruhe(Am(17, 18), Am(17, 19)), Zeitspannen(Am(17, 18), Am(17, 19)));
    EXPECT_EQ(Handelszeiten::Aus("nie")->Ruhe(Am(16, 1), Am(16, 22)), Zeitspannen(Am(16, 1), Am(16, 22)));
}

TEST(HandelszeitenTest, WithoutBetterKnowledgeCurrenciesOpenOnSundayEvening) {
    EXPECT_EQ(Handelszeiten::Uebliche("DAX@EUREX_FUT_202612_EUR").Ruhe(Am(16, 0), Am(23, 0)),
              Zeitspannen(Am(21, 0), Am(23, 0)));
    EXPECT_EQ(Handelszeiten::Uebliche("EUR@IdealPro_Cash_USD").Ruhe(Am(16, 0), Am(23, 0)),
              Zeitspannen(Am(20, 23), Am(22, 23)));
}

}  // namespace
}  // namespace zek
