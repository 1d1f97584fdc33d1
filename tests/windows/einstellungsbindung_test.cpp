// The settings dialog against a table written by hand: which control shows and changes which setting. Nothing here is
// taken from the table that the program walks.
#include "fensterhilfen/test_dateiwahl.h"
#include "fensterwerk/text.h"
#include "hilfen/test_rollen.h"
#include "windows/zek_einstellungen.h"

#include <gtest/gtest.h>
#include <QCheckBox>
#include <QLineEdit>
#include <QTimeEdit>

#include <functional>
#include <memory>

namespace zek {
namespace {

using E = Einstellungen;

struct Bindung {
    const char* Steuerelement;
    std::function<void(E&)> Setze;              // another value than the default
    std::function<std::string(const E&)> Lies;  // the setting as a text
    std::string Vorgabe, Anders;                // what the control shows of both values
};

Bindung Schalter(const char* name, bool E::*feld) {
    return {name, [feld](E& e) { e.*feld = true; }, [feld](const E& e) { return e.*feld ? "an" : "aus"; }, "aus", "an"};
}

Bindung Text(const char* name, std::string E::*feld, const std::string& wert) {
    return {name, [=](E& e) { e.*feld = wert; }, [feld](const E& e) { return e.*feld; }, "", wert};
}

Bindung Zahl(const char* name, int E::*feld, const std::string& vorgabe, int wert) {
    return {name, [=](E& e) { e.*feld = wert; }, [feld](const E& e) { return std::to_string(e.*feld); }, vorgabe,
            std::to_string(wert)};
}

Bindung Zeit(const char* name, Tageszeit E::*feld, const std::string& vorgabe, Tageszeit wert) {
    return {name, [=](E& e) { e.*feld = wert; }, [feld](const E& e) { return NurZeittext(e.*feld); }, vorgabe,
            NurZeittext(wert)};
}

std::vector<Bindung> Tabelle() {
    return {
        Schalter("optUseGesamtvolumen", &E::UseGesamtvolumen),
        Schalter("optUmsatzfilter(0)", &E::IBBezahlt),
        Schalter("optUmsatzfilter(1)", &E::IBAndere),
        Schalter("optKursaufzeichnungDeaktivieren", &E::KursAufzeichnungDeaktivieren),
        Zeit("KursAufzeichnungDeaktivStart", &E::KeineAufzeichungStart, "05:00:00", Tageszeit(22h + 15min + 30s)),
        Zeit("KursAufzeichnungDeaktivEnde", &E::KeineAufzeichungEnde, "06:00:00", Tageszeit(23h + 59min + 59s)),
        Text("txtAufzeichnungsPauseBoersen", &E::AufzeichnungsPauseBoersen, "CME, EUREX"),
        Zahl("txtNeustartWennkeineKurseSekunden", &E::NeuStartBeiFehlendenKursenSekunden, "90", 1234),
        Text("txtNeustartFehlernummern", &E::NeustartFehlernummern, "1100, 504"),
        Schalter("optNeustartBeiUhrzeit", &E::NeuStartbeiUhrzeit),
        Zeit("NeustartUhrzeit", &E::NeustartUhrzeit, "06:30:00", Tageszeit(1s)),
        Schalter("optSystemzeitStellen", &E::AutoUhrzeitStellen),
        Schalter("optKontodatenAufzeichnen", &E::KontenDatenAufzeichnen),
        Schalter("optPortfoliopositionen", &E::PortfolioAufzeichnen),
        Text("txtKontoname", &E::KontenDatenKontoName, "U1,U2"),
        Schalter("optKeinKontonameVerwenden", &E::KontenDatenUseNoKontoName),
        Text("txtKontoSpeicherOrdner", &E::KontenDatenSpeicherOrdner, "/konten/"),
        Schalter("optBidAskNachLast", &E::BidAskWartetLast),
        Zahl("txtBFTimeout", &E::BFTimeOut, "60", 6000),
        Schalter("optDatenpflege", &E::AutoDatenpflege),
    };
}

class Einstellungsbindung : public testing::Test {
protected:
    std::unique_ptr<frmZEKEinstellungen> Oeffne(const E& e) {
        return std::make_unique<frmZEKEinstellungen>(
            nullptr,
            frmZEKEinstellungen::Umgebung{meldungen_, [] { return true; }, [](const std::string&) { return true; },
                                          wahl_},
            [](const std::string&) {}, e);
    }
    static E Vorgabe() {
        E e;
        e.NeuStartBeiFehlendenKursen = true;
        return e;
    }
    static std::string Gezeigt(const QWidget& dialog, const Bindung& eine) {
        auto* feld = dialog.findChild<QWidget*>(eine.Steuerelement);
        if (auto* schalter = qobject_cast<QCheckBox*>(feld)) return schalter->isChecked() ? "an" : "aus";
        if (auto* text = qobject_cast<QLineEdit*>(feld)) return text->text().toStdString();
        if (auto* zeit = qobject_cast<QTimeEdit*>(feld)) return zeit->time().toString("HH:mm:ss").toStdString();
        return "(fehlt)";
    }
    static void Stelle(const QWidget& dialog, const Bindung& eine) {
        auto* feld = dialog.findChild<QWidget*>(eine.Steuerelement);
        if (auto* schalter = qobject_cast<QCheckBox*>(feld)) schalter->setChecked(true);
        if (auto* text = qobject_cast<QLineEdit*>(feld)) text->setText(Q(eine.Anders));
        if (auto* zeit = qobject_cast<QTimeEdit*>(feld)) zeit->setTime(QTime::fromString(Q(eine.Anders), "HH:mm:ss"));
    }

    const std::vector<Bindung> tabelle_ = Tabelle();

private:
    hilfen::TestMeldungen meldungen_;
    hilfen::TestDateiwahl wahl_;
};

TEST_F(Einstellungsbindung, EachControlShowsItsOwnSettingOnly) {
    for (const Bindung& eine : tabelle_) {
        E e = Vorgabe();
        eine.Setze(e);
        const auto dialog = Oeffne(e);
        for (const Bindung& andere : tabelle_)
            EXPECT_EQ(Gezeigt(*dialog, andere), &andere == &eine ? andere.Anders : andere.Vorgabe)
                << eine.Steuerelement << ", " << andere.Steuerelement;
    }
}

TEST_F(Einstellungsbindung, EachControlChangesItsOwnSettingOnly) {
    for (const Bindung& eine : tabelle_) {
        const auto dialog = Oeffne(Vorgabe());
        Stelle(*dialog, eine);
        const E danach = dialog->Ergebnis();
        for (const Bindung& andere : tabelle_)
            EXPECT_EQ(andere.Lies(danach), &andere == &eine ? andere.Anders : andere.Vorgabe)
                << eine.Steuerelement << ", " << andere.Steuerelement;
        EXPECT_TRUE(danach.NeuStartBeiFehlendenKursen);
    }
}

TEST_F(Einstellungsbindung, TheSwitchForMissingPricesIsItsOwnAndItsSecondsCountOnlyWithIt) {
    const Bindung schalter = Schalter("optNeustartWennKeineKurse", &E::NeuStartBeiFehlendenKursen);
    EXPECT_EQ(Gezeigt(*Oeffne(Vorgabe()), schalter), "an");
    const auto dialog = Oeffne({});
    EXPECT_EQ(Gezeigt(*dialog, schalter), "aus");
    Stelle(*dialog, Zahl("txtNeustartWennkeineKurseSekunden", &E::NeuStartBeiFehlendenKursenSekunden, "90", 1234));
    EXPECT_EQ(dialog->Ergebnis().NeuStartBeiFehlendenKursenSekunden, 90);
    Stelle(*dialog, schalter);
    EXPECT_TRUE(dialog->Ergebnis().NeuStartBeiFehlendenKursen);
    EXPECT_EQ(dialog->Ergebnis().NeuStartBeiFehlendenKursenSekunden, 1234);
}

}  // namespace
}  // namespace zek
