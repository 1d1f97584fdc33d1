#include "werkzeug/titelakten.h"

#include "datafiles/dateinamen.h"
#include "datafiles/leser.h"
#include "luecken/zeitspannen.h"
#include "platform/ohnefehler.h"
#include "platform/text.h"
#include "titles/titeldatei.h"
#include "werkzeug/werkzeug_befehle.h"

#include <algorithm>

namespace zek::werkzeug {

namespace {

// Folder of account values: they come when the broker sends them, and no backfill knows them.
constexpr std::string_view Kontoordner = "Kontodaten";
// A file up to this size may hold nothing but padding, which a crash can leave.
constexpr std::int64_t VielleichtLeer = DateikopfBytes + 64 * DatensatzBytes;

bool InOrdner(std::string_view pfad, std::string_view ordner) {
    const std::size_t ende = pfad.rfind('/');
    return ende != std::string_view::npos && pfad.substr(0, ende).ends_with("/" + std::string(ordner));
}

// The first or the last time stamp that is one.
Zeit Zeitstempel(Dateisystem& dateien, const std::string& pfad, bool erster) {
    Dateileser leser(dateien);
    if (leser.Oeffne(pfad) != Dateileser::Ergebnis::Offen) return KeineZeit;
    const std::int64_t anzahl = leser.Anzahl();
    for (std::int64_t i = 0; i < anzahl; ++i) {
        const auto satz = leser.Satz(erster ? i : anzahl - 1 - i);
        if (!satz) return KeineZeit;
        if (satz->Datum != 0) return AufMillisekunde(ZeitpunktAus(satz->Datum));
    }
    return KeineZeit;
}

bool HatSaetze(Dateisystem& dateien, const std::string& pfad) {
    const Dateihandle handle = dateien.Oeffne(pfad, Oeffnen::NurLesen);
    if (handle < 0) return false;
    const std::int64_t groesse = dateien.Groesse(handle);
    dateien.Schliesse(handle);
    return groesse > VielleichtLeer || Zeitstempel(dateien, pfad, true) != KeineZeit;
}

}  // namespace

Titelakten::Titelakten(Dateisystem& dateien, const std::string& datenordner, const std::string& programmordner)
    : dateien_(dateien) {
    for (const std::string& pfad : Datendateien(dateien, datenordner))
        if (!InOrdner(pfad, Kontoordner)) pfade_.emplace(Kleinbuchstaben(pfad.substr(pfad.rfind('/') + 1)), pfad);
    if (!programmordner.empty()) LiesDefinitionen(programmordner);
}

void Titelakten::LiesDefinitionen(const std::string& programmordner) {
    const Titeldatei datei = BetrachteTiteldatei(dateien_, programmordner);
    const auto* liste = std::get_if<Werteliste>(&datei.Titel.Inhalt);
    if (liste == nullptr) return;
    for (const Wert& para : liste->Elemente) {
        clTitelobjekt titel;
        OhneFehler("Titel aus den Definitionen lesen", [&] { titel.ReadAllPara(para); });
        titel.Dateiname = ImOrdner(titel.Dateiname);
        const std::string name = Dateinamensbildung(titel, kursart::Basisname);
        if (name.empty()) continue;
        korrekturen_.emplace(Kleinbuchstaben(name),
                             std::chrono::round<std::chrono::milliseconds>(DauerAusTagen(titel.ZeitKorrektur)));
        if (titel.Aktiv()) definierte_.emplace(Kleinbuchstaben(name), name);
    }
}

std::map<std::string, std::string> Titelakten::MitDateien() const {
    std::map<std::string, std::string> titel;
    for (const auto& [name, pfad] : pfade_) {
        const auto teile = ZerlegeDateiname(std::string_view(pfad).substr(pfad.rfind('/') + 1));
        if (teile && teile->Kursart != kursart::Position && HatSaetze(dateien_, pfad))
            titel.emplace(Kleinbuchstaben(teile->Basisname), teile->Basisname);
    }
    return titel;
}

Titelakte Titelakten::Von(const std::string& name, bool mitErstem, std::chrono::milliseconds korrektur) const {
    Titelakte akte;
    const std::string schluessel = Kleinbuchstaben(name);
    akte.Definiert = definierte_.contains(schluessel);
    if (const auto ort = korrekturen_.find(schluessel); ort != korrekturen_.end() && korrektur == 0ms)
        korrektur = ort->second;
    clTitelobjekt titel;
    titel.Dateiname = name;
    for (const std::int32_t art : TiteldateiArten) {
        std::string datei;
        DateinameAnhaengen(titel, art, datei);
        const auto pfad = pfade_.find(Kleinbuchstaben(datei));
        if (pfad == pfade_.end() || !HatSaetze(dateien_, pfad->second)) continue;
        akte.Dateien |= ArtVon(art);
        if (!mitErstem) continue;
        const Zeit erster = Zeitstempel(dateien_, pfad->second, true) - korrektur;
        akte.Erster = akte.Erster ? std::min(*akte.Erster, erster) : erster;
    }
    return akte;
}

Zeit Titelakten::LetzterSatz() const {
    Zeit letzter = KeineZeit;
    for (const auto& [name, pfad] : pfade_) letzter = std::max(letzter, Zeitstempel(dateien_, pfad, false));
    return letzter;
}

}  // namespace zek::werkzeug
