// The whole feed on a virtual clock, between a control that talks to nobody and a shelf that takes the records.
//
//   auto es = titel("ES");
//   es.geld(100).geldVol(5);
//   EXPECT_THAT(saetze(kursart::Geld), ElementsAre(Satz{100, 5}));
#pragma once

#include "datafiles/kursart.h"
#include "feed/feed.h"
#include "hilfen/test_rollen.h"
#include "hilfen/test_tws.h"
#include "hilfen/virtuelle_welt.h"
#include "platform/datum.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <ostream>
#include <stdexcept>

namespace zek::hilfen {

struct Satz {
    float Kurs = 0;
    float Volume = 0;
    bool operator==(const Satz&) const = default;
};
inline void PrintTo(const Satz& satz, std::ostream* aus) {
    *aus << satz.Kurs << " x " << satz.Volume;
}

class TestAblage : public Datensatzablage {
public:
    struct Eintrag {
        std::string Symbol;
        std::int32_t Kursart = 0;
        Satz Werte;
        bool Kontodaten = false;
        Zeitpunkt Zeit{};
    };

    void DatensatzAnhaengen(clTitelobjekt& titel, std::int32_t kursart, float kurs, float volume, bool kontodaten,
                            Zeitpunkt jetzt) noexcept override {
        Eintraege.push_back({titel.Symbol, kursart, {kurs, volume}, kontodaten, jetzt});
    }

    std::vector<Eintrag> Eintraege;
};

// One title, and the ticks that come for it.
class Titelgriff {
public:
    Titelgriff(Titelzeiger titel, TestTwsFabrik& fabrik) : titel_(std::move(titel)), fabrik_(&fabrik) {}

    Titelgriff& geld(double kurs) { return preis(ticktyp::Geld, kurs); }
    Titelgriff& brief(double kurs) { return preis(ticktyp::Brief, kurs); }
    Titelgriff& bezahlt(double kurs) { return preis(ticktyp::Bezahlt, kurs); }
    Titelgriff& geldVol(double size) { return volumen(ticktyp::Geldvolumen, size); }
    Titelgriff& briefVol(double size) { return volumen(ticktyp::Briefvolumen, size); }
    Titelgriff& bezahltVol(double size) { return volumen(ticktyp::Bezahltvolumen, size); }
    Titelgriff& gesamt(double size) { return volumen(ticktyp::Gesamtvolumen, size); }
    Titelgriff& preis(int typ, double kurs) {
        fabrik_->Letzte().Ereignisse().tickPrice(titel_->id, typ, kurs, true, false, false);
        return *this;
    }
    Titelgriff& volumen(int typ, double size) {
        fabrik_->Letzte().Ereignisse().tickSize(titel_->id, typ, size);
        return *this;
    }

    clTitelobjekt* operator->() const { return titel_.get(); }
    clTitelobjekt& operator*() const { return *titel_; }

private:
    Titelzeiger titel_;
    TestTwsFabrik* fabrik_;
};

class Feedwelt : public testing::Test {
protected:
    // Active, with bid and ask.
    Titelgriff titel(const std::string& symbol, const std::string& typ = "FUT", const std::string& boerse = "CME") {
        auto neu = std::make_shared<clTitelobjekt>();
        neu->id = ++modul.Titelnummer;
        neu->Symbol = symbol;
        neu->Typ = typ;
        neu->Börsenplatz = boerse;
        neu->Aktiv(true);
        neu->BidAsk = true;
        modul.Titelliste.Fuege(neu);
        return Titelgriff(neu, fabrik);
    }

    void warte(double sekunden) { welt.Laufe(sekunden); }
    void um(int stunde, int minute, double sekunde = 0) {
        welt.StelleUhr(TagVon(welt.Jetzt()) + std::chrono::hours(stunde) + std::chrono::minutes(minute) +
                       DauerAusSekunden(sekunde));
    }
    tws::TwsEreignisse& ereignis() { return fabrik.Letzte().Ereignisse(); }
    void meldung(int id, int code, std::string_view text = "Text") { ereignis().errMsg(id, code, text, ""); }

    std::vector<Satz> saetze(std::int32_t kursart) const {
        std::vector<Satz> gefunden;
        for (const auto& eintrag : ablage.Eintraege)
            if (eintrag.Kursart == kursart) gefunden.push_back(eintrag.Werte);
        return gefunden;
    }
    std::vector<std::int32_t> arten() const {
        std::vector<std::int32_t> alle;
        for (const auto& eintrag : ablage.Eintraege) alle.push_back(eintrag.Kursart);
        return alle;
    }
    // Forgets when data came, so that a test sees whether the next tick moves it.
    void vergissDatenZeit() { modul.LetzteDatenZeit.reset(); }
    bool datenZeitBewegt() const { return modul.LetzteDatenZeit == welt.Jetzt(); }

    VirtuelleWelt welt;
    IBModul modul;
    TestTwsFabrik fabrik;
    TestAblage ablage;
    TestStatus status;
    TestOfflineanzeige anzeige;
    TestMonitor monitor;
    std::vector<std::int64_t> serverzeiten;
    std::vector<int> neustarts;
    TestStromwache wache;
    Feed feed{{modul, welt, welt, ablage, status, anzeige, monitor, fabrik.Fabrik(),
               [this](std::int64_t zeit) { serverzeiten.push_back(zeit); },
               [this](int code) { neustarts.push_back(code); }, &wache}};
};

}  // namespace zek::hilfen
