#include "datafiles/verschieben.h"

#include "datafiles/dateiio.h"
#include "datafiles/dateikopf.h"
#include "datafiles/dateinamen.h"
#include "datafiles/einarbeitungsjournal.h"
#include "platform/ohnefehler.h"
#include "titles/dateigriff.h"

#include <cerrno>
#include <span>
#include <utility>
#include <vector>

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
    Umzug(Dateisystem& dateien, Meldungen& meldungen, const Umzugspause& pause, std::string name, std::string quelle,
          std::string ziel)
        : dateien_(dateien),
          meldungen_(meldungen),
          pause_(pause),
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
                // Its only copy.
                if (dateien_.GleicheDatei(quelle_, ziel_)) return true;
                dateien_.Loesche(ziel_);
            }
            const int ergebnis = dateien_.BenenneUm(quelle_, ziel_);
            if (ergebnis == 0 || (ergebnis == -EXDEV && KopiereHinueber())) return true;
            if (!SollNochmal() && SollAbbrechen()) return false;
        }
    }

private:
    // To the other disk, beside the target first. What is appended to the source meanwhile is taken along; between the
    // last look and the end no event runs.
    bool KopiereHinueber() {
        const std::string neben = ziel_ + ".Umzug";
        dateien_.Loesche(neben);
        bool gelungen = KopiereNach(neben) && dateien_.BenenneUm(neben, ziel_) == 0;
        if (!gelungen) {
            dateien_.Loesche(neben);
        } else if (dateien_.Loesche(quelle_) != 0) {
            dateien_.Loesche(ziel_);
            gelungen = false;
        }
        return gelungen;
    }

    bool KopiereNach(const std::string& neben) {
        const Dateigriff von(dateien_, quelle_, Oeffnen::NurLesen);
        const Dateigriff nach(dateien_, neben, Oeffnen::Anlegen);
        if (von.Handle() < 0 || nach.Handle() < 0) return false;
        std::vector<std::byte> stueck(std::size_t{1} << 20);
        for (bool fest = false;;) {
            const std::int64_t bytes = dateien_.Lies(von.Handle(), stueck);
            if (bytes < 0) return false;
            if (bytes == 0 && fest) return true;
            if (bytes == 0) {
                if (dateien_.Leere(nach.Handle()) != 0) return false;
                fest = true;
                continue;
            }
            if (SchreibeGanz(dateien_, nach.Handle(), std::span(stueck).first(static_cast<std::size_t>(bytes))) != 0)
                return false;
            fest = false;
            if (pause_ && bytes == std::ssize(stueck)) pause_();
        }
    }

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
    const Umzugspause& pause_;
    std::string name_;
    std::string quelle_;
    std::string ziel_;
};

}  // namespace

bool TitelDateiVerschieben(const IBModul& modul, Dateisystem& dateien, Meldungen& meldungen, clTitelobjekt& titel,
                           std::int32_t kursart, const std::string& neuerKatalog, const Umzugspause& pause) {
    std::string name = Dateinamensbildung(titel, kursart);
    const std::string alterKatalog = std::exchange(titel.Katalog, neuerKatalog);
    std::string ziel = Dateipfad(modul, dateien, titel, kursart);
    titel.Katalog = alterKatalog;
    std::string quelle = Dateipfad(modul, dateien, titel, kursart);
    if (!dateien.DateiExistiert(quelle)) return true;
    return Umzug(dateien, meldungen, pause, std::move(name), std::move(quelle), std::move(ziel)).Fuehre();
}

bool VereineNachUmzug(Dateisystem& dateien, const std::string& quelle, const std::string& ziel) {
    if (dateien.GleicheDatei(quelle, ziel)) return true;
    std::string inhalt;
    const Dateigriff nach(dateien, ziel, Oeffnen::Anlegen);
    if (nach.Handle() < 0 || !LiesGanz(dateien, quelle, inhalt)) return false;
    const std::int64_t ende = dateien.Groesse(nach.Handle());
    constexpr auto kopf = static_cast<std::size_t>(DateikopfBytes), satz = static_cast<std::size_t>(DatensatzBytes);
    const auto bytes = std::as_bytes(std::span(inhalt));
    // Whole records behind whole records only: a torn file takes none from here either.
    const bool neu = ende == 0;
    const bool heil = ende >= DateikopfBytes && (ende - DateikopfBytes) % DatensatzBytes == 0;
    if (bytes.size() < kopf || !(neu || heil)) return false;
    const std::size_t saetze = (bytes.size() - kopf) / satz * satz;
    if (dateien.Suche(nach.Handle(), ende, Ab::Anfang) != ende) return false;
    if (SchreibeGanz(dateien, nach.Handle(), neu ? bytes.first(kopf + saetze) : bytes.subspan(kopf, saetze)) != 0) {
        dateien.SetzeLaenge(nach.Handle(), ende);
        return false;
    }
    if (dateien.Loesche(quelle) == 0) return true;
    dateien.SetzeLaenge(nach.Handle(), ende);
    return false;
}

}  // namespace zek
