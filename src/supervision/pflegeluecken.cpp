#include "supervision/pflegeluecken.h"

#include "platform/text.h"

#include <algorithm>

namespace zek {

// Nothing can be said of the future: a run that was asked for it, by a wrong clock or by a person, has had answers up
// to the present at most.
void Pflegeluecken::Ergebnis(const Datenpflegeergebnis& ergebnis) {
    if (ergebnis.Titel != nullptr && ergebnis.Titel->Dateiname.empty()) return;
    const Zeitpunkt bis = std::min(ergebnis.Bis, uhr_.Jetzt());
    if (ergebnis.Von >= bis) return;
    const std::string kurse = MitTausenderpunkten(static_cast<double>(ergebnis.Kurse)) + " Sekundenkurse";
    std::string text(ergaenzung::NichtErgaenzt);
    if (!ergebnis.Ergaenzt)
        text += ergebnis.Grund;
    else if (ergebnis.NurHandelszeit)
        text += "nur die regulären Handelszeiten abgefragt (" + kurse + ")";
    else
        text = std::string(ergaenzung::Ergaenzt) + kurse;
    const std::string art = ergebnis.Titel != nullptr ? Kursartzusatz(ergebnis.Kursart) : std::string();
    buch_.Schreibe({AufMillisekunde(ergebnis.Von), AufMillisekunde(bis),
                    ergebnis.Titel != nullptr ? ergebnis.Titel->Dateiname : AlleTitel,
                    MitZusatz(ursache::Datenpflege, art), std::move(text)});
}

void Pflegeluecken::EinarbeitenBegonnen(const clTitelobjekt& titel, std::int32_t kursart, Zeitpunkt von,
                                        Zeitpunkt bis) {
    if (titel.Dateiname.empty()) return;
    Lueckenzeile zeile{AufMillisekunde(uhr_.Jetzt()), KeineZeit, titel.Dateiname,
                       MitZusatz(ursache::EinarbeitungBegonnen, Kursartzusatz(kursart)),
                       Lueckenzeittext(AufMillisekunde(von)) + " bis " + Lueckenzeittext(AufMillisekunde(bis))};
    buch_.Schreibe(zeile);
    laufende_.insert_or_assign({titel.Dateiname, kursart}, std::move(zeile));
}

void Pflegeluecken::EinarbeitenBeendet(const clTitelobjekt& titel, std::int32_t kursart) {
    const auto ort = laufende_.find({titel.Dateiname, kursart});
    if (ort == laufende_.end()) return;
    Lueckenzeile zeile = std::move(ort->second);
    laufende_.erase(ort);
    zeile.Bis = std::max(zeile.Von, AufMillisekunde(uhr_.Jetzt()));
    buch_.Schreibe(zeile);
}

void Pflegeluecken::Geleert(const clTitelobjekt& titel, std::int32_t kursart, Zeitpunkt von, Zeitpunkt bis) {
    if (titel.Dateiname.empty()) return;
    buch_.Schreibe({AufMillisekunde(von),
                    AufMillisekunde(bis),
                    titel.Dateiname,
                    MitZusatz(ursache::Umsatzfilter, Kursartzusatz(kursart)),
                    {}});
}

}  // namespace zek
