#include "supervision/neustart.h"

#include "feed/aufzeichnung.h"
#include "modul/einstellungstabelle.h"
#include "platform/datum.h"
#include "platform/ohnefehler.h"
#include "platform/text.h"

#include <vector>

namespace zek {
namespace {

// A round may come this much before the clock time: 0.0000005 days.
constexpr Dauer Uhrzeittoleranz = 43200us;

bool Befohlen(const std::string& wert) {
    return Zahlwert(wert) != 0;
}

}  // namespace

bool Neustart::AutoNeustartStarten(bool nurPruefen) {
    if (um_.Prozesse.VerwalterStartetNeu()) {
        verwalterStartetNeu_ = !nurPruefen;
        return true;
    }
    std::string pfad = um_.Ordner.Programmordner;
    if (!pfad.ends_with('/')) pfad += '/';
    pfad += Helferdatei;
    if (um_.Dateien.Ausfuehrbar(pfad)) {
        std::vector<std::string> argumente;
        if (um_.Programm.KeineBeendenFrage) argumente.emplace_back("/K");
        if (!nurPruefen) OhneFehler("Neustarthelfer starten", [&] { um_.Prozesse.Starte(pfad, argumente); });
        return true;
    }
    if (nurPruefen) {
        um_.Fragen.ZeigeMeldung(
            "ZEKIBAutoNeustart.exe wurde im Programmordner von ZEK nicht gefunden. "
            "Kein automatischer Neustart möglich!",
            meldung::Ok, 0);
    }
    return false;
}

void Neustart::UhrzeitPruefen() {
    const Einstellungen& e = um_.Einstellungen;
    if (!e.NeuStartbeiUhrzeit) return;
    const Zeitpunkt jetzt = um_.Zeit.Jetzt();
    // The program that comes up just after the restart was started today after that time, and waits for tomorrow.
    const bool gesternGestartet = TagVon(jetzt) > TagVon(um_.Programm.Startzeitpunkt);
    const Dauer uhrzeit = e.NeustartUhrzeit.SeitMitternacht;
    const bool vorherGestartet = Tageszeit(uhrzeit - 1s) > Tageszeit(um_.Programm.Startzeitpunkt);
    if (!gesternGestartet && !vorherGestartet) return;
    if (Tageszeit(jetzt) < Tageszeit(uhrzeit - Uhrzeittoleranz)) return;
    Anfordern("ZEK wird zeitbedingt neu gestartet (" + Datumtext(e.NeustartUhrzeit) + ")");
}

void Neustart::FehlendeKursePruefen() {
    const Einstellungen& e = um_.Einstellungen;
    if (!e.NeuStartBeiFehlendenKursen || um_.AktiveTitel() < 1) return;
    const Zeitpunkt jetzt = um_.Zeit.Jetzt();
    if (jetzt - um_.Programm.Startzeitpunkt < KurseKarenz) return;
    // A lost connection is the reconnect's business.
    if (!um_.Sitzung.TwsVerbunden()) return;
    if (RuhezeitAktiv(e, jetzt)) {
        // The silence is counted from the last round of the weekend or the pause.
        um_.Tickuhr.LetzterKursZeitpunkt = jetzt;
        return;
    }
    const std::chrono::seconds hoechstens(e.NeuStartBeiFehlendenKursenSekunden);
    if (um_.Tickuhr.LetzterKursZeitpunkt && jetzt - *um_.Tickuhr.LetzterKursZeitpunkt < hoechstens) return;
    Anfordern("ZEK wird neu gestartet, weil längere Zeit keine Kurse eingetroffen sind");
}

void Neustart::KommandosPruefen() {
    if (Befohlen(um_.Ablage.LiesKommando("DoQuit"))) {
        um_.Status.Statusmeldung("ZEK wird durch Kommand /Quit beendet (" + Datumtext(um_.Zeit.Jetzt()) + ")", true);
        BeendenAngefordert = true;
    }
    if (Befohlen(um_.Ablage.LiesKommando("Restart"))) {
        Anfordern("ZEK wird durch Kommand /Restart neu gestartet (" + Datumtext(um_.Zeit.Jetzt()) + ")");
    }
}

void Neustart::WegenFehler(int code) {
    // What the end itself raises (requests on a connection that is gone) restarts nothing.
    if (beendet_ || BeendenAngefordert) return;
    const std::string nummer = std::to_string(code);
    const std::string letzter = um_.Ablage.Lies(abschnitt::Optionen, "LetzterNeustartFehler", "0");
    const Zeitpunkt jetzt = um_.Zeit.Jetzt();
    if (jetzt - ZeitpunktAusText(letzter).value_or(ZeitpunktAus(Zahlwert(letzter))) < FehlerSperrzeit) {
        um_.Status.Statusmeldung("ZEK wird trotz Fehlermeldung Nr. " + nummer +
                                     " nicht neu gestartet (<20 s nach letztem Neustart wegen Fehlermeldung)",
                                 true);
        return;
    }
    um_.Status.Statusmeldung("ZEK wird wegen Fehlermeldung neu gestartet (bei Fehler Nr. " + nummer + ")", true);
    // Stored, because it is the next instance that must see it.
    um_.Ablage.SchreibeMarke(abschnitt::Optionen, "LetzterNeustartFehler", Datumtext(jetzt));
    NeustartAngefordert = true;
}

bool Neustart::Ausfuehren() {
    if (!NeustartAngefordert && !BeendenAngefordert) return false;
    OhneFehler("Datenpflege vor dem Neustart abbrechen", [&] {
        if (!um_.Sitzung.DatenpflegeAbbrechen()) return;
        for (int i = 0; i < 100; ++i) um_.Pumpe.Ereignisse();
        um_.Sitzung.DatenpflegeFensterFreigeben();
    });
    // The system or a person closed the program meanwhile; it isn't to come back then.
    if (beendet_) return true;
    if (BeendenAngefordert) {
        OhneFehler("Verbindung vor dem Ende trennen", [&] { um_.Sitzung.disconnect(); });
        OhneFehler("Ereignisse vor dem Ende", [&] { um_.Pumpe.Ereignisse(); });
        return ProgrammEndet();
    }
    if (AutoNeustartStarten(false)) return ProgrammEndet();
    NeustartUnmoeglich();
    return false;
}

bool Neustart::ProgrammEndet() {
    OhneFehler("Hauptfenster entladen", [&] { um_.Sitzung.HauptfensterEntladen(); });
    return true;
}

// The request stays, so that the entry comes again each round: a restart that can't be carried out stays visible.
void Neustart::NeustartUnmoeglich() {
    um_.Status.Statusmeldung("Kein Neustart von ZEK möglich (Datei 'ZEKIBAutoNeustart.exe' fehlt). ", true);
    if (!um_.Einstellungen.NeuStartbeiUhrzeit) return;
    um_.Status.Statusmeldung("Die Option 'Automatischer Neustart' bei Uhrzeit wird deaktiviert.", true);
    um_.Einstellungen.NeuStartbeiUhrzeit = false;
}

void Neustart::Anfordern(const std::string& begruendung) {
    um_.Status.Statusmeldung(begruendung, true);
    NeustartAngefordert = true;
}

}  // namespace zek
