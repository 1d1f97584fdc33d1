// Bars of a history service gone wild: any date texts, prices and volumes. Whatever becomes of them is a record with a
// real date and finite numbers, in order and not behind the end that was asked for, and what the end time of the next
// request is made from can be read back.
//
// Input: lines "<close> <volume> <date text>"; the first byte chooses the kind and whether the title is an index.
#include "backfill/balken.h"
#include "platform/datum.h"
#include "platform/text.h"

#include <cmath>
#include <cstdlib>
#include <span>
#include <string_view>

namespace {

constexpr zek::Datum Anfang = 40000;
constexpr zek::Datum Ende = 45762.65;  // an afternoon that the kept bars lie on both sides of

std::string_view NaechstesWort(std::string_view& zeile) {
    const auto ende = std::min(zeile.find(' '), zeile.size());
    const std::string_view wort = zeile.substr(0, ende);
    zeile.remove_prefix(std::min(ende + 1, zeile.size()));
    return wort;
}

void Verlange(bool bedingung) {
    if (!bedingung) std::abort();
}

void PruefeZeit(zek::Zeitpunkt zeit) {
    Verlange(zeit > zek::TagAus(1899, 12, 31) && zeit < zek::TagAus(10000, 1, 1));
    const auto wieder = zek::LiesBalkendatum(zek::Endzeittext(zeit));
    Verlange(wieder.has_value());
    Verlange(zeit - wieder->Zeit >= zek::Dauer(0) && zeit - wieder->Zeit < std::chrono::seconds(1));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* daten, std::size_t groesse) {
    if (groesse == 0) return 0;
    std::string_view rest(reinterpret_cast<const char*>(daten) + 1, groesse - 1);
    const std::int32_t kursart = 1 + daten[0] % 3;
    const bool istIndex = daten[0] & 0x80;

    zek::Balkenpuffer puffer;
    puffer.Beginne(kursart, istIndex);
    while (!rest.empty()) {
        const auto ende = std::min(rest.find('\n'), rest.size());
        std::string_view zeile = rest.substr(0, ende);
        rest.remove_prefix(std::min(ende + 1, rest.size()));
        zek::tws::Bar balken;
        balken.close = zek::Zahlwert(NaechstesWort(zeile));
        balken.volume = zek::Zahlwert(NaechstesWort(zeile));
        balken.date = zeile;
        if (const auto zeit = zek::LiesBalkendatum(zeile)) PruefeZeit(zeit->Zeit);
        if (!zek::IstFertigmeldung(zeile)) puffer.Nimm(balken);
    }

    puffer.Schliesse(Ende);
    zek::Datum bisher = 0;
    for (const auto& satz : puffer.Saetze()) {
        PruefeZeit(zek::ZeitpunktAus(satz.Datum));
        Verlange(satz.Datum >= bisher && satz.Datum <= Ende);
        bisher = satz.Datum;
        Verlange(std::isfinite(satz.Kurs) && std::isfinite(satz.Volume) && satz.Volume >= 0);
        if (istIndex) Verlange(satz.Volume == 0);
    }
    zek::Gesamtreihe reihe;
    reihe.Uebernimm(puffer.Saetze(), Anfang);
    reihe.Uebernimm(puffer.Saetze(), Anfang);
    bisher = Anfang;
    for (const auto& satz : reihe.Abgeben(0)) {
        Verlange(satz.Datum >= bisher);
        bisher = satz.Datum;
    }
    return 0;
}
