#include "bestand/titeluebersicht.h"

#include "datafiles/dateinamen.h"
#include "datafiles/leser.h"
#include "platform/text.h"
#include "titles/prioritaet.h"

#include <algorithm>

namespace zek {

namespace {

constexpr std::string_view Kontokatalog = "Kontodaten";
constexpr const char* Aktivmarke = " ";

Schaltstand StandVon(const clTitelobjekt& titel) {
    if (!titel.Aktiv()) return Schaltstand::Inaktiv;
    return titel.BidAsk ? Schaltstand::MitGeldBrief : Schaltstand::NurBezahlt;
}

}  // namespace

std::string KontodateiordnerImDatenordner(const IBModul& modul) {
    const std::string& ordner = modul.Datenordner;
    return ordner + (ordner.ends_with('/') ? "" : "/") + std::string(Kontokatalog) + "/";
}

std::string Kontodateiordner(const IBModul& modul) {
    const std::string_view eigener = Kontodatenordner(modul);
    return eigener.empty() ? KontodateiordnerImDatenordner(modul) : std::string(eigener);
}

bool IstDatendatei(const Verzeichniseintrag& eintrag) {
    const std::string_view name = eintrag.Name;
    return !eintrag.IstOrdner && name.size() >= Dateiendung.size() &&
           GleichOhneGrossKlein(name.substr(name.size() - Dateiendung.size()), Dateiendung);
}

Uebersichtszeile ZeileVon(clTitelobjekt& titel) {
    Uebersichtszeile zeile;
    zeile.Titelnummer = titel.id;
    zeile.Stand = StandVon(titel);
    zeile.Markierung = titel.Aktiv() ? Aktivmarke : "";
    zeile.Name = Dateinamensbildung(titel, kursart::Basisname);
    zeile.Symbol = titel.Symbol;
    zeile.Boerse = titel.Börsenplatz;
    zeile.Katalog = titel.Katalog;
    zeile.Fett = titel.BackfillPrioritaet >= 1;
    zeile.Hinweis = "Backfill Priorität " + Prioritaetstext(titel.BackfillPrioritaet, false);
    return zeile;
}

std::vector<Uebersichtszeile> TitelVon(const Titelliste& liste, std::string_view katalog, bool alle) {
    std::vector<Uebersichtszeile> zeilen;
    for (const Titelzeiger& titel : liste)
        if (alle || GleichOhneGrossKlein(titel->Katalog, katalog)) zeilen.push_back(ZeileVon(*titel));
    return zeilen;
}

std::vector<Uebersichtszeile> Kontodateien(const IBModul& modul, Dateisystem& dateien) {
    std::vector<Uebersichtszeile> zeilen;
    const std::string ordner = Kontodateiordner(modul);
    for (const Verzeichniseintrag& eintrag : dateien.Liste(ordner)) {
        if (!IstDatendatei(eintrag)) continue;
        Dateileser leser(dateien);
        const auto ergebnis = leser.Oeffne(ordner + eintrag.Name);
        if (ergebnis == Dateileser::Ergebnis::NichtLesbar || ergebnis == Dateileser::Ergebnis::ZuKurz) continue;
        if (leser.Groesse() <= DateikopfBytes) continue;
        Uebersichtszeile& zeile = zeilen.emplace_back();
        zeile.Dateiname = eintrag.Name;
        zeile.Stand = modul.Einstellungen.KontenDatenAufzeichnen ? Schaltstand::NurBezahlt : Schaltstand::Inaktiv;
        zeile.Name = FeldText(leser.Kopf().LangSymbol);
        zeile.Symbol = FeldText(leser.Kopf().KurzSymbol);
        zeile.Katalog = Kontokatalog;
    }
    std::ranges::sort(zeilen, {}, &Uebersichtszeile::Dateiname);
    return zeilen;
}

}  // namespace zek
