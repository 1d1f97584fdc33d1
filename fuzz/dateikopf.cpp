// Any bytes as a data file: the reader describes them, and an append either leaves them alone or adds one record to a
// whole file.
#include "datafiles/dateikopf.h"
#include "datafiles/anhaengen.h"
#include "datafiles/dateinamen.h"
#include "datafiles/leser.h"
#include "eine_datei.h"

#include <cstdlib>

namespace {

class KeineFehler : public zek::Statusausgabe {
public:
    void Statusmeldung(std::string_view, bool) override { std::abort(); }
};

void Beschreibe(zek::fuzz::EineDatei& datei) {
    const zek::Dateibefund befund = zek::PruefeDatei(datei, "x");
    if (befund.Ergebnis != zek::Dateileser::Ergebnis::Offen) return;
    zek::AnzeigeName(befund.Kopf);
    zek::AnzeigeSymbol(befund.Kopf);
    zek::FeldText(befund.Kopf.Kommentar);
    if (const auto teile = zek::ZerlegeDateiname(zek::FeldText(befund.Kopf.LangName) + ".ZEK")) {
        zek::clTitelobjekt titel;
        titel.Dateiname = teile->Basisname;
        titel.AccountName = teile->AccountName;
        const auto wieder = zek::ZerlegeDateiname(zek::Dateinamensbildung(titel, teile->Kursart));
        if (!titel.Dateiname.empty() && (!wieder || wieder->Kursart != teile->Kursart)) std::abort();
    }
}

void HaengeAn(zek::fuzz::EineDatei& datei) {
    KeineFehler status;
    zek::IBModul modul;
    zek::clTitelobjekt titel;
    zek::Datensatzschreiber schreiber(modul, datei, status, {});
    const std::vector<std::byte> vorher = datei.Inhalt;
    const bool ganz = vorher.empty() || (vorher.size() >= 856 && (vorher.size() - 856) % 16 == 0);
    schreiber.DatensatzAnhaengen(titel, 1, 1, 1, false, zek::ZeitpunktAus(46342.5));
    if (!ganz && datei.Inhalt != vorher) std::abort();
    if (!ganz) return;
    if (datei.Inhalt.size() < 856 || (datei.Inhalt.size() - 856) % 16 != 0) std::abort();
    const std::size_t einmal = datei.Inhalt.size();
    schreiber.DatensatzAnhaengen(titel, 1, 1, 1, false, zek::ZeitpunktAus(46342.5));
    if (datei.Inhalt.size() != einmal + 16) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* daten, std::size_t groesse) {
    const auto bytes = std::as_bytes(std::span(daten, groesse));
    zek::fuzz::EineDatei datei({bytes.begin(), bytes.end()});
    Beschreibe(datei);
    HaengeAn(datei);
    return 0;
}
