// A machine for whole sessions, with a scripted control.
#pragma once

#include "hilfen/test_tws.h"
#include "hilfen/testmaschine.h"
#include "platform/text.h"
#include "titles/titeldatei.h"

#include <gtest/gtest.h>

namespace zek::hilfen {

inline constexpr Zeitpunkt Mittag = VirtuelleWelt::Vorgabebeginn;

// A machine with a scripted control and no question about sample titles.
struct Rechner : Testmaschine {
    TestTwsFabrik tws;
    std::vector<std::string> verwalter;  // what the service manager was told

    Rechner() {
        Setze("Optionen", "DontShowStartUpTitel", "1");
        beimVerwalter = [this](std::string_view zustand) { verwalter.emplace_back(zustand); };
        tws.BeiErzeugen = [](TestTws& control) {
            control.BeiConnect = [](TestTws& c) { c.Ereignisse().nextValidId(1); };
        };
    }
    Plattform Maschine() { return Testmaschine::Maschine(tws.Fabrik()); }
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
