// The desktop face under a whole session: windows as a person meets them, the machine under them scripted.
#pragma once

#include "fensterhilfen/fenstertest.h"
#include "hilfen/test_tws.h"
#include "hilfen/testmaschine.h"
#include "session/sitzung.h"
#include "titles/titeldatei.h"
#include "windows/desktopgesicht.h"
#include "windows/tray.h"

#include <QAction>
#include <QTimer>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace zek {

struct Desktop : testing::Test, hilfen::Testmaschine {
    hilfen::TestTwsFabrik tws;
    std::vector<std::string> hilfeseiten;
    std::vector<std::string> fragen;  // texts of the messages that came up
    std::unique_ptr<Desktopgesicht> gesicht;
    std::unique_ptr<Sitzung> sitzung;
    QTimer person;
    // What the person clicks on a message whose text contains the key; "btn(0)" otherwise. Null leaves it open.
    std::vector<std::pair<std::string, const char*>> antworten;

    Desktop() {
        Setze("Optionen", "DontShowStartUpTitel", "1");
        Setze("Hauptfenster", "Taskbar", "1");
        tws.BeiErzeugen = [](hilfen::TestTws& control) {
            control.BeiConnect = [](hilfen::TestTws& c) { c.Ereignisse().nextValidId(1); };
        };
        QObject::connect(&person, &QTimer::timeout, [this] { Antworte(); });
        person.start(5);
    }
    ~Desktop() override {
        // The session before the face that it shows itself on.
        sitzung.reset();
        gesicht.reset();
    }

    void MitTitel(const std::string& symbol) { MitTiteln({symbol}); }
    // With the ids 1, 2 ...
    void MitTiteln(const std::vector<std::string>& symbole) {
        Titelliste titel;
        for (const std::string& symbol : symbole) {
            auto t = std::make_shared<clTitelobjekt>();
            t->id = static_cast<std::int32_t>(titel.Anzahl()) + 1;
            t->Symbol = symbol;
            t->Typ = "FUT";
            t->Börsenplatz = "CME";
            t->Dateiname = symbol + "@CME_FUT";
            t->BidAsk = true;
            t->Aktiv(true);
            titel.Fuege(t);
        }
        ASSERT_EQ(SchreibeTiteldatei(dateien, "/zek/", titel), std::nullopt);
    }
    bool Starte(const std::string& zeile = "") {
        gesicht = std::make_unique<Desktopgesicht>(
            welt, [this](const std::string& seite) { hilfeseiten.push_back(seite); }, "1.0");
        sitzung = std::make_unique<Sitzung>(Maschine(tws.Fabrik()), *gesicht, zeile);
        gesicht->SetzeSitzung(*sitzung);
        const bool laeuft = sitzung->Starte();
        QApplication::processEvents();
        return laeuft;
    }
    void Antworte() {
        QWidget* offen = QApplication::activeModalWidget();
        if (offen == nullptr || offen->objectName() != "frmMessageDialog") return;
        const std::string text = Steuer<QLabel>(*offen, "Meldung")->text().toStdString();
        const char* knopf = "btn(0)";
        for (const auto& [teil, antwort] : antworten)
            if (text.find(teil) != std::string::npos) knopf = antwort;
        if (!offen->property("gelesen").toBool()) fragen.push_back(text);
        offen->setProperty("gelesen", true);
        if (knopf != nullptr) Klick(*offen, knopf);
    }
    IB_Hauptfenster& Fenster() { return *gesicht->Hauptfenster(); }
    void Befehl(int nummer) { Fenster().Befehle().Aktion(nummer)->trigger(); }
    // Does something in the next modal window of that name.
    template <typename Tat>
    void Im(const char* fenster, Tat tat) {
        auto* warte = new QTimer(&person);
        QObject::connect(warte, &QTimer::timeout, [=, this] {
            QWidget* offen = QApplication::activeModalWidget();
            if (offen == nullptr || offen->objectName() != fenster) return;
            warte->stop();
            tat(*offen);
        });
        warte->start(5);
    }
    tws::TwsEreignisse& Tws() { return tws.Letzte().Ereignisse(); }
};

}  // namespace zek
