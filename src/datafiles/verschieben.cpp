#include "datafiles/verschieben.h"

#include "datafiles/dateiio.h"
#include "datafiles/dateikopf.h"
#include "datafiles/dateinamen.h"
#include "datafiles/einarbeitungsjournal.h"
#include "platform/ohnefehler.h"

#include <utility>

namespace zek {

namespace {

// Without records a file may be replaced unasked.
bool HatSaetze(Dateisystem& dateien, const std::string& pfad) {
    bool hat = true;
    OhneFehler("Zieldatei ansehen", [&] {
        clDateiIO datei(dateien);
        if (datei.OeffneVorhandene(pfad)) hat = datei.FileSize().Bytes() > DateikopfBytes;
    });
    return hat;
}

class Umzug {
public:
    Umzug(Dateisystem& dateien, Meldungen& meldungen, std::string name, std::string quelle, std::string ziel)
        : dateien_(dateien),
          meldungen_(meldungen),
          name_(std::move(name)),
          quelle_(std::move(quelle)),
          ziel_(std::move(ziel)) {}

    bool Fuehre() {
        // A journal goes by the name of its file: left behind it would be lost to this one, or taken for that one's.
        SchliesseEinarbeitungAb(dateien_, quelle_);
        SchliesseEinarbeitungAb(dateien_, ziel_);
        for (;;) {
            if (dateien_.DateiExistiert(ziel_)) {
                if (HatSaetze(dateien_, ziel_) && !SollErsetzen()) return true;
                dateien_.Loesche(ziel_);
            }
            if (dateien_.BenenneUm(quelle_, ziel_) == 0) return true;
            if (!SollNochmal() && SollAbbrechen()) return false;
        }
    }

private:
    bool SollErsetzen() {
        return meldungen_.ZeigeMeldung("Die Datei '" + name_ +
                                           "' existiert bereits im neuen Ordner. Soll die Datei überschrieben "
                                           "werden? Wenn Sie 'Nein' klicken, wird die bestehende Datei weiter "
                                           "verwendet.",
                                       meldung::JaNein, 0) == meldung::AntwortJa;
    }

    bool SollNochmal() {
        return meldungen_.ZeigeMeldung("Die Datei '" + name_ +
                                           "' konnte nicht verschoben werden. Stellen Sie bitte sicher, dass die "
                                           "Datei jetzt nicht von Tessaron verwendet wird (alle "
                                           "Tessaron-Instanzen schließen).",
                                       meldung::WiederholenAbbrechen, 0) == meldung::AntwortWiederholen;
    }

    // Only a person's "Nein" goes on: where nobody answers, the action ends.
    bool SollAbbrechen() {
        return meldungen_.ZeigeMeldung(
                   "Soll der gesamte Vorgang wirklich abgebrochen werden? Es wurden noch nicht alle Titeldateien "
                   "verschoben!",
                   meldung::JaNein, 0) != meldung::AntwortNein;
    }

    Dateisystem& dateien_;
    Meldungen& meldungen_;
    std::string name_;
    std::string quelle_;
    std::string ziel_;
};

}  // namespace

bool TitelDateiVerschieben(const IBModul& modul, Dateisystem& dateien, Meldungen& meldungen, clTitelobjekt& titel,
                           std::int32_t kursart, const std::string& neuerKatalog) {
    std::string name = Dateinamensbildung(titel, kursart);
    const std::string alterKatalog = std::exchange(titel.Katalog, neuerKatalog);
    std::string ziel = Dateipfad(modul, dateien, titel, kursart);
    titel.Katalog = alterKatalog;
    std::string quelle = Dateipfad(modul, dateien, titel, kursart);
    // The same file under both names, as with catalogs that differ only in letter case, is where it should be.
    if (quelle == ziel || !dateien.DateiExistiert(quelle)) return true;
    return Umzug(dateien, meldungen, std::move(name), std::move(quelle), std::move(ziel)).Fuehre();
}

}  // namespace zek
