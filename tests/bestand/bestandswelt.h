// The stock of titles with a session that talks to nobody: what the operations on titles need.
#pragma once

#include "bestand/bestandsumgebung.h"
#include "datafiles/dateikopf.h"
#include "datafiles/dateinamen.h"
#include "feed/ibcontrol.h"
#include "hilfen/fehlerwaechter.h"
#include "hilfen/ram_dateisystem.h"
#include "hilfen/stoerdateisystem.h"
#include "hilfen/test_rollen.h"
#include "hilfen/test_tws.h"
#include "hilfen/virtuelle_welt.h"

#include <gmock/gmock.h>

#include <string>
#include <vector>

namespace zek::hilfen {

class Bestandswelt : public testing::Test, private tws::TwsEreignisse {
protected:
    Bestandswelt() {
        ram.LegeOrdnerbaumAn("/daten");
        modul.Datenordner = "/daten";
        control.Erzeuge(*this);
        fabrik.Letzte().Verbinde();
    }

    // A future by default; `name`: what its file base name begins with.
    clTitelobjekt& Titel(const std::string& symbol, const std::string& katalog = "K", bool aktiv = false,
                         const std::string& laufzeit = "202612") {
        auto titel = std::make_shared<clTitelobjekt>();
        titel->Symbol = symbol;
        titel->Börsenplatz = "EUREX";
        titel->Typ = "FUT";
        titel->Laufzeit = laufzeit;
        titel->Währung = "EUR";
        titel->Katalog = katalog;
        titel->Aktiv(aktiv);
        titel->BidAsk = aktiv;
        Dateinamensbildung(*titel, kursart::Basisname);
        titel->id = ++modul.Titelnummer;
        modul.Titelliste.Fuege(titel);
        modul.Katalogliste.Fuege(katalog);
        return *titel;
    }
    std::vector<std::string> Symbole() const {
        std::vector<std::string> symbole;
        for (const auto& titel : modul.Titelliste) symbole.push_back(titel->Symbol);
        return symbole;
    }
    std::vector<std::string> Fragen() const {
        std::vector<std::string> texte;
        for (const auto& frage : meldungen.Gezeigt) texte.push_back(frage.Text);
        return texte;
    }
    // Names of the requests sent, with the number of the title: "reqMktData 3".
    std::vector<std::string> Anfragen() const {
        std::vector<std::string> kurz;
        for (const std::string& zeile : fabrik.Letzte().Zeilen) {
            const std::size_t klammer = zeile.find('(');
            kurz.push_back(zeile.substr(0, klammer) + " " +
                           zeile.substr(klammer + 1, zeile.find_first_of(",)") - klammer - 1));
        }
        return kurz;
    }

    RamDateisystem ram;
    StoerDateisystem dateien{ram};
    VirtuelleWelt welt;
    TestMeldungen meldungen;
    TestTwsFabrik fabrik;
    IBControl control{fabrik.Fabrik()};
    IBModul modul;
    Abonnement abos{modul.Einstellungen, modul, control, welt, welt};
    bool kontotitel = false;
    int infos = 0;
    int gespeichert = 0;
    Bestandsumgebung um{modul,
                        modul,
                        dateien,
                        welt,
                        welt,
                        meldungen,
                        abos,
                        [this] { return kontotitel; },
                        [this] { ++infos; },
                        [this] { ++gespeichert; }};
};

}  // namespace zek::hilfen
