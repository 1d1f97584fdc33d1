// A whole machine in memory: every seam of a session, with a program folder, a configured port and a start hint that
// was declined.
#pragma once

#include "hilfen/ram_dateisystem.h"
#include "hilfen/ram_netz.h"
#include "hilfen/ram_speicher.h"
#include "hilfen/test_prozesse.h"
#include "hilfen/virtuelle_welt.h"
#include "modul/ibmodul.h"
#include "session/plattform.h"

#include <functional>
#include <string>
#include <string_view>

namespace zek::hilfen {

// What a test puts in the place of a seam.
struct Ersatzteile {
    Dateisystem* Dateien = nullptr;
    zek::Prozesse* Prozesse = nullptr;
};

struct Testmaschine {
    explicit Testmaschine(Zeitpunkt beginn = VirtuelleWelt::Vorgabebeginn) : welt(beginn) {
        dateien.LegeOrdnerbaumAn("/zek");
        registry.Setze(ProduktName, "ZEKStart", "VersionsHinweis", "1");
        Setze("IBConnect", "IBPort", "7496");
    }

    Plattform Maschine(tws::TwsFabrik tws = {}, const Ersatzteile& ersatz = {}) {
        return {.Uhr = welt,
                .Pumpe = welt,
                .Zeitgeber = welt,
                .Tcp = netz,
                .Dateien = ersatz.Dateien != nullptr ? *ersatz.Dateien : dateien,
                .Nutzerspeicher = registry,
                .LokaleDatei = lokal,
                .Portdatei = port,
                .Prozesse = ersatz.Prozesse != nullptr ? *ersatz.Prozesse : prozesse,
                .Tws = std::move(tws),
                .Programmordner = "/zek/",
                .Ende =
                    [this] {
                        ++enden;
                        if (beimEnde) beimEnde();
                    },
                .MeldeVerwalter =
                    [this](std::string_view zustand) {
                        if (beimVerwalter) beimVerwalter(zustand);
                    }};
    }
    void Setze(std::string_view abschnitt, std::string_view schluessel, std::string_view wert) {
        registry.Setze(Programmtitel, abschnitt, schluessel, wert);
    }
    std::string Registry(std::string_view abschnitt, std::string_view schluessel) {
        return registry.Lies(Programmtitel, abschnitt, schluessel).value_or("(fehlt)");
    }

    VirtuelleWelt welt;
    RamNetz netz{welt};
    RamDateisystem dateien;
    RamNutzerspeicher registry;
    RamProfildatei lokal;
    RamProfildatei port;
    TestProzesse prozesse;
    int enden = 0;
    std::function<void()> beimEnde;                               // what a program does at its end
    std::function<void(std::string_view zustand)> beimVerwalter;  // the service manager
};

}  // namespace zek::hilfen
