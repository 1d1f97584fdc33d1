// A machine for whole sessions: every seam in memory, with a configured port and a scripted control.
#pragma once

#include "hilfen/ram_dateisystem.h"
#include "hilfen/ram_netz.h"
#include "hilfen/ram_speicher.h"
#include "hilfen/test_prozesse.h"
#include "hilfen/test_tws.h"
#include "hilfen/virtuelle_welt.h"
#include "modul/ibmodul.h"
#include "platform/datum.h"
#include "platform/text.h"
#include "session/plattform.h"
#include "titles/titeldatei.h"

#include <gtest/gtest.h>

namespace zek::hilfen {

inline constexpr Zeitpunkt Mittag = ZeitpunktAus(2026, 11, 16, 12, 0, 0);

// A machine with a program folder, a configured port and a start hint that was declined.
struct Rechner {
    VirtuelleWelt welt{Mittag};
    RamNetz netz{welt};
    RamDateisystem dateien;
    RamNutzerspeicher registry;
    RamProfildatei lokal;
    RamProfildatei port;
    TestProzesse prozesse;
    TestTwsFabrik tws;
    int enden = 0;
    std::vector<std::string> verwalter;  // what the service manager was told

    Rechner() {
        dateien.LegeOrdnerbaumAn("/zek");
        registry.Setze(ProduktName, "ZEKStart", "VersionsHinweis", "1");
        Setze("Optionen", "DontShowStartUpTitel", "1");
        Setze("IBConnect", "IBPort", "7496");
        tws.BeiErzeugen = [](TestTws& control) {
            control.BeiConnect = [](TestTws& c) { c.Ereignisse().nextValidId(1); };
        };
    }
    Plattform Maschine() {
        return {welt,
                welt,
                welt,
                netz,
                dateien,
                registry,
                lokal,
                port,
                prozesse,
                tws.Fabrik(),
                "/zek/",
                [this] { ++enden; },
                [this](std::string_view zustand) { verwalter.emplace_back(zustand); }};
    }
    void Setze(std::string_view abschnitt, std::string_view schluessel, std::string_view wert) {
        registry.Setze(Programmtitel, abschnitt, schluessel, wert);
    }
    std::string Registry(std::string_view abschnitt, std::string_view schluessel) {
        return registry.Lies(Programmtitel, abschnitt, schluessel).value_or("(fehlt)");
    }
    // Saves so many active titles; the first with depth, the last inactive.
    void MitTiteln(int anzahl) {
        Titelliste titel;
        for (int i = 1; i <= anzahl; ++i) {
            auto t = std::make_shared<clTitelobjekt>();
            t->id = i;
            t->Symbol = "T" + std::to_string(i);
            t->Typ = "STK";
            t->Börsenplatz = "SMART";
            t->Währung = "USD";
            t->Dateiname = "T" + std::to_string(i);
            t->UseMarkttiefe = i == 1;
            t->Aktiv(i < anzahl);
            titel.Fuege(t);
        }
        ASSERT_EQ(SchreibeTiteldatei(dateien, "/zek/", titel), std::nullopt);
    }
    std::string Log() { return AusCodepage(dateien.Inhalt("/zek/IBZEKLog.txt")); }
    const std::vector<std::string>& Anfragen() { return tws.Kontrollen.at(0)->Zeilen; }
    std::size_t Zeilen(std::string_view anfang) { return tws.Kontrollen.at(0)->Anzahl(anfang); }
};

}  // namespace zek::hilfen
