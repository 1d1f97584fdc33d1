#include "bestand/titelanlegen.h"

#include "bestand/doppelte.h"
#include "datafiles/dateinamen.h"
#include "platform/ohnefehler.h"
#include "platform/text.h"

namespace zek {

namespace {

Titelzeiger AusAngaben(const Titelangaben& angaben) {
    auto titel = std::make_shared<clTitelobjekt>();
    titel->Symbol = angaben.Symbol;
    titel->Börsenplatz = angaben.Börsenplatz;
    titel->Typ = angaben.Typ;
    titel->Währung = angaben.Währung;
    titel->Laufzeit = angaben.Laufzeit;
    titel->Katalog = angaben.Katalog;
    titel->IstLokalesSymbol = angaben.IstLokalesSymbol;
    titel->Multiplikator = angaben.Multiplikator;
    if (!angaben.Basispreis.empty()) titel->Basispreis = Zahlwert(angaben.Basispreis);
    titel->Ausübungsrecht = angaben.Ausübungsrecht;
    titel->BidAsk = true;
    titel->Aktiv(true);
    Dateinamensbildung(*titel, kursart::Basisname);
    return titel;
}

}  // namespace

Titelzeiger TitelAnlegen(Titelbestand& bestand, const Verbindungsstand& verbindung, const Titelangaben& angaben,
                         const std::function<int(clTitelobjekt&)>& abonniere) {
    Titelzeiger titel;
    OhneFehler("Titel anlegen", [&] {
        Titelzeiger neu = AusAngaben(angaben);
        if (FindeDoppelten(bestand.Titelliste, *neu, neu->Dateiname)) return;
        neu->id = ++bestand.Titelnummer;
        if (bestand.Titelliste.Fuege(neu)) titel = std::move(neu);
    });
    if (!titel) return nullptr;
    if (!titel->Katalog.empty()) bestand.Katalogliste.Fuege(titel->Katalog);
    if (verbindung.TWSVerbunden) OhneFehler("Neuen Titel abonnieren", [&] { abonniere(*titel); });
    return titel;
}

}  // namespace zek
