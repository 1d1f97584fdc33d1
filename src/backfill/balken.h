// Bars of the history service become records; the records of all requests become the series of one kind.
#pragma once

#include "datafiles/datensatz.h"
#include "feed/tws/tws.h"
#include "platform/datum.h"
#include "titles/titelobjekt.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace zek {

// The date text of a bar, taken apart.
struct Balkenzeit {
    Zeitpunkt Zeit{};
    std::string_view Zone;  // the third piece, into the text read; may be empty
};

// Reads "yyyymmdd hh:mm:ss" with any number of blanks between and a zone behind it or not, "yyyymmdd-hh:mm:ss",
// "yyyymmdd" and "yyyy-mm-dd hh:mm:ss". The time is taken as delivered: no zone is applied. Empty when the text is
// none of these or names no day and time of the calendar.
std::optional<Balkenzeit> LiesBalkendatum(std::string_view text);

// True for the closing pseudo bar of older services, "finished-<start>-<end>".
bool IstFertigmeldung(std::string_view datumtext);

// The end time of a history request: "" for 0 (now), otherwise "yyyymmdd hh:mm:ss".
std::string Endzeittext(std::optional<Zeitpunkt> ende);

// What to show, by kind: "TRADES", "ASK" or "BID".
std::string_view Historienart(std::int32_t kursart);

// True for the security type of an index, in any letter case.
bool IstIndextitel(const clTitelobjekt& titel);

// The bars of one request. A traded series keeps bars with turnover, quote series and indices keep changes of the
// close only.
class Balkenpuffer {
public:
    // Far above what one answer can hold; further bars of a service gone wild are dropped.
    static constexpr std::size_t Hoechstzahl = 1'000'000;

    void Beginne(std::int32_t kursart, bool istIndex);
    // Takes close and volume of a bar. Bars whose date or close can't be read are dropped.
    void Nimm(const tws::Bar& balken);
    // Puts an end to the request: drops what is newer than `bis`, brings the rest into order and keeps what the kind
    // keeps. Bars beside the span that was asked for would let the merge replace what the service never answered for.
    void Schliesse(Datum bis);

    // Ascending; only behind Schliesse.
    std::span<const KursDatensatz> Saetze() const { return saetze_; }
    // Bars that Schliesse dropped for being too new.
    std::size_t ZuNeu() const { return zuNeu_; }
    // Zone behind the date of the last index bar, "" when it had none. Stored, used by nothing.
    const std::string& LastTimezone() const { return zone_; }

private:
    void Verdichte();

    std::int32_t kursart_ = 0;
    bool istIndex_ = false;
    std::vector<KursDatensatz> saetze_;  // until Schliesse the Volume is as delivered, below 0 for none
    std::size_t zuNeu_ = 0;
    std::string zone_;
};

// The series of one kind. Requests go from new to old, so it fills from its newest end downwards.
class Gesamtreihe {
public:
    void Leere() { saetze_.clear(); }
    // Takes the bars of one request from the newest to the oldest and stops at the first one before `start`. Bars
    // that aren't older than what earlier requests gave are passed over, so that the series stays in order also
    // when a service answers beside the span it was asked for.
    void Uebernimm(std::span<const KursDatensatz> puffer, Datum start);
    std::size_t Anzahl() const { return saetze_.size(); }
    // Of `von` to `bis`, both included.
    std::size_t Anzahl(Datum von, Datum bis) const;

    // The finished series, ascending, with `zeitKorrektur` (days) added to every Datum. Leaves this empty.
    std::vector<KursDatensatz> Abgeben(double zeitKorrektur);

private:
    std::vector<KursDatensatz> saetze_;  // the newest first
};

}  // namespace zek
