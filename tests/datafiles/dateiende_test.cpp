// The cut of zero records at a file's end, beside a slow walk that goes by the letter of the rule: read the last
// record, step back over it and the one before, and so on.
#include "datafiles/dateinamen.h"
#include "datafiles/vokabular.h"
#include "hilfen/fehlerwaechter.h"
#include "platform/dateisystem_posix.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>
#include <random>

namespace zek {
namespace {

using namespace hilfen;

const std::string Endedatei = "/d/ES.ZEK";
constexpr int Blocksaetze = 4096;

bool LangsamBereinigen(clDateiIO& datei, const std::string& name) {
    const std::int64_t groesse = datei.FileSize().Bytes();
    const std::int64_t anzahl = (groesse - 856) / 16;
    if (anzahl < 1) return false;
    datei.SeekAbsolute(Dateiposition::AusBytes(groesse - 16));
    bool gefunden = false;
    for (std::int64_t i = 0; i < anzahl; ++i) {
        KursDatensatz satz;
        if (datei.Lies(std::as_writable_bytes(std::span(&satz, 1))) != 16) break;
        if (satz.Datum != 0.0) break;
        datei.SeekRelative(-32);
        gefunden = true;
    }
    if (!gefunden) return false;
    datei.SetzeDateiEnde();
    datei.CloseFile();
    datei.OpenFile(name, false);
    return true;
}

struct Ausgang {
    bool Geschnitten = false;
    std::string Inhalt;
    bool Offen = false;
    bool operator==(const Ausgang&) const = default;
};
void PrintTo(const Ausgang& ausgang, std::ostream* aus) {
    *aus << (ausgang.Geschnitten ? "cut to " : "left at ") << ausgang.Inhalt.size() << " bytes";
}

template <typename Bereinigen>
Ausgang Nach(const std::string& inhalt, Bereinigen bereinigen) {
    RamDateisystem ram;
    ram.LegeDateiAn(Endedatei, inhalt);
    clDateiIO datei(ram);
    datei.OpenFile(Endedatei, false);
    const bool geschnitten = bereinigen(datei, Endedatei);
    return {geschnitten, ram.Inhalt(Endedatei), datei.IsOpen()};
}

void ErwarteGleich(const std::string& inhalt, const std::string& was) {
    EXPECT_EQ(Nach(inhalt, DateiEndeBereinigen), Nach(inhalt, LangsamBereinigen)) << was;
}

// `gut` records with a date, then `null` zero records.
std::string Datei(int gut, int null) {
    std::string datei = DaxKopf();
    for (int i = 0; i < gut; ++i) datei += Satzbytes(46000 + i, 100, 5);
    return datei + Nullen(static_cast<std::size_t>(null) * 16);
}

TEST(Dateiende, AFileOfAnyShapeIsCutWhereTheSlowWalkCutsIt) {
    std::mt19937 wuerfel(20261116);
    const auto bis = [&](int hoechstens) {
        return static_cast<int>(wuerfel() % static_cast<unsigned>(hoechstens + 1));
    };
    for (int fall = 0; fall < 3000; ++fall) {
        std::string inhalt = DaxKopf();
        for (int stueck = bis(4); stueck > 0; --stueck) {
            for (int i = bis(3); i > 0; --i) inhalt += Satzbytes(46000 + i, 100, 5);
            // Zero in all its forms: the date alone decides, and a negative zero is one too.
            for (int i = bis(3); i > 0; --i) inhalt += Satzbytes(bis(1) ? 0.0 : -0.0, static_cast<float>(bis(1)), 0);
        }
        inhalt += Nullen(static_cast<std::size_t>(bis(3)) * 16);
        if (bis(9) == 0) inhalt += std::string(static_cast<std::size_t>(bis(15)), bis(1) ? 'x' : '\0');  // torn
        if (bis(19) == 0) inhalt.resize(static_cast<std::size_t>(bis(900)));
        ErwarteGleich(inhalt, "case " + std::to_string(fall));
    }
}

TEST(Dateiende, TheBordersOfABlockMakeNoDifference) {
    for (const int mal : {1, 2})
        for (const int daneben : {-2, -1, 0, 1, 2})
            for (const int gut : {0, 1, Blocksaetze}) {
                const int null = mal * Blocksaetze + daneben;
                ErwarteGleich(Datei(gut, null), std::to_string(gut) + " good, " + std::to_string(null) + " zero");
            }
}

TEST(Dateiende, ALoneGoodRecordInALongTailIsTheNewEnd) {
    for (const int dahinter : {0, 1, Blocksaetze - 1, Blocksaetze, Blocksaetze + 1}) {
        const std::string kopf = Datei(1, Blocksaetze) + Satzbytes(46001, 1, 1);
        const auto ergebnis = Nach(kopf + Nullen(static_cast<std::size_t>(dahinter) * 16), DateiEndeBereinigen);
        EXPECT_EQ(ergebnis, (Ausgang{dahinter > 0, kopf, true})) << dahinter;
    }
}

TEST(Dateiende, AllZeroRecordsOfAnyNumberLeave840Bytes) {
    for (const int null : {1, 5, Blocksaetze, 3 * Blocksaetze + 1})
        EXPECT_EQ(Nach(Datei(0, null), DateiEndeBereinigen), (Ausgang{true, DaxKopf().substr(0, 840), true})) << null;
}

TEST(Dateiende, AGoodLastRecordCostsOneReadOf16Bytes) {
    RamDateisystem ram;
    StoerDateisystem dateien(ram);
    ram.LegeDateiAn(Endedatei, Datei(Blocksaetze, 0));
    clDateiIO datei(dateien);
    datei.OpenFile(Endedatei, false);
    dateien.VergissProtokoll();
    EXPECT_FALSE(DateiEndeBereinigen(datei, Endedatei));
    EXPECT_EQ(dateien.Muster(), "Groesse Suche Lies");
    EXPECT_EQ(dateien.Protokoll().back().Ergebnis, 16);
}

// 160 MB were 12.8 seconds of blindness once.
TEST(Dateiende, ALongTailCostsFewCalls) {
    RamDateisystem ram;
    StoerDateisystem dateien(ram);
    ram.LegeDateiAn(Endedatei, Datei(3, 250 * Blocksaetze));  // 16 MB
    clDateiIO datei(dateien);
    datei.OpenFile(Endedatei, false);
    dateien.VergissProtokoll();
    EXPECT_TRUE(DateiEndeBereinigen(datei, Endedatei));
    EXPECT_EQ(ram.Inhalt(Endedatei), Datei(3, 0));
    EXPECT_LE(dateien.Anzahl(), 2U * 252 + 8);
}

TEST(Dateiende, WhateverCallFailsOrIsShortNoRecordGoes) {
    ErwarteVerschluckte("Nullsätze suchen");
    ErwarteVerschluckte("Datei nach Nullsätzen öffnen");
    const std::string inhalt = Datei(2, Blocksaetze + 7);
    for (std::uint64_t n = 1; n <= 14; ++n)
        for (const bool kurz : {false, true}) {
            RamDateisystem ram;
            ram.LegeDateiAn(Endedatei, inhalt);
            StoerDateisystem dateien(ram);
            clDateiIO datei(dateien);
            datei.OpenFile(Endedatei, false);
            if (kurz)
                dateien.Stoere({.Ab = n, .Anzahl = 1, .Fehler = 0, .Kurz = 8});
            else
                dateien.StoereNten(n, EIO);
            DateiEndeBereinigen(datei, Endedatei);
            const std::string nachher = ram.Inhalt(Endedatei);
            EXPECT_TRUE(nachher == inhalt || nachher == Datei(2, 0)) << n << " " << kurz << ": " << nachher.size();
        }
}

TEST(Dateiende, AFileThatEndsBeforeItsSizeIsNotCut) {
    class Verkuerzt : public RamDateisystem {
    public:
        std::int64_t Groesse(Dateihandle handle) override { return RamDateisystem::Groesse(handle) + 160; }
    } ram;
    ram.LegeDateiAn(Endedatei, Datei(3, 2));
    clDateiIO datei(ram);
    datei.OpenFile(Endedatei, false);
    EXPECT_FALSE(DateiEndeBereinigen(datei, Endedatei));
    EXPECT_EQ(ram.Inhalt(Endedatei), Datei(3, 2));
}

// Real sparse files, which take a few blocks on disk.
class GrossesDateiende : public testing::Test {
protected:
    GrossesDateiende() {
        std::string vorlage = (std::filesystem::temp_directory_path() / "zek-ende-XXXXXX").string();
        ordner = ::mkdtemp(vorlage.data());
        std::filesystem::create_directory(ordner / "K");
        modul.Datenordner = ordner.string();
        MacheDax(titel);
        titel.Katalog = "K";
    }
    ~GrossesDateiende() override { std::filesystem::remove_all(ordner); }

    std::string Pfadvon(std::int32_t art) { return Dateipfad(modul, posix, titel, art); }
    // Header, nothing but zero records, one good one as number `gut`, and zero records up to `anzahl`.
    void Lege(std::int32_t art, std::int64_t gut, std::int64_t anzahl) {
        clDateiIO datei(posix);
        datei.OpenFile(Pfadvon(art), false);
        datei.WriteNewHeader(titel, art);
        const std::string satz = Satzbytes(46000, 1, 1);
        datei.SeekAbsolute(Dateiposition::AusBytes(856 + gut * 16));
        datei.Schreibe(std::as_bytes(std::span(satz)));
        datei.SeekAbsolute(Dateiposition::AusBytes(856 + anzahl * 16));
        datei.SetzeDateiEnde();
    }
    void Tick(std::int32_t art) { schreiber.DatensatzAnhaengen(titel, art, 9, 1, false, welt.Jetzt()); }
    // The last record, and how many there are with it.
    std::pair<std::int64_t, float> Ende(std::int32_t art) {
        clDateiIO datei(posix);
        datei.OpenFile(Pfadvon(art), true);
        const std::int64_t groesse = datei.FileSize().Bytes();
        KursDatensatz satz;
        datei.SeekAbsolute(Dateiposition::AusBytes(groesse - 16));
        datei.Lies(std::as_writable_bytes(std::span(&satz, 1)));
        return {(groesse - 856) / 16, satz.Kurs};
    }

    PosixDateisystem posix;
    std::filesystem::path ordner;
    VirtuelleWelt welt;
    TestStatus status;
    IBModul modul;
    clTitelobjekt titel;
    Datensatzschreiber schreiber{modul, posix, status, [](clTitelobjekt&) { return 0.0F; }};
};

constexpr std::int64_t VierGiB = (std::int64_t{1} << 32) / 16;  // records

TEST_F(GrossesDateiende, ATailThatLiesBeyond4GiBOrAcrossThemGivesItsPlaceToTheRecord) {
    int art = kursart::BriefTiefe(1);
    for (const std::int64_t gut : {VierGiB - 60'000, VierGiB - 54, VierGiB - 53, VierGiB, VierGiB + 10'000}) {
        Lege(art, gut, VierGiB + 20'000);
        Tick(art);
        EXPECT_EQ(Ende(art), std::pair(gut + 2, 9.0F)) << gut;
        --art;
    }
    EXPECT_TRUE(status.Eintraege.empty());
}

TEST_F(GrossesDateiende, ALargeFileBehindASmallOneInTheSameRunIsPutRightToo) {
    Lege(kursart::Geld, 2, 5);
    Tick(kursart::Geld);
    EXPECT_EQ(Ende(kursart::Geld), std::pair(std::int64_t{4}, 9.0F));
    Lege(kursart::Brief, VierGiB + 100, VierGiB + 200);
    Tick(kursart::Brief);
    EXPECT_EQ(Ende(kursart::Brief), std::pair(VierGiB + 102, 9.0F));
}

}  // namespace
}  // namespace zek
