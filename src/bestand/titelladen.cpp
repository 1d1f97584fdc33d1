#include "bestand/titelladen.h"

#include "datafiles/dateinamen.h"
#include "platform/ohnefehler.h"
#include "platform/systemtext.h"
#include "titles/titeldatei.h"

#include <cstdint>
#include <exception>
#include <optional>
#include <utility>

namespace zek {

namespace {

constexpr int NachrichtenJePause = 31;           // messages after which the next second is waited for
constexpr float Pausenlaenge = 1.0F;             // seconds
constexpr std::int64_t FortschrittSchritt = 20;  // titles
constexpr std::string_view Unterbrochen =
    "Das letzte Speichern der Titeldefinitionen wurde unterbrochen. Es gilt die Liste davor; was schon geschrieben "
    "war, liegt in „IB_Titel.Dat.defekt“.";

}  // namespace

void Titellader::Titelladen() {
    try {
        const Titeldatei datei = LiesTiteldatei(um_.Dateien, um_.Ordner.Programmordner);
        using enum Titeldatei::Zustand;
        unbedenklich_ = datei.Ergebnis == Gelesen || datei.Ergebnis == Leer;
        if (datei.Ergebnis == Gelesen || datei.Ergebnis == Beschaedigt) {
            um_.Anzeige.Startinfo("Die Titeldefinitionen werden geladen. Bitte warten...");
            um_.Pumpe.Ereignisse();
        }
        if (datei.Zurueckgestellt) um_.Status.Statusmeldung(Unterbrochen, true);
        if (datei.Ergebnis == Beschaedigt || datei.Ergebnis == NichtLesbar) MeldeLadefehler(datei.Fehlertext);
        if (datei.Ergebnis == Gelesen) Uebernehme(datei.Titel);
    } catch (const std::exception& fehler) {
        OhneFehler("Ladefehler melden", [&] { MeldeLadefehler(Fehlertext(fehler)); });
    }
    um_.Anzeige.Sanduhr(false);
}

void Titellader::MeldeLadefehler(const std::string& text) {
    um_.Fragen.ZeigeMeldung("Fehler beim Laden der Titeldefinitionen aufgetreten: " + text, meldung::Ok, 0);
}

void Titellader::Uebernehme(const Wert& baum) {
    um_.Anzeige.Sanduhr(false);
    um_.Bestand.Titelliste.Leere();
    um_.Bestand.Katalogliste.Leere();
    um_.Anzeige.Sanduhr(true);
    um_.Anzeige.Startinfo("Der Datenstrom wird initialisiert. Bitte warten...");
    const auto* liste = std::get_if<Werteliste>(&baum.Inhalt);
    if (liste) {
        const auto anzahl = static_cast<std::int64_t>(liste->Elemente.size());
        um_.Anzeige.FortschrittMaximum(static_cast<int>(liste->Untergrenze + anzahl - 1));
    }
    um_.Bestand.Titelnummer = 0;
    um_.Pumpe.Ereignisse();
    letztePause_ = um_.Zeit.Timer();
    gesendet_ = 0;
    if (liste) UebernehmeAlle(*liste);
    OhneFehler("Titelinformation nach dem Laden", [&] { um_.TitelInfoAktualisieren(); });
}

void Titellader::UebernehmeAlle(const Werteliste& liste) {
    std::int64_t stelle = liste.Untergrenze;
    for (const Wert& para : liste.Elemente) {
        UebernehmeTitel(para);
        if (stelle % FortschrittSchritt == 0) um_.Anzeige.FortschrittWert(static_cast<int>(stelle));
        ++stelle;
    }
}

void Titellader::UebernehmeTitel(const Wert& para) {
    auto titel = std::make_shared<clTitelobjekt>();
    titel->id = ++um_.Bestand.Titelnummer;
    // A title with an unreadable element keeps what was read before it.
    OhneFehler("Titel aus den Definitionen lesen", [&] { titel->ReadAllPara(para); });
    HalteImOrdner(titel->Katalog, "Der Katalog");
    HalteImOrdner(titel->Dateiname, "Der Dateiname");
    um_.Bestand.Titelliste.Fuege(titel);
    if (gesendet_ >= NachrichtenJePause) HalteTakt();
    OhneFehler("Geladenen Titel abonnieren", [&] {
        if (titel->Aktiv() && um_.Verbunden()) gesendet_ += um_.Abonniere(*titel);
    });
    if (!titel->Katalog.empty()) um_.Bestand.Katalogliste.Fuege(titel->Katalog);
}

// The new name is the title's from here on: files, evidence and the next save all go by it.
void Titellader::HalteImOrdner(std::string& name, std::string_view was) {
    std::string sicher = ImOrdner(name);
    if (sicher == name) return;
    if (gemeldeteNamen_.insert(name).second) {
        std::erase(name, '\0');
        OhneFehler("Verlegten Namen melden", [&] {
            um_.Status.Statusmeldung(std::string(was) + " „" + name + "“ aus den Titeldefinitionen führt aus dem " +
                                         "Datenordner. Die Daten liegen deshalb unter „" + sicher + "“.",
                                     true);
        });
    }
    name = std::move(sicher);
}

void Titellader::HalteTakt() {
    PumpeBis(um_.Pumpe, [&] {
        const float jetzt = um_.Zeit.Timer();
        if (jetzt < letztePause_) letztePause_ = jetzt;  // midnight has passed: a whole second from here
        return jetzt - letztePause_ >= Pausenlaenge;
    });
    letztePause_ = um_.Zeit.Timer();
    gesendet_ = 0;
}

Titelsicherung::Titelsicherung(const Ordner& ordner, const Titelbestand& bestand, Dateisystem& dateien,
                               Startanzeige& anzeige, Meldungen& meldungen)
    : ordner_(ordner), bestand_(bestand), dateien_(dateien), anzeige_(anzeige), meldungen_(meldungen) {}

void Titelsicherung::Titelspeichern() {
    anzeige_.Sanduhr(true);
    std::optional<std::string> fehlertext;
    try {
        fehlertext = SchreibeTiteldatei(dateien_, ordner_.Programmordner, bestand_.Titelliste);
    } catch (const std::exception& fehler) {
        fehlertext = Fehlertext(fehler);
    }
    if (fehlertext) {
        meldungen_.ZeigeMeldung("Fehler beim Speichern der Titeldefinitionen aufgetreten: " + *fehlertext, meldung::Ok,
                                0);
    }
    anzeige_.Sanduhr(false);
}

}  // namespace zek
