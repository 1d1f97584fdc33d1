#include "bestand/parametertabelle.h"

#include "bestand/laufzeit.h"
#include "bestand/titelauswahl.h"
#include "datafiles/dateinamen.h"
#include "platform/text.h"
#include "titles/prioritaet.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <utility>

namespace zek {

namespace {

constexpr std::size_t HoechstensFilterwerte = 10001;
constexpr int Jahre = 4;  // of the drop-down, from the present one on

// Not those of the assistant: this table has a list of its own.
const std::vector<std::string> TabellenBoersen = {
    "ACE",    "AMEX",      "ARCA",  "BRUT",   "BTRADE",    "CBOE",  "DTB",      "EBS", "ECBOT",  "FWB",
    "GLOBEX", "IBIS",      "IBSX",  "IDEAL",  "IDEALPRO",  "IDEM",  "INSTINET", "ISE", "ISLAND", "LIFFE",
    "LSE",    "MATIF",     "MONEP", "NASDAQ", "NQLX",      "NYMEX", "NYSE",     "ONE", "PHLX",   "PRIMEX",
    "PSE",    "SELECTNET", "SNFE",  "SOFFEX", "SUPERSOES", "SWB",   "VIRTX",    "VWAP"};

// The words of an older, shorter scale; every other word stays a text, which no position equals.
constexpr std::array<std::pair<const char*, const char*>, 5> AlteSkala = {
    {{"Sehr niedrig", "0"}, {"Niedrig", "1"}, {"Normal", "2"}, {"Hoch", "3"}, {"Sehr hoch", "4"}}};

std::vector<std::string> Monate() {
    std::vector<std::string> monate;
    for (int monat = 1; monat <= 12; ++monat) monate.push_back(MitNullen(std::to_string(monat), 2));
    return monate;
}

std::vector<std::string> JahreAb(int jahr) {
    std::vector<std::string> jahre;
    jahre.reserve(Jahre);
    for (int i = 0; i < Jahre; ++i) jahre.push_back(MitNullen(std::to_string(jahr + i), 4));
    return jahre;
}

std::vector<std::string> Prioritaetsworte() {
    std::vector<std::string> worte;
    for (int stufe = NiedrigstePrioritaet; stufe <= HoechstePrioritaet; ++stufe)
        worte.push_back(Prioritaetstext(stufe, false));
    return worte;
}

std::string Prioritaetswort(const std::string& wert) {
    const std::optional<long long> stelle = Ganzzahl(wert);
    if (!stelle || *stelle < 0 || *stelle > HoechstePrioritaet - NiedrigstePrioritaet) return wert;
    return Prioritaetstext(static_cast<int>(*stelle) + NiedrigstePrioritaet, false);
}

// Numbers as numbers and before texts.
bool Kleiner(const std::string& a, const std::string& b) {
    const std::optional<double> za = ZahlAusDeutsch(a), zb = ZahlAusDeutsch(b);
    if (za && zb && *za != *zb) return *za < *zb;
    if (za.has_value() != zb.has_value()) return za.has_value();
    return Kleinbuchstaben(a) < Kleinbuchstaben(b);
}

}  // namespace

void Parametertabelle::InitTitelListe() {
    const auto eigenschaft = [](std::string kopf, int breite, std::vector<std::string> auswahl = {},
                                bool nurAuswahl = false) {
        std::string hinweis = "Titeleinstellung: " + kopf;
        return Tabellenspalte{std::move(kopf), breite, true, true, std::move(hinweis), std::move(auswahl), nurAuswahl};
    };
    const int jahr = static_cast<int>(std::chrono::year_month_day(TagVon(um_.Zeit.Jetzt())).year());
    tabelle_.AddColumn(
        {"", 25, true, false, "Titel mit Disketten-Symbol wurden bearbeitet und noch nicht gespeichert", {}, false});
    tabelle_.AddColumn({"Titel", 220, true, false, "Dateiname des Titels", {}, false});
    tabelle_.AddColumn(
        {"Aktiv", 50, true, true, "Gibt an, ob die Datenaufzeichnung des Titels aktiviert ist", {}, false});
    tabelle_.AddColumn(eigenschaft("Katalog", 100));
    tabelle_.AddColumn(eigenschaft("Symbol", 60));
    tabelle_.AddColumn(eigenschaft("Börse", 70, TabellenBoersen));
    tabelle_.AddColumn(eigenschaft("Typ", 50, Titeltypen));
    tabelle_.AddColumn(eigenschaft("Monat", 50, Monate()));
    tabelle_.AddColumn(eigenschaft("Jahr", 60, JahreAb(jahr)));
    tabelle_.AddColumn(eigenschaft("Multipl.", 50));
    tabelle_.AddColumn(eigenschaft("Basispreis", 50));
    tabelle_.AddColumn(eigenschaft("Ausübung", 70, Ausuebungsrechte));
    tabelle_.AddColumn(eigenschaft("Währung", 70, Waehrungen));
    Tabellenspalte prioritaet = eigenschaft("BF-Priorität", 70, Prioritaetsworte(), true);
    prioritaet.Hinweis = "Backfill-Priorität des Titels";
    tabelle_.AddColumn(std::move(prioritaet));
    tabelle_.AddHeaderRow(true);
    tabelle_.AddFooterRow(true);
    tabelle_.Value(parameter::Titel, 0, "Vorgaben");
    tabelle_.Fuss(parameter::Titel, "Filter");
    for (int s = parameter::Status; s < parameter::ErsteVorgabe; ++s) tabelle_.Sperre(0, s);
}

void Parametertabelle::TiteltabelleAufbauen() {
    tabelle_.LeereZeilen();
    for (const Titelzeiger& titel : um_.Titel.Titelliste) {
        const int zeile = tabelle_.AddRow();
        tabelle_.Value(parameter::Titel, zeile, Dateinamensbildung(*titel, kursart::Basisname));
        tabelle_.Value(parameter::Aktiv, zeile, titel->Aktiv() ? "Ja" : "Nein");
        tabelle_.Value(parameter::Katalog, zeile, titel->Katalog);
        tabelle_.Value(parameter::Symbol, zeile, titel->Symbol);
        if (titel->IstLokalesSymbol) tabelle_.ValueTag(parameter::Symbol, zeile, MarkeLokal);
        SchreibeAngaben(zeile, *titel);
        tabelle_.Zeilennummer(zeile, titel->id);
        for (const int s : {parameter::Aktiv, parameter::Katalog, parameter::Symbol}) tabelle_.Sperre(zeile, s);
    }
    tabelle_.HasChanged(false);
    tabelle_.FussEditierbar(true);
    FilterRows();
}

void Parametertabelle::SchreibeAngaben(int zeile, const clTitelobjekt& titel) {
    constexpr std::size_t nurJahr = 4;
    tabelle_.Value(parameter::Boerse, zeile, titel.Börsenplatz);
    tabelle_.Value(parameter::Typ, zeile, titel.Typ);
    if (Zeichenzahl(titel.Laufzeit) > nurJahr) {
        const Jahrmonat laufzeit = TeileLaufzeit(titel.Laufzeit);
        tabelle_.Value(parameter::Monat, zeile, laufzeit.Monat);
        tabelle_.Value(parameter::Jahr, zeile, laufzeit.Jahr);
    }
    tabelle_.Value(parameter::Multiplikator, zeile, titel.Multiplikator);
    tabelle_.Value(parameter::Basispreis, zeile, Zahltext(titel.Basispreis));
    tabelle_.Value(parameter::Ausuebung, zeile, titel.Ausübungsrecht);
    tabelle_.Value(parameter::Waehrung, zeile, titel.Währung);
    tabelle_.Value(parameter::Prioritaet, zeile, std::to_string(titel.BackfillPrioritaet - NiedrigstePrioritaet));
}

std::vector<std::string> Parametertabelle::FillFilterComboBoxes(int spalte) const {
    std::vector<std::string> werte;
    for (int zeile = 1; zeile <= tabelle_.RowCount(); ++zeile)
        if (!tabelle_.Value(spalte, zeile).empty()) werte.push_back(tabelle_.Value(spalte, zeile));
    std::ranges::sort(werte, Kleiner);
    werte.erase(std::unique(werte.begin(), werte.end(), GleichOhneGrossKlein), werte.end());
    if (werte.size() > HoechstensFilterwerte) werte.resize(HoechstensFilterwerte);
    if (spalte == parameter::Prioritaet) std::ranges::transform(werte, werte.begin(), Prioritaetswort);
    werte.insert(werte.begin(), Alle);
    return werte;
}

bool Parametertabelle::Passt(int zeile, int spalte, const std::string& filter) const {
    if (spalte != parameter::Prioritaet) return GleichOhneGrossKlein(tabelle_.Value(spalte, zeile), filter);
    const auto alt = std::ranges::find(AlteSkala, filter, [](const auto& wort) { return std::string(wort.first); });
    return GleichOhneGrossKlein(tabelle_.Value(spalte, zeile), alt == AlteSkala.end() ? filter : alt->second);
}

bool Parametertabelle::FilterRows() {
    std::vector<int> spalten;
    for (int s = parameter::ErsterFilter; s <= tabelle_.ColCount(); ++s) {
        if (tabelle_.Fuss(s) == Alle) tabelle_.Fuss(s, "");
        if (!tabelle_.Fuss(s).empty()) spalten.push_back(s);
    }
    bool gefiltert = false;
    for (int zeile = 1; zeile <= tabelle_.RowCount(); ++zeile) {
        const bool passt = std::ranges::all_of(spalten, [&](int s) { return Passt(zeile, s, tabelle_.Fuss(s)); });
        tabelle_.Sichtbar(zeile, passt);
        gefiltert = gefiltert || !passt;
    }
    return gefiltert;
}

void Parametertabelle::LoescheFilter() {
    for (int s = parameter::ErsterFilter; s <= tabelle_.ColCount(); ++s) tabelle_.Fuss(s, "");
    FilterRows();
}

std::string Parametertabelle::Filtertext() const {
    std::string text;
    for (int s = 1; s <= tabelle_.ColCount(); ++s) text += (s > 1 ? "\t" : "") + tabelle_.Fuss(s);
    return text;
}

bool Parametertabelle::Filtertext(const std::string& text) {
    if (text.empty()) return false;
    const std::vector<std::string> werte = Teile(text, '\t');
    if (werte.size() < static_cast<std::size_t>(tabelle_.ColCount())) return false;
    for (int s = 1; s <= tabelle_.ColCount(); ++s) tabelle_.Fuss(s, werte[static_cast<std::size_t>(s - 1)]);
    return FilterRows();
}

bool Parametertabelle::VorgabenÜbernehmen(bool alleSpalten, int jetzigeSpalte, bool ueberschreiben,
                                          bool leereLoeschen) {
    const auto hinweis = [&](const char* text) {
        um_.Fragen.ZeigeMeldung(text, meldung::Ok, 0);
        return false;
    };
    if (tabelle_.RowCount() == 0) return hinweis("Wählen Sie zunächst bitte Titel mit 'Zufügen..' aus.");
    if (!alleSpalten && jetzigeSpalte < parameter::ErsteVorgabe)
        return hinweis("Klicken Sie zunächst in der Tabelle in die Spalte (ab 'Börse'), die übernommen werden soll.");
    const int von = alleSpalten ? parameter::ErsteVorgabe : jetzigeSpalte;
    const int bis = alleSpalten ? tabelle_.ColCount() : jetzigeSpalte;
    for (int zeile = 1; zeile <= tabelle_.RowCount(); ++zeile) {
        if (!tabelle_.Sichtbar(zeile)) continue;
        for (int s = von; s <= bis; ++s) {
            const std::string vorgabe(Getrimmt(tabelle_.Value(s, 0)));
            const bool soll = vorgabe.empty() ? leereLoeschen : ueberschreiben || tabelle_.Value(s, zeile).empty();
            if (soll) tabelle_.Value(s, zeile, vorgabe);
        }
    }
    return true;
}

}  // namespace zek
