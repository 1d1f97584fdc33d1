// The sample titles as the definitions file holds them: all fields of all 35, byte for byte, against a table and a
// layout that are both written by hand here.
#include "rechner.h"
#include "session/dienst.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <cstring>
#include <string>

namespace zek {
namespace {

struct Zeile {
    const char *Symbol, *Boerse, *Typ, *Waehrung, *Laufzeit, *Katalog, *Multiplikator, *Dateiname;
};

constexpr std::array<Zeile, 35> Tabelle = {{
    {"EUR", "IdealPro", "Cash", "AUD", "", "Devisen", "", "EUR@IdealPro_Cash_AUD"},
    {"EUR", "IdealPro", "Cash", "CAD", "", "Devisen", "", "EUR@IdealPro_Cash_CAD"},
    {"EUR", "IdealPro", "Cash", "CHF", "", "Devisen", "", "EUR@IdealPro_Cash_CHF"},
    {"EUR", "IdealPro", "Cash", "CNY", "", "Devisen", "", "EUR@IdealPro_Cash_CNY"},
    {"EUR", "IdealPro", "Cash", "CZK", "", "Devisen", "", "EUR@IdealPro_Cash_CZK"},
    {"EUR", "IdealPro", "Cash", "GBP", "", "Devisen", "", "EUR@IdealPro_Cash_GBP"},
    {"EUR", "IdealPro", "Cash", "HKD", "", "Devisen", "", "EUR@IdealPro_Cash_HKD"},
    {"EUR", "IdealPro", "Cash", "HUF", "", "Devisen", "", "EUR@IdealPro_Cash_HUF"},
    {"EUR", "IdealPro", "Cash", "JPN", "", "Devisen", "", "EUR@IdealPro_Cash_JPN"},
    {"EUR", "IdealPro", "Cash", "MXN", "", "Devisen", "", "EUR@IdealPro_Cash_MXN"},
    {"EUR", "IdealPro", "Cash", "NOK", "", "Devisen", "", "EUR@IdealPro_Cash_NOK"},
    {"EUR", "IdealPro", "Cash", "NZD", "", "Devisen", "", "EUR@IdealPro_Cash_NZD"},
    {"EUR", "IdealPro", "Cash", "SEK", "", "Devisen", "", "EUR@IdealPro_Cash_SEK"},
    {"EUR", "IdealPro", "Cash", "SKD", "", "Devisen", "", "EUR@IdealPro_Cash_SKD"},
    {"EUR", "IdealPro", "Cash", "USD", "", "Devisen", "", "EUR@IdealPro_Cash_USD"},
    {"USD", "IdealPro", "Cash", "GBP", "", "Devisen", "", "USD@IdealPro_Cash_GBP"},
    {"USD", "IdealPro", "Cash", "CHF", "", "Devisen", "", "USD@IdealPro_Cash_CHF"},
    {"USD", "IdealPro", "Cash", "JPN", "", "Devisen", "", "USD@IdealPro_Cash_JPN"},
    {"USD", "IdealPro", "Cash", "HKD", "", "Devisen", "", "USD@IdealPro_Cash_HKD"},
    {"DAX", "EUREX", "FUT", "EUR", "202612", "Futures", "1", "DAX@EUREX_FUT_202612_EUR"},
    {"ESTX50", "EUREX", "FUT", "EUR", "202612", "Futures", "1", "ESTX50@EUREX_FUT_202612_EUR"},
    {"GBL", "EUREX", "FUT", "EUR", "202612", "Futures", "1", "GBL@EUREX_FUT_202612_EUR"},
    {"GBM", "EUREX", "FUT", "EUR", "202612", "Futures", "1", "GBM@EUREX_FUT_202612_EUR"},
    {"ES", "CME", "FUT", "USD", "202612", "Futures", "1", "ES@CME_FUT_202612_USD"},
    {"NQ", "CME", "FUT", "USD", "202612", "Futures", "1", "NQ@CME_FUT_202612_USD"},
    {"DAX", "EUREX", "IND", "", "", "Indizes", "", "DAX@EUREX_IND"},
    {"Tick-Nyse", "Nyse", "IND", "", "", "Indizes", "", "Tick-Nyse@Nyse_IND"},
    {"AAPL", "SMART", "STK", "USD", "", "US-Aktien", "", "AAPL@SMART_STK_USD"},
    {"AMGN", "SMART", "STK", "USD", "", "US-Aktien", "", "AMGN@SMART_STK_USD"},
    {"AMZN", "SMART", "STK", "USD", "", "US-Aktien", "", "AMZN@SMART_STK_USD"},
    {"CSCO", "SMART", "STK", "USD", "", "US-Aktien", "", "CSCO@SMART_STK_USD"},
    {"EBAY", "SMART", "STK", "USD", "", "US-Aktien", "", "EBAY@SMART_STK_USD"},
    {"INTC", "SMART", "STK", "USD", "", "US-Aktien", "", "INTC@SMART_STK_USD"},
    {"MSFT", "SMART", "STK", "USD", "", "US-Aktien", "", "MSFT@SMART_STK_USD"},
    {"YHOO", "SMART", "STK", "USD", "", "US-Aktien", "", "YHOO@SMART_STK_USD"},
}};

// The file's bytes, little-endian, value by value.
struct Bytes {
    std::string Alles;

    template <typename T>
    Bytes& Roh(T wert) {
        std::array<char, sizeof wert> bytes{};
        std::memcpy(bytes.data(), &wert, sizeof wert);
        Alles.append(bytes.data(), bytes.size());
        return *this;
    }
    Bytes& Text(const std::string& text) {
        Roh(std::uint16_t{8}).Roh(static_cast<std::uint16_t>(text.size()));
        Alles += text;
        return *this;
    }
    Bytes& Wahr(bool wert) { return Roh(std::uint16_t{11}).Roh(static_cast<std::uint16_t>(wert ? 0xFFFF : 0)); }
    Bytes& Null64() { return Roh(std::uint16_t{5}).Roh(std::uint64_t{0}); }
    Bytes& Null32() { return Roh(std::uint16_t{3}).Roh(std::uint32_t{0}); }
    Bytes& Null16() { return Roh(std::uint16_t{2}).Roh(std::uint16_t{0}); }
    Bytes& Liste(std::uint32_t anzahl, std::uint32_t untergrenze) {
        return Roh(std::uint16_t{0x200C}).Roh(std::uint16_t{1}).Roh(anzahl).Roh(untergrenze);
    }
};

std::string Erwartet() {
    Bytes b;
    b.Alles = "Tessaron ZEK IBDefs 01.00.00";
    b.Liste(35, 1);
    for (const Zeile& z : Tabelle) {
        b.Liste(17, 0).Text(z.Symbol).Text(z.Boerse).Text(z.Typ).Text(z.Laufzeit);
        b.Null64();                                                   // strike
        b.Text("").Text(z.Waehrung);                                  // right, currency
        b.Wahr(true).Wahr(true);                                      // active, bid and ask
        b.Text(z.Katalog).Null32();                                   // reserved flags
        b.Text(z.Dateiname).Null64();                                 // start time
        b.Wahr(false).Wahr(false);                                    // depth, negative prices
        b.Liste(3, 0).Null64();                                       // time correction
        b.Liste(3, 0).Text(z.Multiplikator).Wahr(false).Wahr(false);  // local symbol, total volume
        b.Null16();                                                   // backfill priority
        b.Wahr(false);                                                // total volume forbidden
    }
    return b.Alles;
}

TEST(BeispieltitelDatei, HoldsEveryFieldOfEveryTitleByteForByte) {
    hilfen::Rechner rechner;
    Dienst dienst(rechner.Maschine(), LiesDienstoptionen({"--beispieltitel"}), {});
    ASSERT_TRUE(dienst.Starte());
    const std::string datei = rechner.dateien.Inhalt("/zek/IB_Titel.Dat");
    const std::string erwartet = Erwartet();
    ASSERT_EQ(datei.size(), erwartet.size());
    for (std::size_t i = 0; i < datei.size(); ++i)
        ASSERT_EQ(datei[i], erwartet[i]) << "byte " << i << " behind ..." << erwartet.substr(i < 40 ? 0 : i - 40, 40);
}

// Every sample title is asked for at once, in the order of the table.
TEST(BeispieltitelDatei, EveryTitleIsSubscribedRightAway) {
    hilfen::Rechner rechner;
    Dienst dienst(rechner.Maschine(), LiesDienstoptionen({"--beispieltitel"}), {});
    ASSERT_TRUE(dienst.Starte());
    EXPECT_EQ(rechner.Zeilen("reqMktData("), 35u);
}

}  // namespace
}  // namespace zek
