#include "werkzeug/werkzeug_befehle.h"

#include "datafiles/dateinamen.h"
#include "platform/text.h"
#include "werkzeug/uebersicht.h"

#include <algorithm>
#include <cstddef>

namespace zek::werkzeug {

namespace {

constexpr std::size_t EinzelneDateien = 20;
const Tafel::Ausrichtung Rechtsbuendig = {false, false, true, false, false, true, true};

Tafel::Zeile Dateizeile(const std::string& pfad, Dateileser& leser) {
    const std::int64_t anzahl = leser.Anzahl();
    const auto erster = anzahl > 0 ? leser.Satz(0) : std::nullopt;
    const auto letzter = anzahl > 0 ? leser.Satz(anzahl - 1) : std::nullopt;
    return {AnzeigeName(leser.Kopf()),
            Kursarttext(leser.Kopf(), pfad),
            MitTausenderpunkten(static_cast<double>(anzahl)),
            Zeitfeld(erster ? erster->Datum : 0),
            Zeitfeld(letzter ? letzter->Datum : 0),
            letzter ? Zahltext(letzter->Kurs) : std::string(),
            MitTausenderpunkten(static_cast<double>(leser.Groesse()))};
}

}  // namespace

int Tabelle(std::span<const std::string> pfade, bool alles, Dateisystem& dateien, std::ostream& ausgabe,
            std::ostream& fehler) {
    std::vector<std::string> gefunden;
    int ergebnis = Sammle(pfade, dateien, fehler, gefunden) ? Gut : Fehlgeschlagen;
    if (!alles && gefunden.size() > EinzelneDateien)
        return std::max(ergebnis, Tabellenuebersicht(gefunden, dateien, ausgabe, fehler));
    Tafel tafel({"Name", "Kursart", "Datensätze", "von", "bis", "letzter Kurs", "Bytes"}, Rechtsbuendig);
    Dateileser leser(dateien);
    for (const std::string& pfad : gefunden) {
        if (Oeffne(leser, pfad, fehler))
            tafel.Fuege(Dateizeile(pfad, leser));
        else
            ergebnis = std::max(ergebnis, Beanstandet);
    }
    tafel.Drucke(ausgabe);
    return ergebnis;
}

}  // namespace zek::werkzeug
