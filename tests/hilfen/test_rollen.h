// Roles of the face for tests: each plays one and records what it was told. test_gesicht.h has the whole face.
#pragma once

#include "modul/rollen.h"

#include <algorithm>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace zek::hilfen {

// The program's settings as a map of "section/key".
class TestEinstellungen : public Einstellungszugang {
public:
    std::string Lies(std::string_view abschnitt, std::string_view schluessel, std::string_view vorgabe) override {
        const auto wert = Werte.find(Name(abschnitt, schluessel));
        return wert == Werte.end() ? std::string(vorgabe) : wert->second;
    }
    void Schreibe(std::string_view abschnitt, std::initializer_list<Wert> werte) override {
        for (const Wert& wert : werte) Werte[Name(abschnitt, wert.Schluessel)] = wert.Text;
        ++Schreibzugriffe;
    }
    void SchreibeMarke(std::string_view abschnitt, std::string_view schluessel, std::string_view wert) override {
        Werte[Name(abschnitt, schluessel)] = wert;
        if (BeiMarke) BeiMarke(schluessel, wert);
    }
    std::string LiesKommando(std::string_view schluessel) override { return Lies("Kommando", schluessel, "0"); }

    static std::string Name(std::string_view abschnitt, std::string_view schluessel) {
        return std::string(abschnitt) + "/" + std::string(schluessel);
    }
    std::map<std::string, std::string> Werte;
    int Schreibzugriffe = 0;
    std::function<void(std::string_view schluessel, std::string_view wert)> BeiMarke;
};

class TestStatus : public Statusausgabe {
public:
    struct Eintrag {
        std::string Text;
        bool Fett = false;
        bool operator==(const Eintrag&) const = default;
    };

    void Statusmeldung(std::string_view text, bool fett = false) override {
        Eintraege.push_back({std::string(text), fett});
    }

    // True when some entry contains the text.
    bool Enthaelt(std::string_view text) const { return Anzahl(text) > 0; }
    std::size_t Anzahl(std::string_view text) const {
        return static_cast<std::size_t>(std::count_if(Eintraege.begin(), Eintraege.end(), [&](const Eintrag& e) {
            return e.Text.find(text) != std::string::npos;
        }));
    }
    // "" when there is none.
    std::string Letzte() const { return Eintraege.empty() ? std::string() : Eintraege.back().Text; }

    std::vector<Eintrag> Eintraege;
};

// What the feed tells of its stream, a line each.
class TestStromwache : public Stromwache {
public:
    void VerbindungWeg() override { Zeilen.emplace_back("VerbindungWeg"); }
    void TwsIstOffline() override { Zeilen.emplace_back("TwsIstOffline"); }
    void TwsIstWiederDa(bool datenErhalten) override {
        Zeilen.emplace_back(datenErhalten ? "TwsIstWiederDa, data kept" : "TwsIstWiederDa, data lost");
    }
    void Meldung(int code, std::string_view text) override {
        Zeilen.push_back("Meldung " + std::to_string(code) + " " + std::string(text));
    }
    void TitelMeldung(const clTitelobjekt& titel, int code) override {
        Zeilen.push_back("TitelMeldung " + titel.Symbol + " " + std::to_string(code));
    }
    void Abonniert(const clTitelobjekt& titel) override { Zeilen.push_back("Abonniert " + titel.Symbol); }
    void Abbestellt(const clTitelobjekt& titel) override { Zeilen.push_back("Abbestellt " + titel.Symbol); }
    void Boersenstunden(const clTitelobjekt& titel, std::string_view zone, std::string_view stunden) override {
        Zeilen.push_back("Boersenstunden " + titel.Symbol + " " + std::string(zone) + " " + std::string(stunden));
    }

    std::vector<std::string> Zeilen;
};

class TestMeldungen : public Meldungen {
public:
    struct Meldung {
        std::string Text;
        int Flags = 0;
        int Sekunden = 0;
    };

    int ZeigeMeldung(const std::string& text, int flags, int sekunden) override {
        Gezeigt.push_back({text, flags, sekunden});
        if (BeiMeldung) BeiMeldung(Gezeigt.back());
        if (Antworten.empty()) return Vorgabeantwort;
        const int antwort = Antworten.front();
        Antworten.pop_front();
        return antwort;
    }

    std::vector<Meldung> Gezeigt;
    std::deque<int> Antworten;  // taken from the front
    int Vorgabeantwort = 0;     // when there are none left
    // Runs while the message stands, for example to pump; may add answers.
    std::function<void(Meldung)> BeiMeldung;
};

class TestOfflineanzeige : public Offlineanzeige {
public:
    bool OfflinewarnungSichtbar() const override { return Sichtbar; }
    void ZeigeOfflinewarnung(const std::string& text) override {
        Text = text;
        Texte.push_back(text);
        ZeigeOfflinewarnung();
    }
    void ZeigeOfflinewarnung() override {
        Sichtbar = true;
        ++Gezeigt;
    }
    void VerbergeOfflinewarnung() override {
        Sichtbar = false;
        ++Verborgen;
    }
    void FensterNachVorn() override { ++NachVorn; }
    void Ton() override { ++Toene; }

    bool Sichtbar = false;
    std::string Text;                // the one it holds
    std::vector<std::string> Texte;  // all that were set
    int Gezeigt = 0;
    int Verborgen = 0;
    int NachVorn = 0;
    int Toene = 0;
};

struct Monitorzeile {
    std::int32_t Titelnummer = 0;
    std::int32_t Kursart = 0;
    float Kurs = 0;
    float Volume = 0;
    bool Verworfen = false;
    bool operator==(const Monitorzeile&) const = default;
};

class TestMonitor : public Monitorausgabe {
public:
    void Protokolleintrag(const clTitelobjekt& titel, std::int32_t kursart, float kurs, float volume,
                          bool verworfen) override {
        Zeilen.push_back({titel.id, kursart, kurs, volume, verworfen});
        if (Scheitert) throw std::runtime_error("no row");
    }
    std::vector<Monitorzeile> Zeilen;
    bool Scheitert = false;
};

class TestStartanzeige : public Startanzeige {
public:
    void Startinfo(const std::string& text) override { Texte.push_back(text); }
    void FortschrittMaximum(int maximum) override { Maximum = maximum; }
    void FortschrittWert(int wert) override { Werte.push_back(wert); }
    void Sanduhr(bool an) override { SanduhrAn = an; }

    std::vector<std::string> Texte;
    std::vector<int> Werte;
    int Maximum = 0;
    bool SanduhrAn = false;
};

class TestDatenpflegeanzeige : public Datenpflegeanzeige {
public:
    struct Label {
        std::string Text;
        bool Rot = false;
        bool operator==(const Label&) const = default;
    };

    void Titellabel(const std::string& text) override { Titeltexte.push_back(text); }
    void AktuelleTitelLabel(const std::string& text) override { AktuelleTitel.push_back(text); }
    void Datumlabel(const std::string& text, bool rot) override { Datumtexte.push_back({text, rot}); }
    void Statuslabel(const std::string& text, bool rot) override { Statustexte.push_back({text, rot}); }
    void Kursartlabel(const std::string& text) override { Kursarttexte.push_back(text); }
    void FortschrittMaximum(int maximum) override { Maximum = maximum; }
    void FortschrittWert(int wert) override { Werte.push_back(wert); }
    void Gesamtfortschritt(double anteil, double restSekunden) override { Gesamt.push_back({anteil, restSekunden}); }
    void AbbruchMoeglich(bool moeglich) override { Abbrechbar = moeglich; }
    void BeiAbbruch(std::function<void()> beiKlick) override { abbruch_ = std::move(beiKlick); }

    // A click on the button, whether it is enabled or not; false when nobody listens.
    bool KlickeAbbruch() {
        if (!abbruch_) return false;
        auto klick = abbruch_;
        klick();
        return true;
    }

    std::vector<std::string> Titeltexte;
    std::vector<std::string> AktuelleTitel;
    std::vector<Label> Datumtexte;
    std::vector<Label> Statustexte;
    std::vector<std::string> Kursarttexte;
    std::vector<int> Werte;
    std::vector<std::pair<double, double>> Gesamt;  // share, seconds to go
    int Maximum = 0;
    bool Abbrechbar = false;

private:
    std::function<void()> abbruch_;
};

}  // namespace zek::hilfen
