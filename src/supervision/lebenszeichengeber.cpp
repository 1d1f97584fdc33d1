#include "supervision/lebenszeichengeber.h"

namespace zek {

void Lebenszeichengeber::Beginne(Zeitpunkt jetzt) {
    rechnerstart_ = Rechnerstart(dateien_);
    zuletzt_ = jetzt;
}

// Records, lines of the evidence, and bars of a backfill.
bool Lebenszeichengeber::IstNeues() {
    const bool saetze = tickuhr_.Kursanzahl != kursanzahl_;
    if (saetze) datenBis_ = tickuhr_.LetzteDatenZeit;
    const bool neu = saetze || buch_.Geschrieben() != geschrieben_ || pflege_.DatenpflegeLaeuft;
    kursanzahl_ = tickuhr_.Kursanzahl;
    geschrieben_ = buch_.Geschrieben();
    return neu;
}

Zeit Lebenszeichengeber::DatenBis() const {
    return datenBis_ ? AufMillisekunde(*datenBis_) : KeineZeit;
}

void Lebenszeichengeber::Pruefe(Zeitpunkt jetzt) {
    neues_ = IstNeues() || neues_;
    const Dauer vergangen = std::chrono::abs(jetzt - zuletzt_);
    if (laeuft_) {
        const auto ergebnis = dateien_.Sicherungsergebnis();
        if (ergebnis) {
            laeuft_ = false;
            gesichert_ = *ergebnis == 0;
            if (!gesichert_) GibZeichen(jetzt);
        } else if (vergangen >= Ruhetakt) {
            GibZeichen(jetzt);  // a disk that hangs
        }
        return;
    }
    if (vergangen < Takt - 500ms || (!neues_ && vergangen < Ruhetakt - 500ms)) return;
    if (neues_)
        BeginneSicherung(jetzt);
    else
        GibZeichen(jetzt);
}

void Lebenszeichengeber::Beende(Zeitpunkt jetzt) {
    IstNeues();
    dateien_.Sicherungsergebnis();  // makes room for another round when one is over
    BeginneSicherung(jetzt);
}

void Lebenszeichengeber::BeginneSicherung(Zeitpunkt jetzt) {
    const std::string ordner = Lueckenpfad(ordner_.Datenordner);
    const Lebenszeichen zeichen{AufMillisekunde(jetzt), DatenBis(), rechnerstart_};
    laeuft_ = dateien_.BeginneSicherung(ordner_.Datenordner, ordner + std::string(Lebenszeichendatei),
                                        Lebenszeichentext(zeichen)) == 0;
    zuletzt_ = jetzt;
    neues_ = false;
    gesichert_ = false;
    if (!laeuft_) GibZeichen(jetzt);
}

void Lebenszeichengeber::GibZeichen(Zeitpunkt jetzt) {
    Lebenszeichen zeichen{AufMillisekunde(jetzt), std::nullopt, rechnerstart_};
    if (gesichert_) zeichen.Daten = DatenBis();
    SchreibeLebenszeichen(dateien_, Lueckenpfad(ordner_.Datenordner), zeichen);
    zuletzt_ = jetzt;
}

}  // namespace zek
