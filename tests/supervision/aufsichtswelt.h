// The supervision on the virtual clock: its round, its restart rules, and everybody it calls as a log of calls.
#pragma once

#include "hilfen/ram_dateisystem.h"
#include "hilfen/test_prozesse.h"
#include "hilfen/test_rollen.h"
#include "hilfen/virtuelle_welt.h"
#include "platform/datum.h"
#include "supervision/neustart.h"
#include "supervision/runde.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <string>
#include <vector>

namespace zek::hilfen {

using Aufrufe = std::vector<std::string>;

class TestSitzung : public Neustart::Sitzung {
public:
    explicit TestSitzung(Aufrufe& aufrufe) : aufrufe_(aufrufe) {}
    bool TwsVerbunden() const override { return Verbunden; }
    void disconnect() override { aufrufe_.push_back("disconnect"); }
    bool DatenpflegeAbbrechen() override {
        if (DatenpflegeOffen) aufrufe_.push_back("DatenpflegeAbbrechen");
        if (DatenpflegeOffen && BeiAbbrechen) BeiAbbrechen();
        return DatenpflegeOffen;
    }
    void DatenpflegeFensterFreigeben() override { aufrufe_.push_back("DatenpflegeFensterFreigeben"); }
    void HauptfensterEntladen() override {
        aufrufe_.push_back("HauptfensterEntladen");
        if (EntladenScheitert) throw std::runtime_error("scheitert");
    }

    bool Verbunden = true;
    bool DatenpflegeOffen = false;
    std::function<void()> BeiAbbrechen;
    bool EntladenScheitert = false;

private:
    Aufrufe& aufrufe_;
};

class TestMitspieler : public Runde::Mitspieler {
public:
    explicit TestMitspieler(Aufrufe& aufrufe) : aufrufe_(aufrufe) {}
    void AlleMarktdatenAbbestellen(std::int32_t& count) override {
        Merke("AlleMarktdatenAbbestellen " + std::to_string(count));
        count = 7;
    }
    void AlleMarktdatenAbonnieren(std::int32_t count) override {
        Merke("AlleMarktdatenAbonnieren " + std::to_string(count));
        if (BeiAbonnieren) BeiAbonnieren();
    }
    void KontoabosAnfordern() override { Merke("KontoabosAnfordern"); }
    void TWSVerbindungAufbauen() override {
        Merke("TWSVerbindungAufbauen");
        if (VerbindenGelingt) Verbunden = true;
    }
    bool TwsVerbunden() const override { return Verbunden; }
    void reqCurrentTime() override { Merke("reqCurrentTime"); }
    void VerbergeOfflinewarnung() override { Merke("VerbergeOfflinewarnung"); }
    bool StarteAutoBackfill(std::optional<Zeitpunkt> zeitpunkt) override {
        Merke("StarteAutoBackfill " + Datumtext(zeitpunkt.value_or(Tagesnull)));
        if (BeiBackfill) BeiBackfill();
        return BackfillGelingt;
    }
    void AtomZeitAbfrage() override { Merke("AtomZeitAbfrage"); }
    Zeitpunkt GespeichertBis(Zeitpunkt zeit) const override { return std::min(Gespeichert.value_or(zeit), zeit); }

    bool Verbunden = true;
    bool VerbindenGelingt = false;
    bool BackfillGelingt = true;
    std::function<void()> BeiAbonnieren;
    std::function<void()> BeiBackfill;
    std::string Stolpern;                  // the call that throws
    std::optional<Zeitpunkt> Gespeichert;  // what reached files ends here; none for all

private:
    void Merke(std::string aufruf) {
        aufrufe_.push_back(aufruf);
        if (!Stolpern.empty() && aufruf.starts_with(Stolpern)) throw std::runtime_error("stolpert");
    }
    Aufrufe& aufrufe_;
};

// Started on a Monday at noon, with a standing connection. The round runs each second on the full second.
class Aufsicht : public testing::Test {
protected:
    Aufsicht() {
        modul.Programmordner = "/zek/";
        modul.Startzeitpunkt = welt.Jetzt();
        modul.LetzterKursZeitpunkt = welt.Jetzt();
        modul.TWSVerbunden = true;
        einstellungen.BeiMarke = [this](std::string_view schluessel, std::string_view wert) {
            if (schluessel == "IBLastEnd") aufrufe.push_back("SchreibeLastEnd " + std::string(wert));
        };
        LegeHelfer();
        zeitgeber->Starte();
    }

    void LegeHelfer() { dateien.LegeDateiAn("/zek/ZEKIBAutoNeustart.exe", "x"); }
    void StarteUm(Zeitpunkt zeit) {
        welt.StelleUhr(zeit);
        modul.Startzeitpunkt = zeit;
        modul.LetzterKursZeitpunkt = zeit;
    }
    bool Beendet() const { return Anzahl("HauptfensterEntladen") > 0; }
    long Anzahl(std::string_view anfang) const {
        return std::count_if(aufrufe.begin(), aufrufe.end(), [&](const auto& a) { return a.starts_with(anfang); });
    }
    // The calls that begin with one of the texts, in order.
    Aufrufe Nur(const std::vector<std::string>& anfaenge) const {
        Aufrufe ergebnis;
        for (const auto& a : aufrufe) {
            for (const auto& anfang : anfaenge) {
                if (a.starts_with(anfang)) ergebnis.push_back(a);
            }
        }
        return ergebnis;
    }
    bool Fett(std::string_view text) const {
        return std::any_of(status.Eintraege.begin(), status.Eintraege.end(),
                           [&](const auto& e) { return e.Text == text && e.Fett; });
    }
    bool Mager(std::string_view text) const {
        return std::any_of(status.Eintraege.begin(), status.Eintraege.end(),
                           [&](const auto& e) { return e.Text == text && !e.Fett; });
    }

    VirtuelleWelt welt;
    IBModul modul;
    TestStatus status;
    TestMeldungen meldungen;
    RamDateisystem dateien;
    TestProzesse prozesse;
    Aufrufe aufrufe;
    TestEinstellungen einstellungen;
    TestSitzung sitzung{aufrufe};
    TestMitspieler mitspieler{aufrufe};
    std::int32_t aktiveTitel = 0;
    Neustart::Umgebung Neustartumgebung(Pumpe& pumpe) {
        return {.Ordner = modul,
                .Programm = modul,
                .Einstellungen = modul.Einstellungen,
                .Tickuhr = modul,
                .Zeit = welt,
                .Pumpe = pumpe,
                .Dateien = dateien,
                .Prozesse = prozesse,
                .Status = status,
                .Fragen = meldungen,
                .Ablage = einstellungen,
                .Sitzung = sitzung,
                .AktiveTitel = [this] { return aktiveTitel; }};
    }
    Neustart neustart{Neustartumgebung(welt)};
    Runde runde{{.Verbindung = modul,
                 .Tickuhr = modul,
                 .Datenpflege = modul,
                 .Programm = modul,
                 .Einstellungen = modul.Einstellungen,
                 .Zeit = welt,
                 .Status = status,
                 .Ablage = einstellungen,
                 .Neustart = neustart,
                 .Arbeit = mitspieler}};
    std::unique_ptr<Zeitgeber> zeitgeber = welt.Erzeuge(Runde::Intervall, [this] { runde.Durchlauf(); });
};

}  // namespace zek::hilfen
