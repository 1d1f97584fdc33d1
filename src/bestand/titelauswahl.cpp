#include "bestand/titelauswahl.h"

#include "bestand/doppelte.h"
#include "bestand/laufzeit.h"
#include "datafiles/dateinamen.h"
#include "platform/ohnefehler.h"
#include "platform/text.h"

#include <utility>

namespace zek {

namespace {

// A day may stand behind the month: 1231 is the 31st of December.
constexpr double ErsterMonat = 1, LetzterMonat = 1231;
constexpr std::size_t Jahresziffern = 4;

bool IstFuture(const Titeleingaben& eingaben) {
    return GleichOhneGrossKlein(Getrimmt(eingaben.Typ), "FUT");
}

Titelzeiger AusEingaben(const Titeleingaben& eingaben) {
    auto titel = std::make_shared<clTitelobjekt>();
    titel->Symbol = Getrimmt(eingaben.Symbol);
    titel->Börsenplatz = Getrimmt(eingaben.Börsenplatz);
    titel->Typ = Getrimmt(eingaben.Typ);
    titel->Laufzeit = LaufzeitAus(eingaben.Jahr, eingaben.Monat);
    titel->Basispreis = ZahlAusDeutsch(eingaben.Basispreis).value_or(0);
    titel->Ausübungsrecht = Getrimmt(eingaben.Recht);
    titel->Währung = Getrimmt(eingaben.Währung);
    titel->Multiplikator = eingaben.Multiplikator;
    titel->IstLokalesSymbol = eingaben.LokalesSymbol;
    titel->Katalog = Namensbereinigung(eingaben.Ordner);
    titel->BidAsk = eingaben.BidAsk;
    titel->Aktiv(true);
    return titel;
}

}  // namespace

const std::vector<std::string> Boersenplaetze = {
    "ACE",      "AMEX",   "ARCA",      "BRUT",   "BTRADE", "CBOE",  "CBOT",      "CME",      "DTB",
    "EBS",      "ECBOT",  "EUREX",     "GLOBEX", "IBIS",   "IBSX",  "IDEAL",     "IDEALPRO", "IDEM",
    "INSTINET", "ISE",    "ISLAND",    "LIFFE",  "LSE",    "MATIF", "MONEP",     "NASDAQ",   "NQLX",
    "NYMEX",    "NYSE",   "ONE",       "PHLX",   "PRIMEX", "PSE",   "SELECTNET", "SMART",    "SMART\\NASDAQ",
    "SNFE",     "SOFFEX", "SUPERSOES", "VIRTX",  "VWAP"};
const std::vector<std::string> Titeltypen = {"FUT", "STK", "IND", "OPT", "CASH", "FOP"};
const std::vector<std::string> Waehrungen = {"USD", "EUR", "HKD", "CHF", "JPY", "GBP", "AUD"};
const std::vector<std::string> Ausuebungsrechte = {"Call", "Put"};

void Titelauswahl::Uebernimm(const clTitelobjekt& titel, Titeleingaben& eingaben) {
    eingaben.Symbol = titel.Symbol;
    eingaben.Börsenplatz = titel.Börsenplatz;
    eingaben.Typ = titel.Typ;
    eingaben.LokalesSymbol = titel.IstLokalesSymbol;
    eingaben.Multiplikator = titel.Multiplikator;
    eingaben.Basispreis = Zahltext(titel.Basispreis);
    eingaben.Recht = titel.Ausübungsrecht;
    eingaben.Währung = titel.Währung;
    auto [jahr, monat] = TeileLaufzeit(titel.Laufzeit);
    eingaben.Jahr = std::move(jahr);
    eingaben.Monat = std::move(monat);
}

bool Titelauswahl::Abgelehnt(const std::string& text) const {
    um_.Fragen.ZeigeMeldung(text, meldung::Ok, 0);
    return false;
}

bool Titelauswahl::Pruefe(Titeleingaben& eingaben) const {
    if (Getrimmt(eingaben.Symbol).empty() || Getrimmt(eingaben.Börsenplatz).empty() || Getrimmt(eingaben.Typ).empty())
        return Abgelehnt("Machen Sie mindestens Angaben zu 'Symbol', 'Börsenplatz' und 'Typ'.");
    if (IstFuture(eingaben) && (eingaben.Monat.empty() || eingaben.Jahr.empty()) &&
        um_.Fragen.ZeigeMeldung("Sie haben den Typ 'FUT' eingestellt, aber keine Angaben zu Monat/Jahr gemacht. "
                                "Dennoch fortfahren?",
                                meldung::JaNein, 0) != meldung::AntwortJa)
        return false;
    if (!PruefeLaufzeit(eingaben)) return false;
    if (!eingaben.Basispreis.empty() && !IstNumerisch(eingaben.Basispreis))
        return Abgelehnt("Der angegebene Basispreis ist nicht korrekt.");
    return PruefeOrdner(eingaben);
}

bool Titelauswahl::PruefeLaufzeit(const Titeleingaben& eingaben) const {
    if (!eingaben.Jahr.empty() && Zeichenzahl(eingaben.Jahr) != Jahresziffern)
        return Abgelehnt("Geben Sie das Jahr der Laufzeit bitte 4-stellig an.");
    if (eingaben.Monat.empty()) return true;
    const double monat = Zahlwert(eingaben.Monat);
    if (monat >= ErsterMonat && monat <= LetzterMonat) return true;
    return Abgelehnt(
        "Ungültige Monatsangabe der Laufzeit. Geben Sie einen Monat an, falls nötig mit Zusatz des Tages (z.B. 0516 "
        "für 16. Mai)");
}

bool Titelauswahl::PruefeOrdner(Titeleingaben& eingaben) const {
    eingaben.Ordner = std::string(Getrimmt(eingaben.Ordner));
    if (eingaben.Ordner.empty())
        return Abgelehnt(
            "Legen Sie bitte einen Unterordner fest, in dem die Daten des Titel gespeichert werden sollen. Wählen Sie "
            "hierzu einen Ordner aus der Dropdownliste (falls vorhanden) oder geben Sie einen neuen Ordnernamen an. "
            "Sobald Sie Titel zugefügt haben, werden die verwendeten Ordner auch in der Dropdownliste angeboten. "
            "Klicken Sie 'Hilfe' für weitere Informationen.");
    // "." and ".." hold none of the nine characters and would lead out of the folder all the same.
    if (Namensbereinigung(eingaben.Ordner) == eingaben.Ordner && ImOrdner(eingaben.Ordner) == eingaben.Ordner)
        return true;
    return Abgelehnt(
        "Der angegebene Ordnername enthält ungültige Zeichen. Geben Sie bitte nur den Namen des gewünschten "
        "Unterordners an (nicht den gesamten Pfad) und verwenden Sie keines der folgenden Zeichen: /\\:*?\"<>|");
}

Titelzeiger Titelauswahl::Fuege(Titeleingaben& eingaben) {
    if (!Pruefe(eingaben)) return nullptr;
    Titelzeiger titel = AusEingaben(eingaben);
    um_.Titel.Katalogliste.Fuege(titel->Katalog);
    Dateinamensbildung(*titel, kursart::Basisname);
    if (const Doppelter doppelter = FindeDoppelten(um_.Titel.Titelliste, *titel, titel->Dateiname)) {
        Abgelehnt(doppelter.SelberVertrag ? "Ein Titel mit denselben Verbindungsinformationen ist bereits vorhanden!"
                                          : "Ein Titel mit diesem Dateinamen ist bereits vorhanden!");
        return nullptr;
    }
    titel->id = ++um_.Titel.Titelnummer;
    um_.Titel.Titelliste.Fuege(titel);
    OhneFehler("Neuen Titel abonnieren", [&] {
        if (um_.Abos.Verbunden()) um_.Abos.MarktdatenAbonnieren(*titel);
    });
    return titel;
}

void Titelauswahl::Entferne(const std::vector<std::int32_t>& titelnummern) {
    for (const std::int32_t nummer : titelnummern) {
        const Titelzeiger titel = um_.Titel.Titelliste.FindeZeiger(nummer);
        if (!titel) continue;
        OhneFehler("Entfernten Titel abbestellen", [&] {
            if (titel->Aktiv() && um_.Abos.Verbunden()) um_.Abos.MarktdatenAbbestellen(*titel);
        });
        um_.Titel.Titelliste.Entferne(nummer);
    }
}

}  // namespace zek
