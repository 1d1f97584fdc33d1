#include "titles/titeldatei.h"

#include "titles/dateigriff.h"
#include "titles/vorfassung.h"

#include <algorithm>
#include <iterator>
#include <limits>
#include <span>
#include <vector>

namespace zek {

namespace {

std::span<const std::byte> Bytes(std::string_view text) {
    return std::as_bytes(std::span(text.data(), text.size()));
}

// No list of titles comes near it: 32767 of them take some 10 MB. What stands behind isn't read.
constexpr std::int64_t HoechsteLaenge = std::int64_t{64} << 20;
constexpr std::size_t Kopierblock = 65536;
constexpr std::string_view Kopieendung = ".defekt";

// Reads `anzahl` bytes, or those that there are, into `inhalt`. 0 or -errno.
int Lies(Dateisystem& dateien, Dateihandle handle, std::int64_t anzahl, std::vector<std::byte>& inhalt) {
    inhalt.resize(static_cast<std::size_t>(anzahl));
    const std::int64_t gelesen = LiesBis(dateien, handle, inhalt);
    inhalt.resize(static_cast<std::size_t>(std::max<std::int64_t>(gelesen, 0)));
    return gelesen < 0 ? static_cast<int>(gelesen) : 0;
}

// What a person could still rescue from the file; the next save overwrites the original. In blocks: a foreign file may
// be of any size.
// True when all of it stands there.
bool LegeKopieDaneben(Dateisystem& dateien, Dateihandle original, const std::string& pfad) {
    const Dateigriff kopie(dateien, pfad + std::string(Kopieendung), Oeffnen::Anlegen);
    if (kopie.Handle() < 0 || dateien.Suche(original, 0, Ab::Anfang) != 0) return false;
    std::vector<std::byte> block(Kopierblock);
    std::int64_t laenge = 0;
    for (;;) {
        const std::int64_t gelesen = LiesBis(dateien, original, block);
        if (gelesen < 0) return false;
        if (gelesen == 0) break;
        const auto stueck = std::span(block).first(static_cast<std::size_t>(gelesen));
        if (SchreibeGanz(dateien, kopie.Handle(), stueck) < 0) return false;
        laenge += gelesen;
    }
    return dateien.SetzeLaenge(kopie.Handle(), laenge) == 0;
}

Werteliste ListeAller(const Titelliste& titel) {
    Werteliste liste;
    liste.Untergrenze = 1;
    liste.Elemente.reserve(titel.Anzahl());
    for (const Titelzeiger& einer : titel) liste.Elemente.push_back(einer->WriteAllPara());
    return liste;
}

// Puts right what a save that was broken off has left. 0 or -errno.
int BringeInOrdnung(Dateisystem& dateien, Dateihandle datei, const std::string& pfad, bool mitKopie,
                    bool& zurueckgestellt) {
    Vorfassung vorfassung(dateien, pfad);
    auto befund = Vorfassung::Befund::Keine;
    if (const int fehler = vorfassung.Pruefe(datei, befund); fehler < 0) return fehler;
    if (befund == Vorfassung::Befund::AlteGilt) {
        if (mitKopie) LegeKopieDaneben(dateien, datei, pfad);
        if (const int fehler = vorfassung.StelleHer(datei); fehler < 0) return fehler;
        zurueckgestellt = true;
    }
    if (befund != Vorfassung::Befund::Keine) vorfassung.Verwirf();
    const std::int64_t anfang = dateien.Suche(datei, 0, Ab::Anfang);
    return anfang < 0 ? static_cast<int>(anfang) : 0;
}

int Schreibe(Dateisystem& dateien, Dateihandle datei, std::span<const std::byte> inhalt) {
    if (const auto f = dateien.Suche(datei, 0, Ab::Anfang); f < 0) return static_cast<int>(f);
    if (const int fehler = SchreibeGanz(dateien, datei, inhalt); fehler < 0) return fehler;
    return dateien.Leere(datei);
}

// Overwrites the file from its start on. 0, or -errno; the file is then as before, or will be at its next opening.
int Ersetze(Dateisystem& dateien, Dateihandle datei, const std::string& pfad, std::span<const std::byte> inhalt) {
    bool zurueckgestellt = false;
    if (const int fehler = BringeInOrdnung(dateien, datei, pfad, false, zurueckgestellt); fehler < 0) return fehler;
    Vorfassung vorfassung(dateien, pfad);
    if (const int fehler = vorfassung.Sichere(datei, inhalt); fehler < 0) return fehler;
    const int fehler = Schreibe(dateien, datei, inhalt);
    if (fehler == 0 || vorfassung.StelleHer(datei) == 0) vorfassung.Verwirf();
    return fehler;
}

Titeldatei Lies(Dateisystem& dateien, Dateihandle datei, const std::string& pfad, bool mitKopie) {
    using enum Titeldatei::Zustand;
    std::vector<std::byte> inhalt;
    const auto kopf = static_cast<std::int64_t>(TiteldateiKennung.size());
    if (const int fehler = Lies(dateien, datei, kopf, inhalt); fehler < 0) {
        return {NichtLesbar, SystemText(-fehler), {}};
    }
    if (inhalt.empty()) return {Leer, {}, {}};
    if (!std::ranges::equal(inhalt, Bytes(TiteldateiKennung))) {
        if (mitKopie) LegeKopieDaneben(dateien, datei, pfad);
        return {Fremd, {}, {}};
    }
    const std::int64_t groesse = dateien.Groesse(datei);
    if (groesse < 0) return {NichtLesbar, SystemText(static_cast<int>(-groesse)), {}};
    const std::int64_t rest = std::clamp<std::int64_t>(groesse - kopf, 0, HoechsteLaenge);
    if (const int fehler = Lies(dateien, datei, rest, inhalt); fehler < 0) {
        return {NichtLesbar, SystemText(-fehler), {}};
    }
    try {
        return {Gelesen, {}, LiesWertbaum(inhalt)};
    } catch (const WertbaumFehler& fehler) {
        const bool kopiert = mitKopie && LegeKopieDaneben(dateien, datei, pfad);
        const std::string kopie = std::string(TiteldateiName) + std::string(Kopieendung);
        return {Beschaedigt,
                std::string(fehler.what()) + (kopiert ? " Eine Kopie der Datei liegt daneben: „" + kopie + "“." : ""),
                {}};
    }
}

}  // namespace

Titeldatei LiesTiteldatei(Dateisystem& dateien, const std::string& ordner) {
    using enum Titeldatei::Zustand;
    const std::string pfad = ordner + std::string(TiteldateiName);
    const Dateigriff datei(dateien, pfad, Oeffnen::Anlegen);
    if (datei.Handle() < 0) return {NichtLesbar, SystemText(-datei.Handle()), {}};
    bool zurueckgestellt = false;
    if (const int fehler = BringeInOrdnung(dateien, datei.Handle(), pfad, true, zurueckgestellt); fehler < 0) {
        return {NichtLesbar, SystemText(-fehler), {}};
    }
    Titeldatei gelesen = Lies(dateien, datei.Handle(), pfad, true);
    gelesen.Zurueckgestellt = zurueckgestellt;
    return gelesen;
}

Titeldatei BetrachteTiteldatei(Dateisystem& dateien, const std::string& ordner) {
    const std::string pfad = ordner + std::string(TiteldateiName);
    const Dateigriff datei(dateien, pfad, Oeffnen::NurLesen);
    if (datei.Handle() < 0) return {Titeldatei::Zustand::NichtLesbar, SystemText(-datei.Handle()), {}};
    return Lies(dateien, datei.Handle(), pfad, false);
}

std::optional<std::string> SchreibeTiteldatei(Dateisystem& dateien, const std::string& ordner,
                                              const Titelliste& titel) {
    // The elements are counted in 16 bits.
    if (titel.Anzahl() > static_cast<std::size_t>(std::numeric_limits<std::int16_t>::max())) return "Überlauf";
    std::vector<std::byte> inhalt;
    std::ranges::copy(Bytes(TiteldateiKennung), std::back_inserter(inhalt));
    SchreibeWertbaum(titel.IstLeer() ? Wert{} : Wert{ListeAller(titel)}, inhalt);
    const std::string pfad = ordner + std::string(TiteldateiName);
    const Dateigriff datei(dateien, pfad, Oeffnen::Anlegen);
    if (datei.Handle() < 0) return SystemText(-datei.Handle());
    const int fehler = Ersetze(dateien, datei.Handle(), pfad, inhalt);
    return fehler < 0 ? std::optional(SystemText(-fehler)) : std::nullopt;
}

}  // namespace zek
