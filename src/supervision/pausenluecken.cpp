#include "supervision/pausenluecken.h"

#include "feed/aufzeichnung.h"

#include <algorithm>

namespace zek {

Pausenluecken::Pausenluecken(const Einstellungen& einstellungen, const Titelbestand& bestand, OffeneLuecken& offen)
    : einstellungen_(einstellungen), bestand_(bestand), offen_(offen) {
    probe_.AufzeichnungspauseVerwenden = true;
}

void Pausenluecken::Pruefe(Zeitpunkt jetzt, Zeitpunkt zuletzt) {
    const Einstellungen& e = einstellungen_;
    if (!e.KursAufzeichnungDeaktivieren && !pausiert_) return;
    const bool fuerAlle = e.KursAufzeichnungDeaktivieren && e.AufzeichnungsPauseBoersen.empty();
    pausiert_ = PauseFuer(AlleTitel, fuerAlle && ZeitfensterAktiv(e, probe_, jetzt), jetzt, zuletzt);
    for (const auto& titel : bestand_.Titelliste) {
        if (titel->Dateiname.empty()) continue;
        const bool aktiv = !fuerAlle && titel->Aktiv() && ZeitfensterAktiv(e, *titel, jetzt);
        if (PauseFuer(titel->Dateiname, aktiv, jetzt, zuletzt)) pausiert_ = true;
    }
}

// A pause begins and ends at its clock times, not at the second that sees it.
bool Pausenluecken::PauseFuer(const std::string& name, bool aktiv, Zeitpunkt jetzt, Zeitpunkt zuletzt) {
    if (aktiv == offen_.IstOffen(name, ursache::Aufzeichnungspause)) return aktiv;
    const Tageszeit grenze = aktiv ? einstellungen_.KeineAufzeichungStart : einstellungen_.KeineAufzeichungEnde;
    const Zeitpunkt zeit = std::max(ZuletztUm(grenze, jetzt), std::min(zuletzt, jetzt));
    if (aktiv)
        offen_.Oeffne(name, ursache::Aufzeichnungspause, zeit);
    else
        offen_.Schliesse(name, ursache::Aufzeichnungspause, zeit);
    return aktiv;
}

}  // namespace zek
