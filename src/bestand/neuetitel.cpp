#include "bestand/neuetitel.h"

#include "datafiles/dateinamen.h"
#include "platform/ohnefehler.h"

namespace zek {

namespace {
// Forbidden characters become hyphens, and what would lead out of the data folder too.
std::string Katalogname(const std::string& text) {
    return ImOrdner(Namensbereinigung(text));
}
}  // namespace

bool PruefeNeuaufnahme(const Neuaufnahme& wahl, Meldungen& fragen) {
    if (wahl.OriginalOrdner || !Katalogname(wahl.Ordner).empty()) return true;
    fragen.ZeigeMeldung(
        "Geben Sie bitte einen gültigen Unterordner an, wenn Sie nicht den Original-Ordner der Titel verwenden "
        "möchten.",
        meldung::Ok, 0);
    return false;
}

void NimmAuf(const Bestandsumgebung& um, const std::vector<Titelzeiger>& titel, const Neuaufnahme& wahl) {
    for (const Titelzeiger& neu : titel) {
        if (!wahl.OriginalOrdner) {
            neu->Katalog = Katalogname(wahl.Ordner);
            um.Titel.Katalogliste.Fuege(neu->Katalog);
        }
        neu->BidAsk = wahl.Aufzeichnung == NeueAufzeichnung::Alles;
        neu->Aktiv(wahl.Aufzeichnung != NeueAufzeichnung::Keine);
        neu->id = ++um.Titel.Titelnummer;
        um.Titel.Titelliste.Fuege(neu);
        OhneFehler("Neuen Titel abonnieren", [&] {
            if (neu->Aktiv() && um.Abos.Verbunden()) um.Abos.MarktdatenAbonnieren(*neu);
        });
    }
}

}  // namespace zek
