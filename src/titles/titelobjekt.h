// The title: one instrument to record, with its contract, its options and the running state of its tick intake.
#pragma once

#include "platform/datum.h"
#include "titles/wertbaum.h"

#include <array>
#include <bit>
#include <cstdint>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>

namespace zek {

// A price that has never been received: bit pattern 0xFF1FC046, -2.123456e38. Always compared exactly.
inline constexpr float KeinWert = std::bit_cast<float>(std::uint32_t{0xFF1FC046});

class clTitelobjekt {
public:
    // Number of the title in this run; also the TWS request id of its market data. Changes from run to run.
    std::int32_t id = 0;
    std::string Symbol;          // the local symbol when IstLokalesSymbol
    std::string Börsenplatz;     // exchange, or "exchange\primary exchange"
    std::string Typ;             // security type: "STK", "FUT", "IND", "Cash" ...
    std::string Laufzeit;        // expiry
    double Basispreis = 0;       // strike; 0 for none
    std::string Ausübungsrecht;  // option right
    std::string Währung;
    Datum StartZeit = 0;  // time of day from which the title counts as active, a fraction of a day as in the file
    std::string Multiplikator;
    bool IstLokalesSymbol = false;
    std::string AccountName;              // account of a position; set by portfolio data
    std::int16_t BackfillPrioritaet = 0;  // -5 to 5
    bool TitelBidAskWartetaufLast = false;
    bool AufzeichnungspauseVerwenden = false;
    bool BidAsk = false;  // record bid and ask besides the last price
    bool UseMarkttiefe = false;
    bool NegativeWerteErlaubt = false;
    std::string Dateiname;   // file base name, formed once and then kept
    std::string Katalog;     // subfolder of the data folder; may be empty
    std::int32_t Flags = 0;  // reserved; travels through the definitions file unchanged
    bool NewLast = false;
    bool NewBid = false;
    bool NewAsk = false;
    float LastPrice = KeinWert;
    float BidPrice = KeinWert;
    float AskPrice = KeinWert;
    float LastVol = 0;
    float BidVol = 0;
    float AskVol = 0;
    float VorigerLast = KeinWert;
    float VorigerBid = KeinWert;
    float VorigerAsk = KeinWert;
    std::int16_t VorigesMDVorzeichen = 0;
    double LastPriceTimer = 0;  // this and the following timers: seconds since midnight
    double LastAskTimer = 0;
    double LastBidTimer = 0;
    double LastPriceVolTimer = 0;
    double LastBidVolTimer = 0;
    double LastAskVolTimer = 0;
    std::optional<Kalendertag> LastPriceDate;
    std::optional<Zeitpunkt> ErsterKursZeitpunkt;   // first tick since this was emptied
    std::optional<Zeitpunkt> LetzterKursZeitpunkt;  // last tick of this run
    double ZeitKorrektur = 0;                       // days as in the file, added to the time stamps of this title
    double LastGesamtVolume = 0;                    // markets exceed 32 bits in a day
    std::optional<Zeitpunkt> LastZeitstempel;       // unused
    double LastZeitstempelTimer = 0;                // unused
    bool UseGesamtVol = false;
    bool DontUseGesamtVol = false;

    clTitelobjekt() = default;
    clTitelobjekt(const clTitelobjekt&) = delete;
    clTitelobjekt& operator=(const clTitelobjekt&) = delete;

    // True when the data file of that kind was checked in this run. Valid kinds: 0 to 20 and -220 to -100;
    // any other throws std::out_of_range.
    void KonsistenzGecheckt(std::int32_t kursart, bool wert);
    bool KonsistenzGecheckt(std::int32_t kursart) const;

    // Writing false also forgets the previous prices and the sign of the signed volume.
    void Aktiv(bool wert);
    bool Aktiv() const { return aktiv_; }

    // Ask the processor for what a tick reads and writes of the title, and then for the text of its name. With
    // thousands of titles nothing of one is in a cache when its next tick comes; asked for together, the lines come
    // while the clock is read and the rules run.
    void HoleVor() const {
        const auto* zeile = reinterpret_cast<const char*>(&StartZeit);
        const auto* ende = reinterpret_cast<const char*>(this + 1);
        for (; zeile < ende; zeile += 64) __builtin_prefetch(zeile, 1);
    }
    void HoleNamenVor() const {
        __builtin_prefetch(Dateiname.data());
        __builtin_prefetch(Dateiname.data() + Dateiname.size());
    }

    // The contract in one line, items joined by ",".
    std::string GetTitelInfo() const;

    // Fills the title from a parameter list; shorter lists of older versions are accepted. Throws
    // WertbaumFehler at the first element of a wrong type; what was read before stays.
    void ReadAllPara(const Wert& para);
    Wert WriteAllPara() const;

private:
    std::array<bool, 21> gechecktPositiv_{};
    std::array<bool, 121> gechecktNegativ_{};  // index kursart + 220
    bool aktiv_ = false;
};

using Titelzeiger = std::shared_ptr<clTitelobjekt>;

// True when both titles describe the same contract; multiplier, catalog and IstLokalesSymbol play no part.
bool Verbindungsvergleich(const clTitelobjekt& a, const clTitelobjekt& b);

}  // namespace zek
