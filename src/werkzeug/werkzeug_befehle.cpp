#include "werkzeug/werkzeug_befehle.h"

#include "datafiles/dateinamen.h"
#include "luecken/zeitspannen.h"
#include "platform/datum.h"
#include "platform/text.h"
#include "werkzeug/uebersicht.h"
#include "werkzeug/werkzeug_reparatur.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cmath>
#include <iterator>

namespace zek::werkzeug {

namespace {

using Ergebnis = Dateileser::Ergebnis;

constexpr std::size_t EinzelneInfo = 2;
constexpr int MaxOrdnertiefe = 16;      // a link back up must not lead round and round
constexpr Datum JahrHundert = -657434;  // 0100-01-01
constexpr Datum JahrZehntausend = 2958466;

std::string Fehlertext(int nummer) {
    switch (nummer) {
        case ENOENT:
            return "nicht gefunden";
        case EACCES:
            return "kein Zugriff";
        case EISDIR:
            return "ist ein Ordner";
        default:
            return "Lesefehler " + std::to_string(nummer) + " (" + SystemText(nummer) + ")";
    }
}

std::string Dateiname(const std::string& pfad) {
    const std::size_t strich = pfad.rfind('/');
    return strich == std::string::npos ? pfad : pfad.substr(strich + 1);
}

}  // namespace

std::string Anzahl(std::int64_t anzahl, const char* eins, const char* viele) {
    return MitTausenderpunkten(static_cast<double>(anzahl)) + " " + (anzahl == 1 ? eins : viele);
}

std::string Zustand(const std::vector<std::string>& maengel) {
    if (maengel.empty()) return "in Ordnung";
    std::string text = "beschädigt: ";
    for (std::size_t i = 0; i < maengel.size(); ++i) text += (i > 0 ? ", " : "") + maengel[i];
    return text;
}

std::string Kursarttext(const DatenDateikopf& kopf, const std::string& pfad) {
    if (std::string name = FeldText(kopf.Kursartname); !name.empty()) return name;
    const auto teile = ZerlegeDateiname(Dateiname(pfad));
    if (!teile || !kursart::IstTiefe(teile->Kursart)) return "unbekannt";
    const bool geld = kursart::IstGeldTiefe(teile->Kursart);
    const std::int32_t stufe = (geld ? kursart::GeldTiefe(0) : kursart::BriefTiefe(0)) - teile->Kursart;
    return std::string("Markttiefe ") + (geld ? "Geld" : "Brief") + ", Stufe " + std::to_string(stufe);
}

namespace {

std::string LetztePflege(const DatenDateikopf& kopf) {
    const auto teile = Teile(FeldText(kopf.LetztePflege), '#');
    if (teile.size() != 6) return "keine";
    return teile[2] + "." + teile[1] + "." + teile[0] + " " + teile[3] + ":" + teile[4] + ":" + teile[5];
}

std::string Einzeilig(std::string text) {
    std::erase(text, '\r');
    std::ranges::replace(text, '\n', ' ');
    return text;
}

void ZeigeInfo(const std::string& pfad, const Dateibefund& befund, std::ostream& ausgabe) {
    ausgabe << pfad << "\n";
    if (befund.Ergebnis == Ergebnis::Offen) {
        ausgabe << "  Name:           " << AnzeigeName(befund.Kopf) << "\n"
                << "  Symbol:         " << AnzeigeSymbol(befund.Kopf) << "\n"
                << "  Kursart:        " << Kursarttext(befund.Kopf, pfad) << "\n"
                << "  Datenquelle:    " << FeldText(befund.Kopf.Datenquelle) << "\n"
                << "  Titelparameter: " << FeldText(befund.Kopf.Titelparameter) << "\n"
                << "  Kommentar:      " << Einzeilig(FeldText(befund.Kopf.Kommentar)) << "\n"
                << "  Letzte Pflege:  " << LetztePflege(befund.Kopf) << "\n"
                << "  Datensätze:     " << MitTausenderpunkten(static_cast<double>(befund.Saetze)) << "\n";
    }
    if (befund.Erstes != 0) {
        std::string zeitraum;
        ZeitAnhaengen(befund.Erstes, Zeitform::Deutsch, zeitraum);
        zeitraum += " bis ";
        ZeitAnhaengen(befund.Letztes, Zeitform::Deutsch, zeitraum);
        ausgabe << "  Zeitraum:       " << zeitraum << "\n";
    }
    ausgabe << "  Größe:          " << Anzahl(befund.Bytes, "Byte", "Bytes") << "\n"
            << "  Zustand:        " << Zustand(Maengel(befund)) << "\n";
}

}  // namespace

bool Sammle(std::span<const std::string> pfade, Dateisystem& dateien, std::ostream& fehler,
            std::vector<std::string>& gefunden) {
    bool alle = true;
    for (const std::string& pfad : pfade) {
        if (!dateien.OrdnerExistiert(pfad) && !dateien.DateiExistiert(pfad)) {
            fehler << "zek: " << pfad << ": nicht gefunden\n";
            alle = false;
            continue;
        }
        for (std::string& datei : Datendateien(dateien, pfad)) {
            if (!HoleEinarbeitungNach(dateien, datei, fehler)) alle = false;
            gefunden.push_back(std::move(datei));
        }
    }
    return alle;
}

namespace {

void SammleOrdner(Dateisystem& dateien, const std::string& ordner, int tiefe, std::vector<std::string>& gefunden) {
    if (tiefe > MaxOrdnertiefe) return;
    const std::string stamm = ordner.ends_with('/') ? ordner : ordner + "/";
    for (const Verzeichniseintrag& eintrag : dateien.Liste(ordner)) {
        if (eintrag.IstOrdner) {
            SammleOrdner(dateien, stamm + eintrag.Name, tiefe + 1, gefunden);
        } else if (ZerlegeDateiname(eintrag.Name)) {
            gefunden.push_back(stamm + eintrag.Name);
        }
    }
}

// With leading zeros.
void ZiffernAnhaengen(int zahl, int stellen, std::string& ziel) {
    char puffer[8];
    for (int i = stellen; i-- > 0; zahl /= 10) puffer[i] = static_cast<char>('0' + zahl % 10);
    ziel.append(puffer, static_cast<std::size_t>(stellen));
}

void DatumAnhaengen(Kalendertag kalendertag, Zeitform form, std::string& ziel) {
    const std::chrono::year_month_day k(kalendertag);
    const int jahr = static_cast<int>(k.year()), tag = static_cast<int>(static_cast<unsigned>(k.day()));
    const bool iso = form == Zeitform::Iso;
    ZiffernAnhaengen(iso ? jahr : tag, iso ? 4 : 2, ziel);
    ziel += iso ? '-' : '.';
    ZiffernAnhaengen(static_cast<int>(static_cast<unsigned>(k.month())), 2, ziel);
    ziel += iso ? '-' : '.';
    ZiffernAnhaengen(iso ? tag : jahr, iso ? 2 : 4, ziel);
}

void ZahlAnhaengen(float wert, Zeitform form, std::string& ziel) {
    char puffer[32];
    const auto ende = std::to_chars(puffer, puffer + sizeof(puffer), wert).ptr;
    if (form == Zeitform::Deutsch) std::replace(puffer, ende, '.', ',');
    ziel.append(puffer, ende);
}

}  // namespace

bool Oeffne(Dateileser& leser, const std::string& pfad, std::ostream& fehler) {
    switch (leser.Oeffne(pfad)) {
        case Ergebnis::Offen:
            return true;
        case Ergebnis::NichtLesbar:
            fehler << "zek: " << pfad << ": " << Fehlertext(leser.Fehlernummer()) << "\n";
            return false;
        case Ergebnis::ZuKurz:
            fehler << "zek: " << pfad << ": kürzer als ein Dateikopf\n";
            return false;
        case Ergebnis::FremdeKennung:
            fehler << "zek: " << pfad << ": keine Datendatei\n";
            return false;
    }
    return false;
}

std::vector<std::string> Datendateien(Dateisystem& dateien, const std::string& pfad) {
    if (!dateien.OrdnerExistiert(pfad)) return {pfad};
    std::vector<std::string> gefunden;
    SammleOrdner(dateien, pfad, 0, gefunden);
    std::ranges::sort(gefunden);
    return gefunden;
}

std::vector<std::string> Maengel(const Dateibefund& befund) {
    std::vector<std::string> maengel;
    if (befund.Fehlernummer != 0) maengel.push_back(Fehlertext(befund.Fehlernummer));
    if (befund.Ergebnis == Ergebnis::ZuKurz) maengel.push_back("kürzer als ein Dateikopf");
    if (befund.Ergebnis == Ergebnis::FremdeKennung) maengel.push_back("keine Datendatei");
    if (befund.RestBytes != 0) {
        maengel.push_back("abgerissenes Ende (" + Anzahl(befund.RestBytes, "Byte", "Bytes") + ")");
    }
    if (befund.NullsaetzeAmEnde != 0) {
        maengel.push_back(Anzahl(befund.NullsaetzeAmEnde, "leerer Datensatz", "leere Datensätze") + " am Ende");
    }
    if (befund.NullsaetzeInnen != 0) {
        maengel.push_back(Anzahl(befund.NullsaetzeInnen, "leerer Datensatz", "leere Datensätze") + " im Inneren");
    }
    if (befund.Rueckspruenge != 0) {
        maengel.push_back(Anzahl(befund.Rueckspruenge, "Rücksprung", "Rücksprünge") +
                          " der Zeit, zuerst bei Datensatz " +
                          MitTausenderpunkten(static_cast<double>(befund.ErsterRuecksprung + 1)));
    }
    return maengel;
}

void ZeitAnhaengen(double datum, Zeitform form, std::string& ziel) {
    if (!(datum >= JahrHundert && datum < JahrZehntausend)) {
        char puffer[32];
        ziel.append(puffer, std::to_chars(puffer, puffer + sizeof(puffer), datum).ptr);
        return;
    }
    const Zeit zeit = AufMillisekunde(ZeitpunktAus(datum));
    const Kalendertag tag = TagVon(zeit);
    const auto imTag = static_cast<int>((zeit - tag).count());
    DatumAnhaengen(tag, form, ziel);
    ziel += form == Zeitform::Iso ? 'T' : ' ';
    ZiffernAnhaengen(imTag / 3600000, 2, ziel);
    ziel += ':';
    ZiffernAnhaengen(imTag / 60000 % 60, 2, ziel);
    ziel += ':';
    ZiffernAnhaengen(imTag / 1000 % 60, 2, ziel);
    ziel += form == Zeitform::Iso ? '.' : ',';
    ZiffernAnhaengen(imTag % 1000, 3, ziel);
}

void CsvZeileAnhaengen(const KursDatensatz& satz, Zeitform form, std::string& ziel) {
    const char trenner = form == Zeitform::Iso ? ',' : ';';
    ZeitAnhaengen(satz.Datum, form, ziel);
    ziel += trenner;
    ZahlAnhaengen(satz.Kurs, form, ziel);
    ziel += trenner;
    ZahlAnhaengen(satz.Volume, form, ziel);
    ziel += '\n';
}

int Info(std::span<const std::string> pfade, bool alles, Dateisystem& dateien, std::ostream& ausgabe,
         std::ostream& fehler) {
    std::vector<std::string> gefunden;
    int ergebnis = Sammle(pfade, dateien, fehler, gefunden) ? Gut : Fehlgeschlagen;
    if (!alles && gefunden.size() > EinzelneInfo) return std::max(ergebnis, Infouebersicht(gefunden, dateien, ausgabe));
    bool erste = true;
    for (const std::string& pfad : gefunden) {
        const Dateibefund befund = PruefeDatei(dateien, pfad);
        if (!erste) ausgabe << "\n";
        erste = false;
        ZeigeInfo(pfad, befund, ausgabe);
        if (befund.IstBeschaedigt()) ergebnis = std::max(ergebnis, Beanstandet);
        if (befund.Fehlernummer != 0) ergebnis = Fehlgeschlagen;
    }
    if (gefunden.empty() && ergebnis == Gut) ausgabe << "Keine Datendateien gefunden.\n";
    return ergebnis;
}

int Csv(const std::string& pfad, Zeitform form, Dateisystem& dateien, std::ostream& ausgabe, std::ostream& fehler) {
    Dateileser leser(dateien);
    HoleEinarbeitungNach(dateien, pfad, fehler);
    if (!Oeffne(leser, pfad, fehler)) return Fehlgeschlagen;
    ausgabe << (form == Zeitform::Iso ? "zeit,kurs,volume\n" : "Zeit;Kurs;Volume\n");
    std::string zeilen;
    for (auto block = leser.NaechsterBlock(); !block.empty() && ausgabe; block = leser.NaechsterBlock()) {
        zeilen.clear();
        for (const KursDatensatz& satz : block) {
            // Padding is no record.
            if (satz.Datum != 0.0) CsvZeileAnhaengen(satz, form, zeilen);
        }
        ausgabe << zeilen;
    }
    if (leser.Fehlernummer() == 0) return Gut;
    fehler << "zek: " << pfad << ": " << Fehlertext(leser.Fehlernummer()) << "\n";
    return Fehlgeschlagen;
}

int Check(std::span<const std::string> pfade, Dateisystem& dateien, std::ostream& ausgabe, std::ostream& fehler) {
    std::vector<std::string> gefunden;
    int ergebnis = Sammle(pfade, dateien, fehler, gefunden) ? Gut : Fehlgeschlagen;
    std::int64_t schlecht = 0;
    for (const std::string& pfad : gefunden) {
        const Dateibefund befund = PruefeDatei(dateien, pfad);
        // In the middle of a merge a file may look damaged.
        if (!befund.IstBeschaedigt() || SchliesseEinarbeitungAb(dateien, pfad) == Journalstand::Belegt) continue;
        ++schlecht;
        ausgabe << pfad << ": " << Zustand(Maengel(befund)) << "\n";
        ergebnis = std::max(ergebnis, befund.Fehlernummer != 0 ? Fehlgeschlagen : Beanstandet);
    }
    ausgabe << Anzahl(static_cast<std::int64_t>(gefunden.size()), "Datei", "Dateien") << " geprüft, "
            << MitTausenderpunkten(static_cast<double>(schlecht)) << " beanstandet.\n";
    return ergebnis;
}

}  // namespace zek::werkzeug
