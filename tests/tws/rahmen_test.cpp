#include "feed/tws/rahmen.h"

#include "tws/protokoll.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <algorithm>
#include <cstring>

namespace zek::tws {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class RahmenTest : public ::testing::Test {
protected:
    // Lets bytes arrive, in as many portions as the free span asks for.
    void Kommt(std::string_view bytes) {
        while (!bytes.empty()) {
            const auto frei = puffer_.Frei();
            ASSERT_GE(frei.size(), Rahmenpuffer::MinFrei);
            const std::size_t anzahl = std::min(frei.size(), bytes.size());
            std::memcpy(frei.data(), bytes.data(), anzahl);
            puffer_.Angekommen(anzahl);
            bytes.remove_prefix(anzahl);
        }
    }

    std::vector<std::string> Alle() {
        std::vector<std::string> alle;
        while (const auto rahmen = puffer_.Naechster()) alle.push_back(Lesbar(rahmen->Inhalt()));
        return alle;
    }

    Rahmenpuffer puffer_;
};

TEST_F(RahmenTest, RealFramesByteForByte) {
    Kommt(
        Hex("00 00 00 0c  32 00 36 00 33 39 00 33 00 32 30 00"
            "00 00 00 16  34 36 00 36 00 33 39 00 34 35 00 31 36 33 31 37 30 32 34 39 30 00"));
    EXPECT_THAT(Alle(), ElementsAre("2|6|39|3|20|", "46|6|39|45|1631702490|"));
    EXPECT_EQ(puffer_.Offen(), 0u);
}

TEST_F(RahmenTest, AnEmptyBufferHasNoFrame) {
    EXPECT_THAT(Alle(), IsEmpty());
    EXPECT_FALSE(puffer_.Gestoert());
}

TEST_F(RahmenTest, AStreamCutAtAnyByteGivesTheSameFrames) {
    const std::string strom = Gerahmt("9|1|1|") + Gerahmt("2|6|39|3|20|") + Gerahmt("49|1|1678890000|");
    for (std::size_t schnitt = 0; schnitt <= strom.size(); ++schnitt) {
        Rahmenpuffer puffer;
        std::vector<std::string> alle;
        for (const auto teil : {std::string_view(strom).substr(0, schnitt), std::string_view(strom).substr(schnitt)}) {
            std::memcpy(puffer.Frei().data(), teil.data(), teil.size());
            puffer.Angekommen(teil.size());
            while (const auto rahmen = puffer.Naechster()) alle.push_back(Lesbar(rahmen->Inhalt()));
        }
        EXPECT_THAT(alle, ElementsAre("9|1|1|", "2|6|39|3|20|", "49|1|1678890000|")) << schnitt;
    }
}

TEST_F(RahmenTest, SingleBytesMakeFramesToo) {
    std::vector<std::string> alle;
    for (const char byte : Gerahmt("9|1|1|") + Gerahmt("2|6|39|3|20|")) {
        Kommt({&byte, 1});
        for (auto& rahmen : Alle()) alle.push_back(rahmen);
    }
    EXPECT_THAT(alle, ElementsAre("9|1|1|", "2|6|39|3|20|"));
}

TEST_F(RahmenTest, ALengthOfZeroEndsTheStream) {
    Kommt(Gerahmt("9|1|1|") + Hex("00 00 00 00") + Gerahmt("9|1|2|"));
    EXPECT_THAT(Alle(), ElementsAre("9|1|1|"));
    EXPECT_TRUE(puffer_.Gestoert());
    Kommt(Gerahmt("9|1|3|"));
    EXPECT_THAT(Alle(), IsEmpty());
}

TEST_F(RahmenTest, ALengthAboveTheLimitEndsTheStreamAtOnce) {
    for (const char* laenge : {"01 00 00 00", "7f ff ff ff", "ff ff ff ff", "80 00 00 00"}) {
        Rahmenpuffer puffer;
        const std::string bytes = Hex(laenge);
        std::memcpy(puffer.Frei().data(), bytes.data(), bytes.size());
        puffer.Angekommen(bytes.size());
        EXPECT_FALSE(puffer.Naechster());
        EXPECT_TRUE(puffer.Gestoert()) << laenge;
    }
}

TEST_F(RahmenTest, TheLongestFrameIsTakenIn) {
    std::string inhalt(MaxInhalt, 'x');
    inhalt.back() = '\0';
    Kommt(MitLaenge(inhalt));
    const auto rahmen = puffer_.Naechster();
    ASSERT_TRUE(rahmen);
    EXPECT_EQ(rahmen->Inhalt(), inhalt);
}

TEST_F(RahmenTest, AClaimedLengthTakesNoMemory) {
    Kommt(Hex("00 ff ff ff 31 00"));
    EXPECT_THAT(Alle(), IsEmpty());
    EXPECT_FALSE(puffer_.Gestoert());
    puffer_.Frei();
    EXPECT_EQ(puffer_.Speicher(), Rahmenpuffer::Anfangsgroesse);
}

TEST_F(RahmenTest, MemoryStaysFlatOverAMillionFrames) {
    const std::string strom = Gerahmt("1|6|4|1|185.5|300|1|") + Gerahmt("2|6|4|0|300|");
    for (int i = 0; i < 500'000; ++i) {
        Kommt(strom);
        ASSERT_TRUE(puffer_.Naechster());
        ASSERT_TRUE(puffer_.Naechster());
    }
    EXPECT_EQ(puffer_.Speicher(), Rahmenpuffer::Anfangsgroesse);
}

TEST_F(RahmenTest, AfterAnEnormousFrameTheBufferBecomesSmallAgain) {
    Kommt(MitLaenge(std::string(5'000'000, 'x')));
    EXPECT_EQ(Alle().size(), 1u);
    Kommt(Gerahmt("9|1|1|"));
    EXPECT_THAT(Alle(), ElementsAre("9|1|1|"));
    EXPECT_EQ(puffer_.Speicher(), Rahmenpuffer::Anfangsgroesse);
}

TEST_F(RahmenTest, AFrameInHandStaysInPlaceWhileTheBufferGoesOn) {
    Kommt(Gerahmt("46|6|1|45|gehalten|"));
    {
        const auto gehalten = puffer_.Naechster();
        ASSERT_TRUE(gehalten);
        const std::string vorher(gehalten->Inhalt());
        const char* ort = gehalten->Inhalt().data();
        for (int i = 0; i < 200'000; ++i) {
            Kommt(Gerahmt("1|6|4|1|185.5|300|1|"));
            ASSERT_THAT(Alle().size(), 1u);
        }
        EXPECT_EQ(gehalten->Inhalt(), vorher);
        EXPECT_EQ(gehalten->Inhalt().data(), ort);
        EXPECT_LE(puffer_.Speicher(), 2 * Rahmenpuffer::Anfangsgroesse);
    }
    EXPECT_EQ(puffer_.Speicher(), Rahmenpuffer::Anfangsgroesse);
}

TEST_F(RahmenTest, SeveralFramesInHandAreLetGoInAnyOrder) {
    std::vector<std::optional<Rahmen>> gehalten(4);
    for (std::size_t i = 0; i < gehalten.size(); ++i) {
        Kommt(Gerahmt("46|6|1|45|" + std::to_string(i) + std::string(100'000, 'x') + "|"));
        auto rahmen = puffer_.Naechster();
        ASSERT_TRUE(rahmen);
        gehalten[i].emplace(std::move(*rahmen));
    }
    for (const std::size_t i : {2u, 0u, 3u, 1u}) {
        EXPECT_EQ(Lesbar(gehalten[i]->Inhalt()).substr(0, 11), "46|6|1|45|" + std::to_string(i));
        gehalten[i].reset();
    }
    Kommt(Gerahmt("9|1|1|"));
    EXPECT_THAT(Alle(), ElementsAre("9|1|1|"));
}

}  // namespace
}  // namespace zek::tws
