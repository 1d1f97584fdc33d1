#include "session/einstellungen.h"

#include "platform/datum.h"
#include "platform/ohnefehler.h"
#include "platform/text.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace zek {

namespace {

// A profile read that fills its buffer may have been cut; it is repeated with the large one.
constexpr std::size_t Kleinpuffer = 500;
constexpr std::size_t Grosspuffer = 32000;

constexpr int MindestTimeout = 10;  // seconds
constexpr int MindestSekundenOhneKurse = 10;
constexpr std::string_view SchluesselLokal = "LokalSettings";

// Values that older versions or people wrote in the locale's words stay convertible.
std::string OhneLokaleWoerter(std::string text) {
    if (GleichOhneGrossKlein(text, "falsch")) return "False";
    if (GleichOhneGrossKlein(text, "wahr")) return "True";
    return text;
}

// The conversion of a text to a boolean: the words count as well as the number.
bool AlsWahrheitswert(std::string_view text) {
    return GleichOhneGrossKlein(Getrimmt(text), "True") || EinstellungWahr(text);
}

const char* EinsOderNull(bool wert) {
    return wert ? "1" : "0";
}

Datum NurTageszeit(Datum wert) {
    return wert > 1 ? Tageszeit(wert) : wert;
}

Datum Zeiteinstellung(std::string_view text, Datum vorgabe) {
    return NurTageszeit(DatumAusText(text).value_or(vorgabe));
}

}  // namespace

std::string Kontoordner(std::string ordner) {
    if (!ordner.empty() && ordner.back() != '/') ordner += '/';
    return ordner;
}

bool EinstellungWahr(std::string_view text) {
    return Zahlwert(text) != 0;
}

int EinstellungGanzzahl(std::string_view text) {
    constexpr double Kleinste = std::numeric_limits<int>::min(), Groesste = std::numeric_limits<int>::max();
    return static_cast<int>(std::clamp(Zahlwert(text), Kleinste, Groesste));
}

Einstellungsspeicher::Einstellungsspeicher(IBModul& modul, Nutzerspeicher& registry, Profildatei& lokaleDatei)
    : modul_(modul), registry_(registry), lokaleDatei_(lokaleDatei) {}

bool Einstellungsspeicher::InDatei(bool immerRegistry, bool immerDatei) const {
    return immerDatei || (modul_.LokalSettings && !immerRegistry);
}

std::string Einstellungsspeicher::LiesAusDatei(std::string_view abschnitt, std::string_view schluessel,
                                               std::string_view vorgabe) {
    std::string text = lokaleDatei_.Lies(abschnitt, schluessel, vorgabe, Kleinpuffer);
    if (NachCodepage(text).size() >= Kleinpuffer - 1)
        text = lokaleDatei_.Lies(abschnitt, schluessel, vorgabe, Grosspuffer);
    return text;
}

std::string Einstellungsspeicher::LeseEinstellung(std::string_view anwendung, std::string_view abschnitt,
                                                  std::string_view schluessel, std::string_view vorgabe,
                                                  bool immerRegistry, bool immerDatei) {
    std::string text;
    OhneFehler([&] {
        text = InDatei(immerRegistry, immerDatei) ? LiesAusDatei(abschnitt, schluessel, vorgabe)
                                                  : LeseRegistry(anwendung, abschnitt, schluessel, vorgabe);
    });
    return OhneLokaleWoerter(std::move(text));
}

bool Einstellungsspeicher::SchreibeEinstellung(std::string_view anwendung, std::string_view abschnitt,
                                               std::string_view schluessel, std::string_view wert, bool immerRegistry,
                                               bool immerDatei) {
    OhneFehler([&] {
        if (InDatei(immerRegistry, immerDatei))
            lokaleDatei_.Schreibe(abschnitt, schluessel, wert);
        else
            SchreibeRegistry(anwendung, abschnitt, schluessel, wert);
    });
    return true;
}

std::string Einstellungsspeicher::LeseRegistry(std::string_view anwendung, std::string_view abschnitt,
                                               std::string_view schluessel, std::string_view vorgabe) {
    return registry_.Lies(anwendung, abschnitt, schluessel).value_or(std::string(vorgabe));
}

void Einstellungsspeicher::SchreibeRegistry(std::string_view anwendung, std::string_view abschnitt,
                                            std::string_view schluessel, std::string_view wert) {
    registry_.Schreibe(anwendung, abschnitt, schluessel, wert);
}

void Einstellungsspeicher::LoescheRegistry(std::string_view anwendung, std::string_view abschnitt,
                                           std::string_view schluessel) {
    registry_.Loesche(anwendung, abschnitt, schluessel);
}

std::string Einstellungsspeicher::Lies(std::string_view abschnitt, std::string_view schluessel,
                                       std::string_view vorgabe) {
    return LeseEinstellung(Programmtitel, abschnitt, schluessel, vorgabe);
}

void Einstellungsspeicher::Schreib(std::string_view abschnitt, std::string_view schluessel, std::string_view wert) {
    SchreibeEinstellung(Programmtitel, abschnitt, schluessel, wert);
}

void Einstellungsspeicher::LeseLokalSettings() {
    modul_.LokalSettings =
        AlsWahrheitswert(LeseEinstellung(Programmtitel, abschnitt::Optionen, SchluesselLokal, "0", false, true));
}

void Einstellungsspeicher::LeseAlleEinstellungen(Meldungen& meldungen) {
    Einstellungen& e = modul_.Einstellungen;
    const auto text = [&](std::string_view schluessel, std::string_view vorgabe) {
        return Lies(abschnitt::Optionen, schluessel, vorgabe);
    };
    const auto wahr = [&](std::string_view schluessel) { return EinstellungWahr(text(schluessel, "0")); };

    e.UseGesamtvolumen = wahr("UseGesamtvolumen");
    e.IBBezahlt = EinstellungWahr(Lies(abschnitt::UmsatzFilter, "IBBezahlt", "0"));
    e.IBAndere = EinstellungWahr(Lies(abschnitt::UmsatzFilter, "IBAndere", "0"));
    e.AutoDatenpflege = wahr("AutoDatenpflege");
    e.KontenDatenAufzeichnen = wahr("KontenDatenAufzeichnen");
    e.PortfolioAufzeichnen = wahr("PortfolioAufzeichnen");
    e.KontenDatenUseNoKontoName = wahr("KontenDatenUseNoKontoName");
    e.KontenDatenKontoName = text("KontenDatenKontoName", "");
    e.KontenDatenSpeicherOrdner = Kontoordner(text("KontenDatenSpeicherOrdner", ""));
    e.BFTimeOut = std::max(EinstellungGanzzahl(text("BFTimeOut", "60")), MindestTimeout);
    e.BidAskWartetLast = wahr("BidAskWartetLast");
    e.NeuStartbeiUhrzeit = wahr("NeuStartbeiUhrzeit");
    const std::string neustart = text("NeustartUhrzeit", "06:30:00");
    e.NeustartUhrzeit = Zeiteinstellung(neustart, Uhrzeit(6, 30));
    if (e.NeuStartbeiUhrzeit && !DatumAusText(neustart))
        meldungen.ZeigeMeldung("Falsches Zeitformat in ZEK-Einstellung Neustart-Uhrzeit (bitte prüfen!).", meldung::Ok,
                               0);
    e.NeustartFehlernummern = Getrimmt(text("NeustartFehlernummern", ""));
    e.NeustartFehlerliste =
        e.NeustartFehlernummern.empty() ? std::vector<std::string>() : Teile(e.NeustartFehlernummern, ',');
    e.NeuStartBeiFehlendenKursen = wahr("NeuStartBeiFehlendenKursen");
    e.NeuStartBeiFehlendenKursenSekunden =
        std::max(EinstellungGanzzahl(text("NeuStartBeiFehlendenKursenSekunden", "90")), MindestSekundenOhneKurse);
    e.KursAufzeichnungDeaktivieren = wahr("KursAufzeichnungDeaktivieren");
    e.KeineAufzeichungStart = Zeiteinstellung(text("KeineAufzeichungStart", "05:00:00"), Uhrzeit(5, 0));
    e.KeineAufzeichungEnde = Zeiteinstellung(text("KeineAufzeichungEnde", "06:00:00"), Uhrzeit(6, 0));
    e.AufzeichnungsPauseBoersen = Getrimmt(text("AufzeichnungsPauseBoersen", ""));
    e.AutoUhrzeitStellen = wahr("AutoUhrzeitStellen");
    e.KomprimierteAnsicht = wahr("KomprimierteAnsicht");
    e.IBIPAdr = Lies(abschnitt::IBConnect, "IBIPAdr", "");
    e.IBPort = EinstellungGanzzahl(Lies(abschnitt::IBConnect, "IBPort", ""));
    e.IBLoginID = EinstellungGanzzahl(Lies(abschnitt::IBConnect, "IBLoginID", "255281497"));
}

void Einstellungsspeicher::SpeichereEinstellungen() {
    const Einstellungen& e = modul_.Einstellungen;
    const auto option = [&](std::string_view schluessel, std::string_view wert) {
        Schreib(abschnitt::Optionen, schluessel, wert);
    };

    option("UseGesamtvolumen", EinsOderNull(e.UseGesamtvolumen));
    Schreib(abschnitt::UmsatzFilter, "IBBezahlt", EinsOderNull(e.IBBezahlt));
    Schreib(abschnitt::UmsatzFilter, "IBAndere", EinsOderNull(e.IBAndere));
    option("AutoDatenpflege", EinsOderNull(e.AutoDatenpflege));
    option("KontenDatenAufzeichnen", EinsOderNull(e.KontenDatenAufzeichnen));
    option("PortfolioAufzeichnen", EinsOderNull(e.PortfolioAufzeichnen));
    option("KontenDatenUseNoKontoName", EinsOderNull(e.KontenDatenUseNoKontoName));
    option("KontenDatenKontoName", e.KontenDatenKontoName);
    option("KontenDatenSpeicherOrdner", e.KontenDatenSpeicherOrdner);
    option("BFTimeOut", std::to_string(e.BFTimeOut));
    option("BidAskWartetLast", EinsOderNull(e.BidAskWartetLast));
    option("NeuStartbeiUhrzeit", EinsOderNull(e.NeuStartbeiUhrzeit));
    option("NeustartUhrzeit", Datumtext(e.NeustartUhrzeit));
    option("NeustartFehlernummern", e.NeustartFehlernummern);
    option("NeuStartBeiFehlendenKursen", EinsOderNull(e.NeuStartBeiFehlendenKursen));
    option("NeuStartBeiFehlendenKursenSekunden", std::to_string(e.NeuStartBeiFehlendenKursenSekunden));
    option("KursAufzeichnungDeaktivieren", EinsOderNull(e.KursAufzeichnungDeaktivieren));
    option("KeineAufzeichungStart", Datumtext(e.KeineAufzeichungStart));
    option("KeineAufzeichungEnde", Datumtext(e.KeineAufzeichungEnde));
    option("AufzeichnungsPauseBoersen", e.AufzeichnungsPauseBoersen);
    option("AutoUhrzeitStellen", EinsOderNull(e.AutoUhrzeitStellen));
    Schreib(abschnitt::IBConnect, "IBIPAdr", e.IBIPAdr);
    Schreib(abschnitt::IBConnect, "IBPort", std::to_string(e.IBPort));
    Schreib(abschnitt::IBConnect, "IBLoginID", std::to_string(e.IBLoginID));
}

void Einstellungsspeicher::UebernehmeVerbindung(const Verbindungsangaben& angaben) {
    modul_.Einstellungen.IBIPAdr = angaben.IBIPAdr;
    modul_.Einstellungen.IBPort = angaben.IBPort;
    modul_.Einstellungen.IBLoginID = angaben.IBLoginID;
    Schreib(abschnitt::IBConnect, "IBIPAdr", angaben.IBIPAdr);
    Schreib(abschnitt::IBConnect, "IBPort", std::to_string(angaben.IBPort));
    Schreib(abschnitt::IBConnect, "IBLoginID", std::to_string(angaben.IBLoginID));
}

bool Einstellungsspeicher::LokalSpeichernUmschalten(Meldungen& meldungen,
                                                    const std::function<void(bool)>& markeSetzen) {
    const bool neu = !modul_.LokalSettings;
    modul_.LokalSettings = neu;
    markeSetzen(neu);
    const bool bestaetigt = neu ? LokalEinschalten(meldungen) : LokalAusschalten(meldungen);
    if (!bestaetigt) {
        modul_.LokalSettings = !neu;
        markeSetzen(!neu);
    }
    SchreibeEinstellung(Programmtitel, abschnitt::Optionen, SchluesselLokal, EinsOderNull(modul_.LokalSettings), false,
                        true);
    return modul_.LokalSettings;
}

bool Einstellungsspeicher::LokalEinschalten(Meldungen& meldungen) {
    const int antwort = meldungen.ZeigeMeldung(
        "Die Einstellungen von ZEK für IB werden nun lokal im Verzeichnis '" + modul_.Programmordner +
            "' in der Datei 'ZEK_IB_Para.ini' gespeichert. Dies kann sinnvoll sein, wenn Sie mehrere Instanzen von ZEK "
            "für IB auf dem selben Rechner einsetzen.",
        meldung::OkAbbrechen, 0);
    if (antwort != meldung::AntwortOk) {
        meldungen.ZeigeMeldung(
            "Sie haben gewählt, dass die Einstellungen doch weiterhin in der Registry gespeichert werden.", meldung::Ok,
            0);
        return false;
    }
    SpeichereEinstellungen();
    return true;
}

bool Einstellungsspeicher::LokalAusschalten(Meldungen& meldungen) {
    const int antwort = meldungen.ZeigeMeldung(
        "Die Einstellungen von ZEK für IB werden wieder in der Registry gespeichert.", meldung::OkAbbrechen, 0);
    if (antwort != meldung::AntwortOk) {
        meldungen.ZeigeMeldung("Sie haben gewählt, dass die Einstellungen doch weiterhin lokal gespeichert werden.",
                               meldung::Ok, 0);
        return false;
    }
    if (meldungen.ZeigeMeldung("Sollen die aktuellen Einstellungen jetzt in die Registry gespeichert werden?",
                               meldung::JaNein, 0) == meldung::AntwortJa)
        SpeichereEinstellungen();
    return true;
}

}  // namespace zek
