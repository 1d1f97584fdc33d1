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

Neustart::Neustart(IBModul& modul, const Uhr& uhr, Pumpe& pumpe, Dateisystem& dateien, Prozesse& prozesse,
                   Statusausgabe& status, Meldungen& meldungen, Einstellungszugang& einstellungen, Sitzung& sitzung)
    : modul_(modul),
      uhr_(uhr),
      pumpe_(pumpe),
      dateien_(dateien),
      prozesse_(prozesse),
      status_(status),
      meldungen_(meldungen),
      einstellungen_(einstellungen),
      sitzung_(sitzung) {}

bool Neustart::AutoNeustartStarten(bool nurPruefen) {
    if (prozesse_.VerwalterStartetNeu()) {
        verwalterStartetNeu_ = !nurPruefen;
        return true;
    }
    std::string pfad = modul_.Programmordner;
    if (!pfad.ends_with('/')) pfad += '/';
    pfad += Helferdatei;
    if (dateien_.Ausfuehrbar(pfad)) {
        std::vector<std::string> argumente;
        if (modul_.KeineBeendenFrage) argumente.emplace_back("/K");
        if (!nurPruefen) OhneFehler("Neustarthelfer starten", [&] { prozesse_.Starte(pfad, argumente); });
        return true;
    }
    if (nurPruefen) {
        meldungen_.ZeigeMeldung(
            "ZEKIBAutoNeustart.exe wurde im Programmordner von ZEK nicht gefunden. "
            "Kein automatischer Neustart möglich!",
            meldung::Ok, 0);
    }
    return false;
}

void Neustart::UhrzeitPruefen() {
    const Einstellungen& e = modul_.Einstellungen;
    if (!e.NeuStartbeiUhrzeit) return;
    const Zeitpunkt jetzt = uhr_.Jetzt();
    // The program that comes up just after the restart was started today after that time, and waits for tomorrow.
    const bool gesternGestartet = TagVon(jetzt) > TagVon(modul_.Startzeitpunkt);
    const Dauer uhrzeit = e.NeustartUhrzeit.SeitMitternacht;
    const bool vorherGestartet = Tageszeit(uhrzeit - 1s) > Tageszeit(modul_.Startzeitpunkt);
    if (!gesternGestartet && !vorherGestartet) return;
    if (Tageszeit(jetzt) < Tageszeit(uhrzeit - Uhrzeittoleranz)) return;
    Anfordern("ZEK wird zeitbedingt neu gestartet (" + Datumtext(e.NeustartUhrzeit) + ")");
}

void Neustart::FehlendeKursePruefen() {
    const Einstellungen& e = modul_.Einstellungen;
    if (!e.NeuStartBeiFehlendenKursen || modul_.AktiveTitel < 1) return;
    const Zeitpunkt jetzt = uhr_.Jetzt();
    if (jetzt - modul_.Startzeitpunkt < KurseKarenz) return;
    // A lost connection is the reconnect's business.
    if (!sitzung_.TwsVerbunden()) return;
    if (RuhezeitAktiv(e, jetzt)) {
        // The silence is counted from the last round of the weekend or the pause.
        modul_.LetzterKursZeitpunkt = jetzt;
        return;
    }
    const std::chrono::seconds hoechstens(e.NeuStartBeiFehlendenKursenSekunden);
    if (modul_.LetzterKursZeitpunkt && jetzt - *modul_.LetzterKursZeitpunkt < hoechstens) return;
    Anfordern("ZEK wird neu gestartet, weil längere Zeit keine Kurse eingetroffen sind");
}

void Neustart::KommandosPruefen() {
    if (Befohlen(einstellungen_.LiesKommando("DoQuit"))) {
        status_.Statusmeldung("ZEK wird durch Kommand /Quit beendet (" + Datumtext(uhr_.Jetzt()) + ")", true);
        modul_.BeendenAngefordert = true;
    }
    if (Befohlen(einstellungen_.LiesKommando("Restart"))) {
        Anfordern("ZEK wird durch Kommand /Restart neu gestartet (" + Datumtext(uhr_.Jetzt()) + ")");
    }
}

void Neustart::WegenFehler(int code) {
    // What the end itself raises (requests on a connection that is gone) restarts nothing.
    if (beendet_ || modul_.BeendenAngefordert) return;
    const std::string nummer = std::to_string(code);
    const std::string letzter = einstellungen_.Lies(abschnitt::Optionen, "LetzterNeustartFehler", "0");
    const Zeitpunkt jetzt = uhr_.Jetzt();
    if (jetzt - ZeitpunktAusText(letzter).value_or(ZeitpunktAus(Zahlwert(letzter))) < FehlerSperrzeit) {
        status_.Statusmeldung("ZEK wird trotz Fehlermeldung Nr. " + nummer +
                                  " nicht neu gestartet (<20 s nach letztem Neustart wegen Fehlermeldung)",
                              true);
        return;
    }
    status_.Statusmeldung("ZEK wird wegen Fehlermeldung neu gestartet (bei Fehler Nr. " + nummer + ")", true);
    // Stored, because it is the next instance that must see it.
    einstellungen_.SchreibeMarke(abschnitt::Optionen, "LetzterNeustartFehler", Datumtext(jetzt));
    modul_.NeustartAngefordert = true;
}

bool Neustart::Ausfuehren() {
    if (!modul_.NeustartAngefordert && !modul_.BeendenAngefordert) return false;
    OhneFehler("Datenpflege vor dem Neustart abbrechen", [&] {
        if (!sitzung_.DatenpflegeAbbrechen()) return;
        for (int i = 0; i < 100; ++i) pumpe_.Ereignisse();
        sitzung_.DatenpflegeFensterFreigeben();
    });
    // The system or a person closed the program meanwhile; it isn't to come back then.
    if (beendet_) return true;
    if (modul_.BeendenAngefordert) {
        OhneFehler("Verbindung vor dem Ende trennen", [&] { sitzung_.disconnect(); });
        OhneFehler("Ereignisse vor dem Ende", [&] { pumpe_.Ereignisse(); });
        return ProgrammEndet();
    }
    if (AutoNeustartStarten(false)) return ProgrammEndet();
    NeustartUnmoeglich();
    return false;
}

bool Neustart::ProgrammEndet() {
    OhneFehler("Hauptfenster entladen", [&] { sitzung_.HauptfensterEntladen(); });
    return true;
}

// The request stays, so that the entry comes again each round: a restart that can't be carried out stays visible.
void Neustart::NeustartUnmoeglich() {
    status_.Statusmeldung("Kein Neustart von ZEK möglich (Datei 'ZEKIBAutoNeustart.exe' fehlt). ", true);
    if (!modul_.Einstellungen.NeuStartbeiUhrzeit) return;
    status_.Statusmeldung("Die Option 'Automatischer Neustart' bei Uhrzeit wird deaktiviert.", true);
    modul_.Einstellungen.NeuStartbeiUhrzeit = false;
}

void Neustart::Anfordern(const std::string& begruendung) {
    status_.Statusmeldung(begruendung, true);
    modul_.NeustartAngefordert = true;
}

}  // namespace zek
