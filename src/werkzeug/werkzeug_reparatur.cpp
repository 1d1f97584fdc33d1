#include "werkzeug/werkzeug_reparatur.h"

#include "datafiles/leser.h"
#include "datafiles/reparatur.h"
#include "platform/systemtext.h"
#include "werkzeug/werkzeug_befehle.h"

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <string_view>
#include <vector>

namespace zek::werkzeug {

namespace {

constexpr std::string_view Aufgehoben = ".abgeschnitten";

std::string Systemfehler(int nummer) {
    return "Fehler " + std::to_string(nummer) + " (" + SystemText(nummer) + ")";
}

// A name that isn't taken yet.
std::string Ablagename(Dateisystem& dateien, const std::string& pfad) {
    const std::string name = pfad + std::string(Aufgehoben);
    if (!dateien.DateiExistiert(name)) return name;
    for (int nummer = 2;; ++nummer)
        if (std::string weiterer = name + "-" + std::to_string(nummer); !dateien.DateiExistiert(weiterer))
            return weiterer;
}

int Schliessend(Dateisystem& dateien, Dateihandle handle, int ergebnis) {
    dateien.Schliesse(handle);
    return ergebnis;
}

// The bytes behind the cut, made fast in a file of their own. 0 or -errno.
int HebeAuf(Dateisystem& dateien, const std::string& pfad, const Dateiende& ende, const std::string& ablage) {
    const Dateihandle quelle = dateien.Oeffne(pfad, Oeffnen::NurLesen);
    if (quelle < 0) return quelle;
    std::vector<std::byte> bytes(static_cast<std::size_t>(ende.Groesse - ende.Schnitt));
    std::int64_t gelesen = dateien.Suche(quelle, ende.Schnitt, Ab::Anfang);
    if (gelesen >= 0) gelesen = dateien.Lies(quelle, bytes);
    dateien.Schliesse(quelle);
    if (gelesen < 0) return static_cast<int>(gelesen);
    if (gelesen < std::ssize(bytes)) return -EIO;
    const Dateihandle ziel = dateien.Oeffne(ablage, Oeffnen::Anlegen);
    if (ziel < 0) return ziel;
    if (const int fehler = SchreibeGanz(dateien, ziel, bytes); fehler < 0) return Schliessend(dateien, ziel, fehler);
    return Schliessend(dateien, ziel, dateien.Leere(ziel));
}

// True when the file is sound then.
bool RepariereDatei(Dateisystem& dateien, const std::string& pfad, std::ostream& ausgabe, std::ostream& fehler) {
    const Dateiende ende = UntersucheEnde(dateien, pfad);
    if (ende.Fehler != 0) {
        fehler << "zek: " << pfad << ": " << Systemfehler(ende.Fehler) << "\n";
        return false;
    }
    if (ende.Eigen && ende.Schnitt < ende.Groesse) {
        const std::string ablage = Ablagename(dateien, pfad);
        int ergebnis = HebeAuf(dateien, pfad, ende, ablage);
        if (ergebnis == 0) ergebnis = SchneideEnde(dateien, pfad, ende);
        if (ergebnis < 0) {
            fehler << "zek: " << pfad << ": " << Systemfehler(-ergebnis) << "\n";
            return false;
        }
        ausgabe << pfad << ": " << Schnitttext(ende) << " abgeschnitten, aufgehoben in " << ablage << "\n";
    }
    if (ende.Schnitt == 0) return true;
    const auto maengel = Maengel(PruefeDatei(dateien, pfad));
    for (const std::string& mangel : maengel) ausgabe << pfad << ": nicht zu beheben: " << mangel << "\n";
    return maengel.empty();
}

}  // namespace

int Repariere(std::span<const std::string> pfade, Dateisystem& dateien, std::ostream& ausgabe, std::ostream& fehler) {
    std::vector<std::string> gefunden;
    int ergebnis = Sammle(pfade, dateien, fehler, gefunden) ? Gut : Fehlgeschlagen;
    for (const std::string& pfad : gefunden) {
        if (SchliesseEinarbeitungAb(dateien, pfad) == Journalstand::Belegt) continue;
        if (!RepariereDatei(dateien, pfad, ausgabe, fehler)) ergebnis = std::max(ergebnis, Beanstandet);
    }
    return ergebnis;
}

bool HoleEinarbeitungNach(Dateisystem& dateien, const std::string& pfad, std::ostream& fehler) {
    const Journalstand stand = SchliesseEinarbeitungAb(dateien, pfad);
    if (const std::string text = Journaltext(stand); !text.empty()) fehler << "zek: " << pfad << ": " << text << "\n";
    if (stand == Journalstand::Belegt) fehler << "zek: " << pfad << ": wird gerade eingearbeitet\n";
    return IstGut(stand);
}

}  // namespace zek::werkzeug
