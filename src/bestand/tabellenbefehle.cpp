#include "bestand/tabellenbefehle.h"

#include "bestand/doppelte.h"
#include "bestand/laufzeit.h"
#include "bestand/titelaenderung.h"
#include "datafiles/dateinamen.h"
#include "feed/sendetakt.h"
#include "platform/ohnefehler.h"
#include "platform/text.h"
#include "titles/prioritaet.h"

#include <algorithm>
#include <utility>

namespace zek {

namespace {

constexpr char Zeilenende = '\n';

std::string KeineAngabe(const char* was) {
    return std::string("Sie haben zwar ein Symbol, aber keinen ") + was + " angegeben.";
}

}  // namespace

bool Tabellenbefehle::Ja(const std::string& frage) const {
    return um_.Fragen.ZeigeMeldung(frage, meldung::JaNein, 0) == meldung::AntwortJa;
}

bool Tabellenbefehle::Hinweis(const std::string& text) const {
    um_.Fragen.ZeigeMeldung(text, meldung::Ok, 0);
    return false;
}

// The row into the title, whose other fields stay; what is odd about it.
std::vector<std::string> Tabellenbefehle::LiesZeile(int zeile, clTitelobjekt& titel) const {
    const auto wert = [&](int spalte) { return std::string(Getrimmt(tabelle_.Tabelle().Value(spalte, zeile))); };
    std::vector<std::string> warnungen;
    titel.Symbol = wert(parameter::Symbol);
    titel.Börsenplatz = wert(parameter::Boerse);
    titel.Typ = wert(parameter::Typ);
    titel.Laufzeit = LaufzeitAus(wert(parameter::Jahr), wert(parameter::Monat));
    titel.Multiplikator = wert(parameter::Multiplikator);
    const std::string basispreis = wert(parameter::Basispreis);
    if (basispreis.empty() || IstNumerisch(basispreis)) {
        titel.Basispreis = ZahlAusDeutsch(basispreis).value_or(0);
    } else {
        warnungen.push_back("Der Basispreis '" + basispreis + "' ist keine Zahl; der bisherige bleibt.");
    }
    titel.Ausübungsrecht = wert(parameter::Ausuebung);
    titel.Währung = wert(parameter::Waehrung);
    titel.BackfillPrioritaet =
        static_cast<std::int16_t>(std::clamp(Zahlwert(wert(parameter::Prioritaet)) + NiedrigstePrioritaet,
                                             double{NiedrigstePrioritaet}, double{HoechstePrioritaet}));
    if (titel.Symbol.empty()) return warnungen;
    if (titel.Börsenplatz.empty()) warnungen.push_back(KeineAngabe("Börsenplatz"));
    if (titel.Typ.empty()) warnungen.push_back(KeineAngabe("Typ"));
    if ((titel.Typ == "OPT" || titel.Typ == "FUT") && titel.Laufzeit.empty())
        warnungen.push_back(
            "Sie haben den Typ 'FUT' oder 'OPT' eingestellt, aber keine Angaben zu Monat/Jahr gemacht.");
    return warnungen;
}

// The answer; yes where there is nothing to warn of.
int Tabellenbefehle::FrageWarnungen(int zeile, const std::vector<std::string>& warnungen, const char* frage) const {
    if (warnungen.empty()) return meldung::AntwortJa;
    std::string text = "Warnungen für Titel '" + tabelle_.Tabelle().Value(parameter::Titel, zeile) + "':" + Zeilenende;
    for (const std::string& warnung : warnungen) text += warnung + Zeilenende;
    return um_.Fragen.ZeigeMeldung(text + frage, meldung::JaNeinAbbrechen, 0);
}

bool Tabellenbefehle::MeldeDoppelten(const clTitelobjekt& angaben, const std::string& dateiname,
                                     std::int32_t ausser) const {
    const Doppelter doppelter = FindeDoppelten(um_.Titel.Titelliste, angaben, dateiname, ausser);
    if (!doppelter) return false;
    Hinweis((doppelter.SelberVertrag ? "Ein Titel mit denselben Verbindungsinformationen ist bereits vorhanden ('"
                                     : "Ein Titel mit diesem Dateinamen ist bereits vorhanden('") +
            doppelter.Titel->Dateiname + "')!");
    return true;
}

Tabellenbefehle::Ergebnis Tabellenbefehle::Speichern(const Fortschritt& fortschritt) {
    Edittabelle& tabelle = tabelle_.Tabelle();
    if (tabelle.HasChanged() &&
        !Ja("Sollen die Änderungen wirklich gespeichert werden? Dabei werden die Einstellungen der vorhandenen Titel "
            "überschrieben."))
        return {};
    for (int zeile = 1; zeile <= tabelle.RowCount(); ++zeile) {
        if (!tabelle.IsRowChecked(zeile)) continue;
        if (fortschritt &&
            !fortschritt(static_cast<std::size_t>(zeile - 1), static_cast<std::size_t>(tabelle.RowCount())))
            return {};
        const Titelzeiger titel = um_.Titel.Titelliste.FindeZeiger(tabelle.Zeilennummer(zeile));
        if (!titel) continue;
        clTitelobjekt angaben;
        angaben.Basispreis = titel->Basispreis;
        const int antwort = FrageWarnungen(zeile, LiesZeile(zeile, angaben), "Dennoch speichern?");
        if (antwort == meldung::AntwortNein) continue;
        if (antwort != meldung::AntwortJa) return {};
        if (MeldeDoppelten(angaben, Dateinamensbildung(*titel, kursart::Basisname), titel->id)) return {false, zeile};
        Uebertrage(angaben, *titel);
        AbonniereNeu(*titel);
        tabelle.LoescheMarke(zeile);
    }
    return {true, 0};
}

// The symbol stays: its column is locked for titles that exist.
void Tabellenbefehle::Uebertrage(const clTitelobjekt& angaben, clTitelobjekt& titel) const {
    titel.Börsenplatz = angaben.Börsenplatz;
    titel.Typ = angaben.Typ;
    titel.Laufzeit = angaben.Laufzeit;
    titel.Multiplikator = angaben.Multiplikator;
    titel.Basispreis = angaben.Basispreis;
    titel.Ausübungsrecht = angaben.Ausübungsrecht;
    titel.Währung = angaben.Währung;
    titel.BackfillPrioritaet = angaben.BackfillPrioritaet;
    Titelaenderung::ErneuereDateikoepfe(um_, titel);
}

void Tabellenbefehle::AbonniereNeu(clTitelobjekt& titel) const {
    if (!titel.Aktiv()) return;
    OhneFehler("Geänderten Titel neu abonnieren", [&] {
        um_.Abos.MarktdatenAbbestellen(titel);
        um_.Abos.MarktdatenAbonnieren(titel);
    });
}

bool Tabellenbefehle::Verwerfen() {
    Edittabelle& tabelle = tabelle_.Tabelle();
    if (!tabelle.HasChanged()) {
        tabelle.FussEditierbar(true);
        return Hinweis("Es wurden noch keine Änderungen vorgenommen.");
    }
    if (um_.Fragen.ZeigeMeldung("Alle aktuellen Änderungen verwerfen?", meldung::JaNein, 0) == meldung::AntwortNein)
        return false;
    const Titelliste& titel = um_.Titel.Titelliste;
    for (int zeile = 1; zeile <= tabelle.RowCount(); ++zeile) {
        const auto position = static_cast<std::size_t>(zeile - 1);
        if (position < titel.Anzahl()) tabelle_.SchreibeAngaben(zeile, *titel[position]);
    }
    tabelle.HasChanged(false);
    tabelle.FussEditierbar(true);
    return true;
}

Tabellenbefehle::Entfernung Tabellenbefehle::Entfernen(const std::vector<int>& zeilen) {
    if (zeilen.empty()) {
        Hinweis("Markieren Sie zunächst bitte die Titel, die entfernt werden sollen.");
        return Entfernung::Nichts;
    }
    if (!Ja("Sollen die markierten Titel aus der Liste entfernt werden, ohne vorgenommene Änderungen zu speichern? Ein "
            "entfernter Titel erscheint erst nach Neustart des Dialogs wieder in der Liste."))
        return Entfernung::Nichts;
    Edittabelle& tabelle = tabelle_.Tabelle();
    tabelle.EntferneZeilen(zeilen);
    if (tabelle.RowCount() == 0) {
        Hinweis("Es wurden alle Titel aus der Liste entfernt. Der Dialog wird daher nun beendet.");
        return Entfernung::AlleEntfernt;
    }
    if (!tabelle.HasChanged()) tabelle.FussEditierbar(true);
    return Entfernung::Entfernt;
}

bool Tabellenbefehle::Deaktivieren(const std::vector<int>& zeilen, const Fortschritt& fortschritt) {
    if (zeilen.empty()) return Hinweis("Markieren Sie zunächst bitte die Titel, die deaktiviert werden sollen.");
    if (um_.Fragen.ZeigeMeldung(
            "Sollen die in der Liste markierten Titel für die Datenaufzeichnung deaktiviert werden?", meldung::JaNein,
            0) == meldung::AntwortNein)
        return false;
    Sendetakt takt(um_.Zeit, um_.Pumpe);
    std::size_t fertig = 0;
    for (const int zeile : zeilen) {
        if (fortschritt && !fortschritt(fertig++, zeilen.size())) break;
        const Titelzeiger titel = um_.Titel.Titelliste.FindeZeiger(tabelle_.Tabelle().Zeilennummer(zeile));
        if (!titel || !titel->Aktiv()) continue;
        titel->Aktiv(false);
        titel->BidAsk = false;
        ZeigeDeaktiviert(*titel);
        OhneFehler("Deaktivierten Titel abbestellen", [&] { takt.Gesendet(um_.Abos.MarktdatenAbbestellen(*titel)); });
        takt.Schritt();
    }
    OhneFehler("Titelinformation nach dem Deaktivieren", [&] { um_.TitelInfoAktualisieren(); });
    return true;
}

// By the title's number as the row, which agrees with its place until titles have been removed in the session.
void Tabellenbefehle::ZeigeDeaktiviert(const clTitelobjekt& titel) {
    Edittabelle& tabelle = tabelle_.Tabelle();
    if (titel.id < 1 || titel.id > tabelle.RowCount()) return;
    const bool markiert = tabelle.IsRowChecked(titel.id);
    tabelle.Value(parameter::Aktiv, titel.id, "Nein");
    if (!markiert) tabelle.LoescheMarke(titel.id);
}

Tabellenbefehle::Neue Tabellenbefehle::NeueTitel() {
    Edittabelle& tabelle = tabelle_.Tabelle();
    if (!tabelle.HasChanged()) {
        Hinweis(
            "Es wurden noch keine Änderungen vorgenommen. Nur aus veränderten Einstellungen kann ein neuer Titel "
            "erstellt werden.");
        return {};
    }
    for (int zeile = 1; zeile <= tabelle.RowCount(); ++zeile) {
        if (!tabelle.IsRowChecked(zeile)) continue;
        clTitelobjekt angaben;
        LiesZeile(zeile, angaben);
        const std::string dateiname = Dateinamensbildung(angaben, kursart::Basisname);
        if (MeldeDoppelten(angaben, dateiname, 0)) return {{}, zeile};
    }
    Neue neue;
    for (int zeile = 1; zeile <= tabelle.RowCount(); ++zeile) {
        const Titelzeiger quelle = um_.Titel.Titelliste.FindeZeiger(tabelle.Zeilennummer(zeile));
        if (!tabelle.IsRowChecked(zeile) || !quelle) continue;
        auto titel = std::make_shared<clTitelobjekt>();
        titel->ReadAllPara(quelle->WriteAllPara());
        titel->Dateiname.clear();
        const int antwort = FrageWarnungen(zeile, LiesZeile(zeile, *titel), "Dennoch diesen Titel erstellen?");
        if (antwort == meldung::AntwortNein) continue;
        if (antwort != meldung::AntwortJa) return {};
        Dateinamensbildung(*titel, kursart::Basisname);
        neue.Titel.push_back(std::move(titel));
    }
    return neue;
}

Tabellenbefehle::Schluss Tabellenbefehle::Schliessen(int& zeile) {
    zeile = 0;
    if (!tabelle_.Tabelle().HasChanged()) return Schluss::Schliesst;
    const int antwort = um_.Fragen.ZeigeMeldung(
        "Es wurden Änderungen vorgenommen, aber noch nicht gespeichert. Sollen die Änderungen vor dem Schließen des "
        "Dialogs gespeichert werden?",
        meldung::JaNeinAbbrechen, 0);
    if (antwort == meldung::AntwortNein) return Schluss::Schliesst;
    if (antwort != meldung::AntwortJa) return Schluss::Bleibt;
    const Ergebnis ergebnis = Speichern();
    zeile = ergebnis.Zeile;
    if (!ergebnis.Fertig) return Schluss::Bleibt;
    um_.Titelspeichern();
    return Schluss::Schliesst;
}

}  // namespace zek
