#include "bestand/titelaenderung.h"

#include "bestand/laufzeit.h"
#include "datafiles/dateikopf.h"
#include "datafiles/dateinamen.h"
#include "platform/ohnefehler.h"
#include "platform/text.h"

#include <array>
#include <cmath>

namespace zek {

namespace {

// As files of all versions have it.
constexpr double MinuteInTagen = 0.000694444444444442, SekundeInTagen = MinuteInTagen / 60;
constexpr double GroessteKorrektur = 32000;  // seconds

// The kinds whose headers hold the contract of a title that was changed; market depth keeps the old one.
constexpr std::array<std::int32_t, 4> ArtenMitKopf = {kursart::Bezahlt, kursart::Brief, kursart::Geld,
                                                      kursart::BAVolume};

}  // namespace

Titelfelder Titelaenderung::FelderVon(clTitelobjekt& titel) const {
    Titelfelder felder;
    felder.Dateipfad = Dateipfad(um_.Modul, um_.Dateien, titel, kursart::Bezahlt);
    felder.Prioritaet = titel.BackfillPrioritaet;
    felder.StartUhrzeit = titel.StartZeit;
    felder.Zeitkorrektur = Zahltext(std::round(titel.ZeitKorrektur / SekundeInTagen));
    felder.LokalesSymbol = titel.IstLokalesSymbol;
    felder.Symbol = titel.Symbol;
    felder.Börsenplatz = titel.Börsenplatz;
    felder.Typ = titel.Typ;
    felder.Recht = titel.Ausübungsrecht;
    felder.Währung = titel.Währung;
    const Jahrmonat laufzeit = TeileLaufzeit(titel.Laufzeit);
    felder.Jahr = laufzeit.Jahr;
    felder.Monat = laufzeit.Monat;
    felder.Basispreis = Zahltext(titel.Basispreis);
    felder.Multiplikator = titel.Multiplikator;
    felder.LevelII = titel.UseMarkttiefe;
    felder.DontUseGesamtvolumen = titel.DontUseGesamtVol;
    felder.AllowNegativeValues = titel.NegativeWerteErlaubt;
    return felder;
}

bool Titelaenderung::Pruefe(const Titelfelder& felder) const {
    const std::optional<double> korrektur = ZahlAusDeutsch(felder.Zeitkorrektur);
    if (korrektur && std::fabs(*korrektur) <= GroessteKorrektur) return true;
    um_.Fragen.ZeigeMeldung(korrektur ? "Geben Sie für die Zeitkorrektur bitte einen Wert zwischen -32000 und 32000 an."
                                      : "Geben Sie für die Zeitkorrektur bitte einen gültigen Wert an.",
                            meldung::Ok, 0);
    return false;
}

void Titelaenderung::Uebernimm(const Titelfelder& felder, clTitelobjekt& titel) {
    titel.BackfillPrioritaet = static_cast<std::int16_t>(felder.Prioritaet);
    titel.StartZeit =
        felder.StartUhrzeit >= 1 ? felder.StartUhrzeit - std::floor(felder.StartUhrzeit) : felder.StartUhrzeit;
    titel.ZeitKorrektur = ZahlAusDeutsch(felder.Zeitkorrektur).value_or(0) * SekundeInTagen;
    titel.IstLokalesSymbol = felder.LokalesSymbol;
    titel.Symbol = Getrimmt(felder.Symbol);
    titel.Börsenplatz = Getrimmt(felder.Börsenplatz);
    titel.Typ = Getrimmt(felder.Typ);
    titel.Ausübungsrecht = Getrimmt(felder.Recht);
    titel.Währung = Getrimmt(felder.Währung);
    titel.Laufzeit = LaufzeitAus(felder.Jahr, felder.Monat);
    // What is no number keeps the strike, as an empty input does.
    titel.Basispreis = ZahlAusDeutsch(felder.Basispreis).value_or(titel.Basispreis);
    titel.Multiplikator = felder.Multiplikator;
    titel.UseMarkttiefe = felder.LevelII;
    titel.DontUseGesamtVol = felder.DontUseGesamtvolumen;
    if (titel.DontUseGesamtVol) titel.UseGesamtVol = false;
    titel.NegativeWerteErlaubt = felder.AllowNegativeValues;
}

void Titelaenderung::ErneuereDateikoepfe(const Bestandsumgebung& um, clTitelobjekt& titel) {
    for (const auto art : ArtenMitKopf) {
        OhneFehler("Kopf einer Datendatei erneuern",
                   [&] { DateikopfErneuern(um.Dateien, Dateipfad(um.Modul, um.Dateien, titel, art), titel); });
    }
}

void Titelaenderung::Aendere(clTitelobjekt& titel, const Titelfelder& felder,
                             const std::vector<std::int32_t>& markierte, const Titelschaltung::BeiTitel& beiTitel) {
    Titelschaltung schaltung(um_);
    const bool warAktiv = titel.Aktiv();
    if (warAktiv) schaltung.Schalte(markierte, false, titel.BidAsk, beiTitel);
    Uebernimm(felder, titel);
    ErneuereDateikoepfe(um_, titel);
    if (warAktiv) schaltung.Schalte(markierte, true, titel.BidAsk, beiTitel);
    um_.Titelspeichern();
}

}  // namespace zek
