// The watch over gaps on the virtual clock, and its book as short lines.
#pragma once

#include "hilfen/ram_dateisystem.h"
#include "hilfen/stoerdateisystem.h"
#include "hilfen/test_rollen.h"
#include "hilfen/virtuelle_welt.h"
#include "luecken/buchdateien.h"
#include "platform/datum.h"
#include "supervision/lueckenwache.h"

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace zek::hilfen {

// A recorder that starts on Monday, 2026-11-16, at 12:00, with one active title. Lines are asked for as
// "12:00:05 12:00:07 * TWS offline", without day and milliseconds when they are what everybody expects.
class LueckenwacheTest : public testing::Test {
protected:
    LueckenwacheTest() {
        modul.Datenordner = "/d";
        ram.LegeOrdnerbaumAn("/d");
        titel = Titel("ES");
    }

    Titelzeiger Titel(const std::string& name) {
        auto neu = std::make_shared<clTitelobjekt>();
        neu->id = ++modul.Titelnummer;
        neu->Symbol = neu->Dateiname = name;
        neu->Aktiv(true);
        modul.Titelliste.Fuege(neu);
        return neu;
    }
    void Beginne(std::optional<Zeitpunkt> letztesEnde = {}) {
        wache.emplace(modul, modul, dateien, welt, status);
        wache->Beginne(letztesEnde);
        uhr = welt.Erzeuge(Lueckenwache::Intervall, [this] { wache->Durchlauf(); });
        uhr->Starte();
    }
    void Abonniere() {
        modul.TWSVerbunden = true;
        for (const auto& t : modul.Titelliste)
            if (t->Aktiv()) wache->Abonniert(*t);
    }
    // The recorder runs and its titles are subscribed and tick; what that wrote is forgotten.
    void Laeuft() {
        Beginne();
        Abonniere();
        for (const auto& t : modul.Titelliste)
            if (t->Aktiv()) TickVon(*t);
        wache->TitelGeladen();
        welt.Laufe(5);
        Vergiss();
    }
    void Vergiss() {
        for (const auto& pfad : ram.Dateien())
            if (pfad.find("Lücken/") != std::string::npos) ram.Loesche(pfad);
        dateien.VergissProtokoll();
    }
    void Absturz() {
        uhr.reset();
        wache.reset();
    }
    // One tick of the feed.
    void TickVon(clTitelobjekt& t) {
        modul.Kurs(welt.Jetzt());
        t.LetzterKursZeitpunkt = welt.Jetzt();
        if (!t.ErsterKursZeitpunkt) t.ErsterKursZeitpunkt = welt.Jetzt();
    }
    void Tick(double nach = 0) {
        welt.Laufe(nach);
        TickVon(*titel);
    }
    void Ticks(double sekunden) {
        for (double s = 0; s < sekunden; ++s) Tick(1);
    }
    // How titles are recorded is left out unless it is asked for.
    std::vector<std::string> Zeilen(Wertung ohne = Wertung::Angabe) {
        std::vector<Lueckenzeile> alle;
        LiesLueckenbuch(ram, "/d", alle);
        std::vector<std::string> texte;
        for (const auto& z : alle) {
            if (z.Bedeutung() == ohne) continue;
            std::string text = Uhrzeittext(z.Von) + " " + (z.IstOffen() ? "..." : Uhrzeittext(z.Bis)) + " " + z.Titel +
                               " " + z.Ursache;
            if (!z.Ergaenzung.empty()) text += ": " + z.Ergaenzung;
            texte.push_back(text);
        }
        return texte;
    }
    static std::string Uhrzeittext(Zeit zeit) {
        std::string text = Lueckenzeittext(zeit);
        if (text.ends_with(",000")) text.resize(text.size() - 4);
        return text.starts_with("16.11.2026 ") ? text.substr(11) : text;
    }
    static Zeitpunkt Um(int stunde, int minute, double sekunde = 0) {
        return ZeitpunktAus(2026, 11, 16, stunde, minute, sekunde);
    }
    void Satz(const std::string& datei, Zeitpunkt zeit) {
        std::string bytes = "VQL ZeitstromKit-Datei Version 01.00";
        bytes.resize(856, ' ');
        const Datum datum = DatumAus(zeit);
        bytes.append(reinterpret_cast<const char*>(&datum), 8).append(8, '\1');
        ram.LegeDateiAn("/d//" + datei, bytes);
    }

    VirtuelleWelt welt;
    IBModul modul;
    RamDateisystem ram;
    StoerDateisystem dateien{ram};
    TestStatus status;
    Titelzeiger titel;
    std::optional<Lueckenwache> wache;
    std::unique_ptr<Zeitgeber> uhr;
};

}  // namespace zek::hilfen
