#include "session/anwenden.h"

#include "feed/abonnement.h"
#include "platform/ohnefehler.h"
#include "platform/text.h"

#include <variant>

namespace zek {

namespace {

// The controls' texts, as people type them.
void TrimmeTexte(Einstellungen& e) {
    for (const Einstellungszeile& zeile : Einstellungstabelle()) {
        const auto* feld = std::get_if<std::string Einstellungen::*>(&zeile.Ziel);
        if (feld != nullptr && zeile.Abschnitt == abschnitt::Optionen) e.** feld = std::string(Getrimmt(e.**feld));
    }
}

}  // namespace

void EinstellungenAnwenden(Einstellungen& e, const Titelbestand& bestand, Einstellungsspeicher& speicher,
                           const Einstellungen& neu, const std::function<void()>& uhrzeitAnfordern,
                           const std::function<void()>& kontoabosAnfordern) {
    const int bisherigeSekunden = e.NeuStartBeiFehlendenKursenSekunden;
    e = neu;
    if (!e.NeuStartBeiFehlendenKursen) e.NeuStartBeiFehlendenKursenSekunden = bisherigeSekunden;
    TrimmeTexte(e);
    Begrenze(e);
    if (e.AutoUhrzeitStellen) OhneFehler("Uhrzeit nach den Einstellungen anfordern", [&] { uhrzeitAnfordern(); });
    for (const Titelzeiger& titel : bestand.Titelliste) TitelmerkmaleAbleiten(*titel, e);
    speicher.SpeichereEinstellungen();
    OhneFehler("Kontoabos nach den Einstellungen", [&] { kontoabosAnfordern(); });
}

}  // namespace zek
