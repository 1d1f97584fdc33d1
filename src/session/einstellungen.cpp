#include "session/einstellungen.h"

#include "platform/ohnefehler.h"
#include "platform/text.h"

#include <cerrno>
#include <chrono>
#include <utility>

namespace zek {

namespace {

// A profile read that fills its buffer may have been cut; it is repeated with the large one.
constexpr std::size_t Kleinpuffer = 500;
constexpr std::size_t Grosspuffer = 32000;

constexpr std::string_view SchluesselLokal = "LokalSettings";
constexpr std::string_view SchluesselNeustartUhrzeit = "NeustartUhrzeit";

// Others write for milliseconds; one that was stopped while it did must not stop everybody else.
constexpr std::chrono::milliseconds Wartetakt{20};
constexpr int HoechsteTakte = 100;

const Schreibschlange::Ziel LokaleDatei{true, {}};

Schreibschlange::Ziel Registry(std::string_view anwendung) {
    return {false, std::string(anwendung)};
}

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

}  // namespace

Einstellungsspeicher::Einstellungsspeicher(Einstellungen& felder, const Ordner& ordner, Nutzerspeicher& registry,
                                           Profildatei& lokaleDatei)
    : felder_(felder),
      ordner_(ordner),
      registry_(registry),
      lokaleDatei_(lokaleDatei),
      schlange_(registry, lokaleDatei) {}

bool Einstellungsspeicher::InDatei(bool immerRegistry, bool immerDatei) const {
    return immerDatei || (LokalSettings && !immerRegistry);
}

std::string Einstellungsspeicher::LiesAusDatei(std::string_view abschnitt, std::string_view schluessel,
                                               std::string_view vorgabe) {
    if (const auto* wartend = schlange_.Wartend(LokaleDatei, abschnitt, schluessel))
        return wartend->Wert.value_or(std::string(vorgabe));
    std::string text = lokaleDatei_.Lies(abschnitt, schluessel, vorgabe, Kleinpuffer);
    if (NachCodepage(text).size() >= Kleinpuffer - 1)
        text = lokaleDatei_.Lies(abschnitt, schluessel, vorgabe, Grosspuffer);
    return text;
}

std::string Einstellungsspeicher::LeseEinstellung(std::string_view anwendung, std::string_view abschnitt,
                                                  std::string_view schluessel, std::string_view vorgabe,
                                                  bool immerRegistry, bool immerDatei) {
    std::string text;
    OhneFehler("Einstellung lesen", [&] {
        text = InDatei(immerRegistry, immerDatei) ? LiesAusDatei(abschnitt, schluessel, vorgabe)
                                                  : LeseRegistry(anwendung, abschnitt, schluessel, vorgabe);
    });
    return OhneLokaleWoerter(std::move(text));
}

bool Einstellungsspeicher::SchreibeEinstellung(std::string_view anwendung, std::string_view abschnitt,
                                               std::string_view schluessel, std::string_view wert, bool immerRegistry,
                                               bool immerDatei) {
    OhneFehler("Einstellung schreiben", [&] {
        Schreibe(InDatei(immerRegistry, immerDatei) ? LokaleDatei : Registry(anwendung),
                 {std::string(abschnitt), std::string(schluessel), std::string(wert)}, Haltbarkeit::Sofort);
    });
    return true;
}

void Einstellungsspeicher::SchreibeMarke(std::string_view abschnitt, std::string_view schluessel,
                                         std::string_view wert) {
    OhneFehler("Marke schreiben", [&] {
        Schreibe(InDatei(false, false) ? LokaleDatei : Registry(Programmtitel),
                 {std::string(abschnitt), std::string(schluessel), std::string(wert)}, Haltbarkeit::Spaeter);
    });
}

std::string Einstellungsspeicher::Lies(std::string_view abschnitt, std::string_view schluessel,
                                       std::string_view vorgabe) {
    return LeseEinstellung(Programmtitel, abschnitt, schluessel, vorgabe);
}

void Einstellungsspeicher::Schreibe(std::string_view abschnitt, std::initializer_list<Wert> werte) {
    const Buendel buendel(*this);
    for (const Wert& wert : werte) SchreibeEinstellung(Programmtitel, abschnitt, wert.Schluessel, wert.Text);
}

std::string Einstellungsspeicher::LiesKommando(std::string_view schluessel) {
    return LeseRegistry(Programmtitel, abschnitt::Kommando, schluessel, "0");
}

int Einstellungsspeicher::Schreibe(const Schreibschlange::Ziel& ziel, Speicheraenderung aenderung,
                                   Haltbarkeit haltbarkeit) {
    schlange_.Reihe(ziel, std::move(aenderung), haltbarkeit);
    return schlange_.Schreibe();
}

std::string Einstellungsspeicher::LeseRegistry(std::string_view anwendung, std::string_view abschnitt,
                                               std::string_view schluessel, std::string_view vorgabe) {
    if (const auto* wartend = schlange_.Wartend(Registry(anwendung), abschnitt, schluessel))
        return wartend->Wert.value_or(std::string(vorgabe));
    return registry_.Lies(anwendung, abschnitt, schluessel).value_or(std::string(vorgabe));
}

int Einstellungsspeicher::SchreibeRegistry(std::string_view anwendung, std::string_view abschnitt,
                                           std::string_view schluessel, std::string_view wert) {
    return Schreibe(Registry(anwendung), {std::string(abschnitt), std::string(schluessel), std::string(wert)},
                    Haltbarkeit::Sofort);
}

int Einstellungsspeicher::LoescheRegistry(std::string_view anwendung, std::string_view abschnitt,
                                          std::string_view schluessel) {
    return Schreibe(Registry(anwendung), {std::string(abschnitt), std::string(schluessel), std::nullopt},
                    Haltbarkeit::Sofort);
}

int Einstellungsspeicher::WarteBisGeschrieben(Pumpe& pumpe) {
    int ergebnis = SchreibeWartendes();
    for (int takt = 0; ergebnis == -EBUSY && takt < HoechsteTakte; ++takt) {
        pumpe.Warte(Wartetakt);
        ergebnis = SchreibeWartendes();
    }
    return ergebnis;
}

void Einstellungsspeicher::LeseLokalSettings() {
    LokalSettings =
        AlsWahrheitswert(LeseEinstellung(Programmtitel, abschnitt::Optionen, SchluesselLokal, "0", false, true));
}

void Einstellungsspeicher::LeseAlleEinstellungen(Meldungen& meldungen) {
    for (const Einstellungszeile& zeile : Einstellungstabelle()) LeseZeile(zeile, &meldungen);
    Begrenze(felder_);
}

void Einstellungsspeicher::LeseVerbindung() {
    for (const Einstellungszeile& zeile : Einstellungstabelle())
        if (zeile.Abschnitt == abschnitt::IBConnect) LeseZeile(zeile, nullptr);
}

void Einstellungsspeicher::LeseZeile(const Einstellungszeile& zeile, Meldungen* meldungen) {
    Einstellungen& e = felder_;
    const std::string text = LeseEinstellung(Programmtitel, zeile.Abschnitt, zeile.Schluessel, zeile.Vorgabe);
    if (SetzeEinstellung(e, zeile, text)) return;
    if (meldungen != nullptr && zeile.Schluessel == SchluesselNeustartUhrzeit && e.NeuStartbeiUhrzeit)
        meldungen->ZeigeMeldung("Falsches Zeitformat in ZEK-Einstellung Neustart-Uhrzeit (bitte prüfen!).", meldung::Ok,
                                0);
}

void Einstellungsspeicher::SpeichereZeile(const Einstellungszeile& zeile) {
    SchreibeEinstellung(Programmtitel, zeile.Abschnitt, zeile.Schluessel, Einstellungstext(felder_, zeile));
}

void Einstellungsspeicher::SpeichereEinstellungen() {
    const Buendel buendel(*this);
    for (const Einstellungszeile& zeile : Einstellungstabelle())
        if (zeile.Schreiber != Einstellungsschreiber::BeiAenderung) SpeichereZeile(zeile);
}

void Einstellungsspeicher::UebernehmeVerbindung(const Verbindungsangaben& angaben) {
    felder_.IBIPAdr = angaben.IBIPAdr;
    felder_.IBPort = angaben.IBPort;
    felder_.IBLoginID = angaben.IBLoginID;
    const Buendel buendel(*this);
    for (const Einstellungszeile& zeile : Einstellungstabelle())
        if (zeile.Schreiber == Einstellungsschreiber::AlleUndVerbindung) SpeichereZeile(zeile);
}

bool Einstellungsspeicher::LokalSpeichernUmschalten(Meldungen& meldungen,
                                                    const std::function<void(bool)>& markeSetzen) {
    const bool neu = !LokalSettings;
    LokalSettings = neu;
    markeSetzen(neu);
    const bool bestaetigt = neu ? LokalEinschalten(meldungen) : LokalAusschalten(meldungen);
    if (!bestaetigt) {
        LokalSettings = !neu;
        markeSetzen(!neu);
    }
    SchreibeEinstellung(Programmtitel, abschnitt::Optionen, SchluesselLokal, LokalSettings ? "1" : "0", false, true);
    return LokalSettings;
}

bool Einstellungsspeicher::LokalEinschalten(Meldungen& meldungen) {
    const int antwort = meldungen.ZeigeMeldung(
        "Die Einstellungen von ZEK für IB werden nun lokal im Verzeichnis '" + ordner_.Programmordner +
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
