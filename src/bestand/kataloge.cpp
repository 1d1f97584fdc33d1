#include "bestand/kataloge.h"

#include "bestand/titeluebersicht.h"

#include "datafiles/dateinamen.h"
#include "datafiles/einarbeitungsjournal.h"
#include "datafiles/verschieben.h"
#include "platform/ohnefehler.h"
#include "platform/text.h"

#include <algorithm>
#include <utility>

namespace zek {

namespace {
// The first kinds of a move; behind them stand those of market depth.
constexpr std::size_t ArtenOhneTiefe = 6;
constexpr std::int32_t NameVonBezahlt = 4;
}  // namespace

std::vector<std::string> Kataloge::Eintraege() const {
    std::vector<std::string> eintraege{std::string(KatalogAlleTitel)};
    const auto& namen = um_.Titel.Katalogliste.Namen();
    eintraege.insert(eintraege.end(), namen.begin(), namen.end());
    if (GibtKontodaten()) eintraege.emplace_back(KatalogKontodaten);
    return eintraege;
}

bool Kataloge::GibtKontodaten() const {
    if (um_.GibtKontotitel() || um_.Modul.Einstellungen.KontenDatenAufzeichnen) return true;
    return std::ranges::any_of(um_.Dateien.Liste(KontodateiordnerImDatenordner(um_.Modul)), IstDatendatei);
}

std::size_t Kataloge::Gewaehlter(const std::vector<std::string>& eintraege, std::string_view gemerkt) {
    if (gemerkt.empty()) return 0;
    for (std::size_t i = 1; i < eintraege.size(); ++i)
        if (GleichOhneGrossKlein(eintraege[i], gemerkt)) return i;
    return 0;
}

std::vector<std::string> Kataloge::Ziele(const std::vector<std::string>& eintraege, std::string_view jetziger) {
    std::vector<std::string> ziele;
    for (std::size_t i = 1; i < eintraege.size(); ++i)
        if (eintraege[i] != jetziger && eintraege[i] != KatalogKontodaten) ziele.push_back(eintraege[i]);
    return ziele;
}

bool Kataloge::Verschiebe(const std::vector<std::int32_t>& titelnummern, const std::string& ziel,
                          const Fortschritt& fortschritt) {
    std::size_t fertig = 0;
    for (const std::int32_t nummer : titelnummern) {
        if (fortschritt && !fortschritt(fertig++, titelnummern.size())) return false;
        const Titelzeiger titel = um_.Titel.Titelliste.FindeZeiger(nummer);
        if (!titel) continue;
        std::vector<std::int32_t> umgezogen;
        if (!VerschiebeDateien(*titel, ziel, umgezogen)) return false;
        const std::string alt = std::exchange(titel->Katalog, ziel);
        NimmNachzueglerMit(*titel, alt, umgezogen);
    }
    return true;
}

// False when a file of the first kinds was given up. `umgezogen`: the kinds whose file has left the old folder.
bool Kataloge::VerschiebeDateien(clTitelobjekt& titel, const std::string& ziel, std::vector<std::int32_t>& umgezogen) {
    for (std::size_t i = 0; i < UmzugsArten.size(); ++i) {
        const auto art = UmzugsArten[i];
        // Kind 4 has the name of the traded file. When that has moved, what stands there again is a tick of this
        // moment, for which the moved file would be given up.
        if (art == NameVonBezahlt && !umgezogen.empty() && umgezogen.front() == kursart::Bezahlt) continue;
        const std::string quelle = Dateipfad(um_.Modul, um_.Dateien, titel, art);
        const bool gab = um_.Dateien.DateiExistiert(quelle);
        if (!TitelDateiVerschieben(um_.Modul, um_.Dateien, um_.Fragen, titel, art, ziel,
                                   [this] { um_.Pumpe.Ereignisse(); }))
            return i >= ArtenOhneTiefe;
        if (gab && !um_.Dateien.DateiExistiert(quelle)) umgezogen.push_back(art);
    }
    return true;
}

// Ticks that came while a question stood behind the move of their file have made a new one in the old folder.
void Kataloge::NimmNachzueglerMit(clTitelobjekt& titel, const std::string& alterKatalog,
                                  const std::vector<std::int32_t>& umgezogen) {
    for (const auto art : umgezogen) {
        const std::string ziel = Dateipfad(um_.Modul, um_.Dateien, titel, art);
        const std::string neuerKatalog = std::exchange(titel.Katalog, alterKatalog);
        const std::string quelle = Dateipfad(um_.Modul, um_.Dateien, titel, art);
        titel.Katalog = neuerKatalog;
        if (um_.Dateien.DateiExistiert(quelle)) VereineNachUmzug(um_.Dateien, quelle, ziel);
    }
}

std::size_t Kataloge::Loesche(const std::vector<std::int32_t>& titelnummern, bool mitDateien,
                              const std::function<void(std::int32_t)>& beiTitel, const Fortschritt& fortschritt) {
    std::size_t ungeloescht = 0;
    std::size_t fertig = 0;
    for (auto nummer = titelnummern.rbegin(); nummer != titelnummern.rend(); ++nummer) {
        if (fortschritt && !fortschritt(fertig++, titelnummern.size())) break;
        const Titelzeiger titel = um_.Titel.Titelliste.FindeZeiger(*nummer);
        if (!titel) continue;
        OhneFehler("Gelöschten Titel abbestellen", [&] {
            if (titel->Aktiv()) um_.Abos.MarktdatenAbbestellen(*titel);
        });
        um_.Titel.Titelliste.Entferne(*nummer);
        if (beiTitel) beiTitel(*nummer);
        if (mitDateien) ungeloescht += LoescheDateien(*titel);
    }
    OhneFehler("Titelinformation nach dem Löschen", [&] { um_.TitelInfoAktualisieren(); });
    return ungeloescht;
}

std::size_t Kataloge::LoescheDateien(clTitelobjekt& titel) {
    std::size_t ungeloescht = 0;
    for (const auto art : TiteldateiArten) {
        const std::string pfad = Dateipfad(um_.Modul, um_.Dateien, titel, art);
        if (!um_.Dateien.DateiExistiert(pfad)) continue;
        // A broken-off merge would come back with its journal and write into a file that isn't there.
        SchliesseEinarbeitungAb(um_.Dateien, pfad);
        um_.Dateien.Loesche(pfad);
        if (um_.Dateien.DateiExistiert(pfad)) ++ungeloescht;
    }
    return ungeloescht;
}

}  // namespace zek
