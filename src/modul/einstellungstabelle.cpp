#include "modul/einstellungstabelle.h"

#include "platform/datum.h"
#include "platform/text.h"

#include <algorithm>
#include <array>

namespace zek {

namespace {

using enum Einstellungsform;
using E = Einstellungen;

constexpr int MindestTimeout = 10;            // seconds
constexpr int MindestSekundenOhneKurse = 10;  // seconds

constexpr Einstellungszeile Option(std::string_view schluessel, Einstellungsform form, std::string_view vorgabe,
                                   Einstellungszeile::Feld ziel, std::string_view steuerelement,
                                   std::string_view bedeutung, int mindestens = Einstellungszeile::Unbegrenzt,
                                   Einstellungsschreiber schreiber = Einstellungsschreiber::Alle) {
    return {abschnitt::Optionen, schluessel, form, vorgabe, ziel, steuerelement, bedeutung, mindestens, schreiber};
}

constexpr Einstellungszeile Schalter(std::string_view schluessel, bool E::*ziel, std::string_view steuerelement,
                                     std::string_view bedeutung,
                                     Einstellungsschreiber schreiber = Einstellungsschreiber::Alle) {
    return Option(schluessel, Wahrheitswert, "0", ziel, steuerelement, bedeutung, Einstellungszeile::Unbegrenzt,
                  schreiber);
}

constexpr Einstellungszeile Verbindung(std::string_view schluessel, Einstellungsform form, std::string_view vorgabe,
                                       Einstellungszeile::Feld ziel, std::string_view bedeutung) {
    return {abschnitt::IBConnect,
            schluessel,
            form,
            vorgabe,
            ziel,
            "",
            bedeutung,
            Einstellungszeile::Unbegrenzt,
            Einstellungsschreiber::AlleUndVerbindung};
}

constexpr std::array Tabelle = {
    Option("LokalSettings", Wahrheitswert, "0", {}, "", "Einstellungen in der lokalen Datei; steht immer in dieser",
           Einstellungszeile::Unbegrenzt, Einstellungsschreiber::BeiAenderung),
    Schalter("UseGesamtvolumen", &E::UseGesamtvolumen, "optUseGesamtvolumen",
             "Umsatz von Bezahlt-Kursen aus dem Gesamtvolumen"),
    Einstellungszeile{abschnitt::UmsatzFilter, "IBBezahlt", Wahrheitswert, "0", &E::IBBezahlt, "optUmsatzfilter(0)",
                      "Bezahlt-Kurse ohne Umsatz nicht aufzeichnen"},
    Einstellungszeile{abschnitt::UmsatzFilter, "IBAndere", Wahrheitswert, "0", &E::IBAndere, "optUmsatzfilter(1)",
                      "andere Kursarten ohne Umsatz nicht aufzeichnen"},
    Schalter("AutoDatenpflege", &E::AutoDatenpflege, "optDatenpflege", "Datenpflege automatisch starten"),
    Schalter("KontenDatenAufzeichnen", &E::KontenDatenAufzeichnen, "optKontodatenAufzeichnen",
             "Konto-Daten aufzeichnen"),
    Schalter("PortfolioAufzeichnen", &E::PortfolioAufzeichnen, "optPortfoliopositionen",
             "auch Portfolio-Positionen aufzeichnen"),
    Schalter("KontenDatenUseNoKontoName", &E::KontenDatenUseNoKontoName, "optKeinKontonameVerwenden",
             "Titelnamen ohne Kontoangabe"),
    Option("KontenDatenKontoName", Text, "", &E::KontenDatenKontoName, "txtKontoname", "Konten, durch Kommas getrennt"),
    Option("KontenDatenSpeicherOrdner", Ordner, "", &E::KontenDatenSpeicherOrdner, "txtKontoSpeicherOrdner",
           "Ordner der Konto-Daten"),
    Option("BFTimeOut", Ganzzahl, "60", &E::BFTimeOut, "txtBFTimeout", "Backfill-Timeout in Sekunden", MindestTimeout),
    Schalter("BidAskWartetLast", &E::BidAskWartetLast, "optBidAskNachLast", "Bid/Ask wartet auf ersten Last-Kurs"),
    Schalter("NeuStartbeiUhrzeit", &E::NeuStartbeiUhrzeit, "optNeustartBeiUhrzeit", "täglicher Neustart"),
    Option("NeustartUhrzeit", Tageszeit, "06:30:00", &E::NeustartUhrzeit, "NeustartUhrzeit",
           "Uhrzeit des täglichen Neustarts"),
    Option("NeustartFehlernummern", Liste, "", &E::NeustartFehlernummern, "txtNeustartFehlernummern",
           "Fehlernummern, die neu starten, durch Kommas getrennt"),
    Schalter("NeuStartBeiFehlendenKursen", &E::NeuStartBeiFehlendenKursen, "optNeustartWennKeineKurse",
             "Neustart, wenn keine Kurse eintreffen"),
    Option("NeuStartBeiFehlendenKursenSekunden", Ganzzahl, "90", &E::NeuStartBeiFehlendenKursenSekunden,
           "txtNeustartWennkeineKurseSekunden", "Sekunden ohne Kurse bis zum Neustart", MindestSekundenOhneKurse),
    Schalter("KursAufzeichnungDeaktivieren", &E::KursAufzeichnungDeaktivieren, "optKursaufzeichnungDeaktivieren",
             "tägliche Aufzeichnungspause"),
    Option("KeineAufzeichungStart", Tageszeit, "05:00:00", &E::KeineAufzeichungStart, "KursAufzeichnungDeaktivStart",
           "Beginn der Pause"),
    Option("KeineAufzeichungEnde", Tageszeit, "06:00:00", &E::KeineAufzeichungEnde, "KursAufzeichnungDeaktivEnde",
           "Ende der Pause"),
    Option("AufzeichnungsPauseBoersen", Liste, "", &E::AufzeichnungsPauseBoersen, "txtAufzeichnungsPauseBoersen",
           "Börsenplätze, für die die Pause gilt, durch Kommas getrennt; leer: alle"),
    Schalter("AutoUhrzeitStellen", &E::AutoUhrzeitStellen, "optSystemzeitStellen", "Systemuhr mit Atomuhr abgleichen"),
    Schalter("KomprimierteAnsicht", &E::KomprimierteAnsicht, "", "platzsparende Oberfläche",
             Einstellungsschreiber::BeiAenderung),
    Option("LetzterNeustartFehler", DatumUhrzeit, "0", {}, "", "letzter Neustart wegen einer Fehlernummer",
           Einstellungszeile::Unbegrenzt, Einstellungsschreiber::BeiAenderung),
    Verbindung("IBIPAdr", Text, "", &E::IBIPAdr, "Adresse der TWS; leer: dieser Rechner"),
    Verbindung("IBPort", Ganzzahl, "", &E::IBPort, "Port der TWS, 1 bis 65535"),
    Verbindung("IBLoginID", Ganzzahl, "255281497", &E::IBLoginID, "Client-ID, 10000 bis 900000000"),
};

std::string InForm(std::string text, Einstellungsform form) {
    if (form == Liste) return std::string(Getrimmt(text));
    if (form == Ordner) return Kontoordner(std::move(text));
    return text;
}

zek::Tageszeit NurTageszeit(zek::Tageszeit zeit) {
    return zeit.SeitMitternacht > 24h ? zek::Tageszeit(Tagesnull + zeit.SeitMitternacht) : zeit;
}

int InGrenzen(int wert, const Einstellungszeile& zeile) {
    return std::max(wert, zeile.Mindestens);
}

}  // namespace

std::span<const Einstellungszeile> Einstellungstabelle() {
    return Tabelle;
}

std::string Einstellungstext(const Einstellungen& e, const Einstellungszeile& zeile) {
    return std::visit(JeNachFeld{[](std::monostate) { return std::string(); },
                                 [&](bool E::*feld) { return std::string(e.*feld ? "1" : "0"); },
                                 [&](int E::*feld) { return std::to_string(e.*feld); },
                                 [&](zek::Tageszeit E::*feld) { return Datumtext(e.*feld); },
                                 [&](std::string E::*feld) { return e.*feld; }},
                      zeile.Ziel);
}

bool SetzeEinstellung(Einstellungen& e, const Einstellungszeile& zeile, std::string_view text) {
    bool inForm = true;
    std::visit(JeNachFeld{[](std::monostate) {}, [&](bool E::*feld) { e.*feld = EinstellungWahr(text); },
                          [&](int E::*feld) { e.*feld = InGrenzen(EinstellungGanzzahl(text), zeile); },
                          [&](zek::Tageszeit E::*feld) {
                              auto zeit = ZeitpunktAusText(text);
                              inForm = zeit.has_value();
                              if (!zeit) zeit = ZeitpunktAusText(zeile.Vorgabe);
                              e.*feld = NurTageszeit(zek::Tageszeit(zeit.value_or(Tagesnull) - Tagesnull));
                          },
                          [&](std::string E::*feld) { e.*feld = InForm(std::string(text), zeile.Form); }},
               zeile.Ziel);
    return inForm;
}

void Begrenze(Einstellungen& e) {
    for (const Einstellungszeile& zeile : Tabelle) {
        std::visit(JeNachFeld{[](auto) {}, [&](int E::*feld) { e.*feld = InGrenzen(e.*feld, zeile); },
                              [&](zek::Tageszeit E::*feld) { e.*feld = NurTageszeit(e.*feld); },
                              [&](std::string E::*feld) { e.*feld = InForm(std::move(e.*feld), zeile.Form); }},
                   zeile.Ziel);
    }
    e.NeustartFehlerliste =
        e.NeustartFehlernummern.empty() ? std::vector<std::string>() : Teile(e.NeustartFehlernummern, ',');
}

std::string Kontoordner(std::string ordner) {
    if (!ordner.empty() && ordner.back() != '/') ordner += '/';
    return ordner;
}

bool EinstellungWahr(std::string_view text) {
    return Zahlwert(text) != 0;
}

std::optional<Zeitpunkt> EinstellungZeitpunkt(std::string_view text) {
    using Zehntel = std::chrono::duration<std::int64_t, std::ratio<1, 100'000>>;
    const Datum datum = Zahlwert(text);
    if (datum == 0) return std::nullopt;
    return std::chrono::round<Zehntel>(ZeitpunktAus(datum));
}

int EinstellungGanzzahl(std::string_view text) {
    constexpr double Kleinste = std::numeric_limits<int>::min(), Groesste = std::numeric_limits<int>::max();
    return static_cast<int>(std::clamp(Zahlwert(text), Kleinste, Groesste));
}

}  // namespace zek
