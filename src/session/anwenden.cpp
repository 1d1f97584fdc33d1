#include "session/anwenden.h"

#include "feed/abonnement.h"
#include "platform/ohnefehler.h"
#include "platform/text.h"

#include <algorithm>
#include <utility>

namespace zek {

namespace {

constexpr int KleinstesTimeout = 10;  // seconds

void NurUhrzeit(Datum& wert) {
    if (wert > 1) wert = Tageszeit(wert);
}

void TrimmeText(std::string& text) {
    text = std::string(Getrimmt(text));
}

}  // namespace

void EinstellungenAnwenden(IBModul& modul, Einstellungsspeicher& speicher, const Einstellungen& neu,
                           const std::function<void()>& uhrzeitAnfordern,
                           const std::function<void()>& kontoabosAnfordern) {
    Einstellungen& e = modul.Einstellungen;
    const int bisherigeSekunden = e.NeuStartBeiFehlendenKursenSekunden;
    e = neu;
    if (!e.NeuStartBeiFehlendenKursen) e.NeuStartBeiFehlendenKursenSekunden = bisherigeSekunden;
    TrimmeText(e.AufzeichnungsPauseBoersen);
    TrimmeText(e.NeustartFehlernummern);
    TrimmeText(e.KontenDatenKontoName);
    TrimmeText(e.KontenDatenSpeicherOrdner);
    e.KontenDatenSpeicherOrdner = Kontoordner(std::move(e.KontenDatenSpeicherOrdner));
    e.BFTimeOut = std::max(e.BFTimeOut, KleinstesTimeout);
    if (e.AutoUhrzeitStellen) OhneFehler([&] { uhrzeitAnfordern(); });
    NurUhrzeit(e.NeustartUhrzeit);
    NurUhrzeit(e.KeineAufzeichungStart);
    NurUhrzeit(e.KeineAufzeichungEnde);
    e.NeustartFehlerliste.clear();
    if (!e.NeustartFehlernummern.empty()) e.NeustartFehlerliste = Teile(e.NeustartFehlernummern, ',');
    for (const Titelzeiger& titel : modul.Titelliste) TitelmerkmaleAbleiten(*titel, e);
    speicher.SpeichereEinstellungen();
    OhneFehler([&] { kontoabosAnfordern(); });
}

void VerbindungsangabenSpeichern(IBModul& modul, Einstellungsspeicher& speicher, const std::string& adresse, int port,
                                 int clientId) {
    modul.Einstellungen.IBIPAdr = adresse;
    modul.Einstellungen.IBPort = port;
    modul.Einstellungen.IBLoginID = clientId;
    speicher.SchreibeEinstellung(Programmtitel, abschnitt::IBConnect, "IBIPAdr", adresse);
    speicher.SchreibeEinstellung(Programmtitel, abschnitt::IBConnect, "IBPort", std::to_string(port));
    speicher.SchreibeEinstellung(Programmtitel, abschnitt::IBConnect, "IBLoginID", std::to_string(clientId));
}

}  // namespace zek
