#include "supervision/titelluecken.h"

#include "datafiles/dateinamen.h"
#include "feed/tws/codes.h"

#include <algorithm>
#include <array>
#include <vector>

namespace zek {

namespace {

// Messages that leave a title without its live stream, in whole or in part.
constexpr std::array Ablehnungscodes{tws::code::ZuVieleTicker,
                                     tws::code::KeinKontrakt,
                                     tws::code::KeineFreigabe,
                                     tws::code::AnfrageUngueltig,
                                     tws::code::NichtAbonniert,
                                     tws::code::NichtAbonniertFuerApi,
                                     tws::code::TeilNichtAbonniert,
                                     tws::code::TeilNichtAbonniertFuerApi,
                                     tws::code::VerzoegertStattAbonniert,
                                     tws::code::NichtAbonniertNichtVerzoegert,
                                     tws::code::VerzoegerteAbgeschaltet,
                                     tws::code::Konkurrenz};
// Messages that concern a title's depth only.
constexpr std::array Tiefencodes{tws::code::ZuVieleTiefen, tws::code::TiefeUnbekannt, tws::code::TiefeAngehalten,
                                 tws::code::TiefeNichtUnterstuetzt};
// An answer that comes later isn't one to the subscription.
constexpr Dauer Antwortzeit = 30s;
// Waits that are over sooner become one line.
constexpr Dauer KurzesWarten = 2s;
// So long a new title may go without a tick until its recording counts from its switching on.
constexpr Dauer Anlaufzeit = 60s;

}  // namespace

// ---- which titles there are

Titelluecken::Titelstand* Titelluecken::Finde(const clTitelobjekt& titel) {
    const auto ort = titel_.find(titel.id);
    return ort == titel_.end() || ort->second.Name.empty() ? nullptr : &ort->second;
}

// Titles with the same base name write into the same files; the first one stands for all.
void Titelluecken::LerneKennen(clTitelobjekt& titel, Zeitpunkt jetzt) {
    Titelstand& stand = titel_[titel.id];
    if (!stand.Name.empty()) return;
    const std::string name = Dateinamensbildung(titel, kursart::Basisname);
    if (name.empty() || !namen_.try_emplace(name, titel.id).second) return;
    stand.Name = name;
    stand.Aktiv = offen_.IstOffen(name, ursache::TitelAktiv);
    stand.Weise = LiesWeise(offen_.Ergaenzung(name, std::string(ursache::TitelAktiv)));
    if (!stand.Aktiv && !titel.Aktiv()) offen_.Oeffne(name, ursache::TitelNichtAktiv, jetzt);
}

void Titelluecken::TitelGeladen(Zeitpunkt start) {
    geladen_ = true;
    Pruefe(start);
    VergissAlteNamen(start);
}

// Titles that were removed while the program didn't run.
void Titelluecken::VergissAlteNamen(Zeitpunkt start) {
    for (const std::string& name : offen_.Titel(ursache::TitelAktiv)) {
        if (namen_.contains(name)) continue;
        offen_.Schliesse(name, ursache::TitelAktiv, start);
        offen_.Oeffne(name, ursache::TitelNichtAktiv, start);
    }
}

void Titelluecken::Pruefe(Zeitpunkt jetzt) {
    if (!geladen_) return;
    aktive_ = 0;
    for (const auto& titel : bestand_.Titelliste) {
        LerneKennen(*titel, jetzt);
        Titelstand* stand = Finde(*titel);
        if (stand == nullptr) continue;
        PruefeTitel(*titel, *stand, jetzt);
        aktive_ += stand->Aktiv ? 1 : 0;
    }
    if (titel_.size() > bestand_.Titelliste.Anzahl()) EntferneVerschwundene(jetzt);
    PruefeWartende(jetzt);
    PruefeAblehnungen();
}

void Titelluecken::PruefeTitel(clTitelobjekt& titel, Titelstand& stand, Zeitpunkt jetzt) {
    if (!titel.Aktiv()) {
        if (stand.Aktiv) SchalteAus(titel.id, stand, jetzt);
        return;
    }
    if (!stand.Aktiv) {
        stand.Aktiv = true;
        stand.NeuSeit = jetzt;
        offen_.Schliesse(stand.Name, ursache::TitelNichtAktiv, jetzt);
    }
    if (stand.NeuSeit) return PruefeNeue(titel, stand, jetzt);
    const Aufzeichnungsweise weise = WeiseVon(titel);
    if (weise == stand.Weise) return;
    stand.Weise = weise;
    offen_.Schliesse(stand.Name, ursache::TitelAktiv, jetzt);
    offen_.Oeffne(stand.Name, ursache::TitelAktiv, jetzt, Weisetext(weise));
}

// A title's recording counts from its first tick, when that comes soon.
void Titelluecken::PruefeNeue(const clTitelobjekt& titel, Titelstand& stand, Zeitpunkt jetzt) {
    const std::optional<Zeitpunkt> erster = titel.ErsterKursZeitpunkt;
    if (!erster && jetzt - *stand.NeuSeit < Anlaufzeit) return;
    stand.Weise = WeiseVon(titel);
    offen_.Oeffne(stand.Name, ursache::TitelAktiv, erster.value_or(*stand.NeuSeit), Weisetext(stand.Weise));
    stand.NeuSeit.reset();
}

// It is off from the moment at which its stream was cancelled.
void Titelluecken::SchalteAus(std::int32_t id, Titelstand& stand, Zeitpunkt jetzt) {
    const bool abbestellt = stand.WartetSeit && stand.WartetGrund == ursache::AbonnementErneuert;
    const Zeitpunkt aus = abbestellt ? *stand.WartetSeit : jetzt;
    BeendeWarten(id, stand, aus);
    SchliesseAblehnung(stand, aus);
    abgelehnte_.erase(id);
    if (!stand.NeuSeit) offen_.Schliesse(stand.Name, ursache::TitelAktiv, aus);
    stand.NeuSeit.reset();
    stand.Aktiv = false;
    offen_.Oeffne(stand.Name, ursache::TitelNichtAktiv, aus);
}

void Titelluecken::EntferneVerschwundene(Zeitpunkt jetzt) {
    for (auto ort = titel_.begin(); ort != titel_.end();) {
        const std::int32_t id = ort->first;
        if (bestand_.Titelliste.Finde(id) != nullptr) {
            ++ort;
            continue;
        }
        if (ort->second.Aktiv) SchalteAus(id, ort->second, jetzt);
        if (!ort->second.Name.empty()) namen_.erase(ort->second.Name);
        abonnierte_.erase(id);
        wartende_.erase(id);
        ort = titel_.erase(ort);
    }
}

// ---- waiting for the first tick

void Titelluecken::LassWarten(std::int32_t id, Titelstand& stand, std::string_view grund, Zeitpunkt seit) {
    if (stand.WartetSeit) return;
    stand.WartetSeit = seit;
    stand.WartetGrund = grund;
    stand.WartetGeschrieben = false;
    wartende_.insert(id);
}

void Titelluecken::BeendeWarten(std::int32_t id, Titelstand& stand, Zeitpunkt bis) {
    if (!stand.WartetSeit) return;
    if (stand.WartetGeschrieben)
        offen_.Schliesse(stand.Name, stand.WartetGrund, bis);
    else if (AufMillisekunde(bis) > AufMillisekunde(*stand.WartetSeit))
        offen_.Schreibe(*stand.WartetSeit, bis, stand.Name, std::string(stand.WartetGrund));
    stand.WartetSeit.reset();
    wartende_.erase(id);
}

// True when it has come: the wait ended with it.
bool Titelluecken::ErsterKursIstDa(std::int32_t id, Titelstand& stand) {
    if (!stand.WartetSeit || !stand.Abonniert) return false;
    const clTitelobjekt* titel = bestand_.Titelliste.Finde(id);
    if (titel == nullptr || !titel->ErsterKursZeitpunkt) return false;
    BeendeWarten(id, stand, *titel->ErsterKursZeitpunkt);
    return true;
}

void Titelluecken::PruefeWartende(Zeitpunkt jetzt) {
    for (const std::int32_t id : std::vector(wartende_.begin(), wartende_.end())) {
        Titelstand& stand = titel_[id];
        if (bestand_.Titelliste.Finde(id) == nullptr || ErsterKursIstDa(id, stand)) continue;
        if (!stand.WartetGeschrieben && jetzt - *stand.WartetSeit > KurzesWarten) {
            offen_.Oeffne(stand.Name, stand.WartetGrund, *stand.WartetSeit);
            stand.WartetGeschrieben = true;
        }
    }
}

void Titelluecken::DurchgangBeginnt(Zeitpunkt jetzt) {
    durchgang_ = jetzt;
    for (auto& [id, stand] : titel_)
        if (stand.Aktiv && !stand.Name.empty()) LassWarten(id, stand, ursache::NochKeineKurse, jetzt);
}

void Titelluecken::Abonniert(const clTitelobjekt& titel, Zeitpunkt jetzt) {
    clTitelobjekt* objekt = bestand_.Titelliste.Finde(titel.id);
    if (objekt == nullptr) return;
    LerneKennen(*objekt, jetzt);
    objekt->ErsterKursZeitpunkt.reset();
    Titelstand* stand = Finde(titel);
    if (stand == nullptr) return;
    stand->Abonniert = true;
    stand->Abozeit = jetzt;
    abonnierte_.insert(titel.id);
    SchliesseAblehnung(*stand, jetzt);
    abgelehnte_.erase(titel.id);
    // While the titles are being loaded, all of them belong to the first pass.
    LassWarten(titel.id, *stand, ursache::NochKeineKurse, !geladen_ ? durchgang_.value_or(jetzt) : jetzt);
}

void Titelluecken::Abbestellt(const clTitelobjekt& titel, Zeitpunkt jetzt) {
    Titelstand* stand = Finde(titel);
    if (stand == nullptr || !stand->Abonniert) return;
    ErsterKursIstDa(titel.id, *stand);
    stand->Abonniert = false;
    abonnierte_.erase(titel.id);
    SchliesseAblehnung(*stand, jetzt);
    abgelehnte_.erase(titel.id);
    LassWarten(titel.id, *stand, ursache::AbonnementErneuert, jetzt);
}

void Titelluecken::VerbindungWeg(Zeitpunkt jetzt) {
    for (auto& [id, stand] : titel_) {
        ErsterKursIstDa(id, stand);
        stand.Abonniert = false;
        BeendeWarten(id, stand, jetzt);
        SchliesseAblehnung(stand, jetzt);
    }
    abgelehnte_.clear();
    abonnierte_.clear();
}

void Titelluecken::Beende(Zeitpunkt jetzt) {
    for (auto& [id, stand] : titel_) {
        if (stand.NeuSeit) offen_.Oeffne(stand.Name, ursache::TitelAktiv, *stand.NeuSeit, Weisetext(stand.Weise));
        ErsterKursIstDa(id, stand);
        BeendeWarten(id, stand, jetzt);
    }
}

std::vector<std::int32_t> Titelluecken::Laufende() const {
    std::vector<std::int32_t> ids;
    for (const auto& [id, stand] : titel_)
        if (stand.Abonniert && !stand.WartetSeit && stand.Abgelehnt.empty() && !stand.NeuSeit) ids.push_back(id);
    std::ranges::sort(ids);
    return ids;
}

const std::string* Titelluecken::Name(std::int32_t id) const {
    const auto ort = titel_.find(id);
    return ort == titel_.end() || ort->second.Name.empty() ? nullptr : &ort->second.Name;
}

// ---- refusals

void Titelluecken::Meldung(const clTitelobjekt& titel, int code, Zeitpunkt jetzt) {
    const bool kurse = std::ranges::find(Ablehnungscodes, code) != Ablehnungscodes.end();
    const bool tiefe = std::ranges::find(Tiefencodes, code) != Tiefencodes.end();
    Titelstand* stand = Finde(titel);
    if (stand == nullptr || (!kurse && !tiefe)) return;
    std::string& grund = kurse ? stand->Abgelehnt : stand->Tiefe;
    if (!grund.empty()) return;
    const bool antwort = code != tws::code::Konkurrenz && stand->Abonniert && jetzt - stand->Abozeit <= Antwortzeit;
    const Zeitpunkt ab = antwort ? stand->Abozeit : jetzt;
    grund = MitZusatz(kurse ? ursache::AbonnementAbgelehnt : ursache::TiefeAbgelehnt, "(" + std::to_string(code) + ")");
    if (kurse) {
        BeendeWarten(titel.id, *stand, ab);
        abgelehnte_.insert(titel.id);
        if (clTitelobjekt* objekt = bestand_.Titelliste.Finde(titel.id)) objekt->ErsterKursZeitpunkt.reset();
    }
    offen_.Oeffne(stand->Name, grund, ab);
}

// Depth has no sign that it has come after all; its refusal lasts until it is asked for anew.
void Titelluecken::SchliesseAblehnung(Titelstand& stand, Zeitpunkt bis) {
    for (std::string* grund : {&stand.Abgelehnt, &stand.Tiefe}) {
        if (!grund->empty()) offen_.Schliesse(stand.Name, *grund, bis);
        grund->clear();
    }
}

// A title that gets ticks all the same isn't refused.
void Titelluecken::PruefeAblehnungen() {
    for (const std::int32_t id : std::vector(abgelehnte_.begin(), abgelehnte_.end())) {
        const clTitelobjekt* titel = bestand_.Titelliste.Finde(id);
        if (titel == nullptr || !titel->ErsterKursZeitpunkt) continue;
        Titelstand& stand = titel_[id];
        offen_.Schliesse(stand.Name, stand.Abgelehnt, *titel->ErsterKursZeitpunkt);
        stand.Abgelehnt.clear();
        abgelehnte_.erase(id);
    }
}

}  // namespace zek
