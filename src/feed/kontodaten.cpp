#include "feed/kontodaten.h"

#include "datafiles/kursart.h"
#include "feed/einfach.h"
#include "platform/ohnefehler.h"
#include "platform/text.h"

#include <string>

namespace zek {

namespace {

constexpr double HoechsterPositionskurs = 500000;
constexpr std::string_view Kontokatalog = "Kontodaten";

std::string Kontoschluessel(std::string_view key, std::string_view curency, std::string_view accountName) {
    std::string schluessel;
    schluessel.reserve(key.size() + curency.size() + accountName.size() + 3);
    return schluessel.append("#").append(key).append("-").append(curency).append("-").append(accountName);
}

// Options and all other types. The right is compared with the title's in lower case only on the title's side, so a
// right of "C" never fits.
bool OptionPasst(const tws::Contract& contract, const clTitelobjekt& titel) {
    return contract.lastTradeDateOrContractMonth == titel.Laufzeit &&
           contract.right == Kleinbuchstaben(titel.Ausübungsrecht) && contract.strike == titel.Basispreis &&
           contract.multiplier == titel.Multiplikator;
}

}  // namespace

bool PasstZuTitel(const tws::Contract& contract, const clTitelobjekt& titel) {
    if (!GleichOhneGrossKlein(contract.primaryExchange, titel.Börsenplatz)) return false;
    if (titel.IstLokalesSymbol) return GleichOhneGrossKlein(contract.localSymbol, titel.Symbol);
    if (!GleichOhneGrossKlein(contract.symbol, titel.Symbol)) return false;
    if (!GleichOhneGrossKlein(contract.secType, titel.Typ)) return false;
    const std::string typ = Grossbuchstaben(titel.Typ);
    if (typ == "STK") return true;
    if (typ == "FUT")
        return std::string_view(contract.lastTradeDateOrContractMonth).substr(0, titel.Laufzeit.size()) ==
               titel.Laufzeit;
    if (typ == "CASH") return GleichOhneGrossKlein(contract.currency, titel.Währung);
    return OptionPasst(contract, titel);
}

Kontodaten::Kontodaten(const Einstellungen& einstellungen, const Titelbestand& bestand, const Uhr& uhr,
                       IBControl& control, Datensatzablage& ablage)
    : einstellungen_(einstellungen), bestand_(bestand), uhr_(uhr), control_(control), ablage_(ablage) {}

void Kontodaten::KontoabosAnfordern() {
    const std::string& konten = einstellungen_.KontenDatenKontoName;
    if (konten.empty()) {
        control_->reqAccountUpdates(true, "");
        return;
    }
    for (const auto& konto : Teile(konten, ','))
        OhneFehler("Konto abonnieren", [&] { control_->reqAccountUpdates(true, std::string(Getrimmt(konto))); });
}

void Kontodaten::updateAccountValue(std::string_view key, std::string_view value, std::string_view curency,
                                    std::string_view accountName) {
    if (!einstellungen_.KontenDatenAufzeichnen || !IstNumerisch(value)) return;
    const Titelzeiger titel = Kontotitel(key, curency, accountName);
    if (const auto kurs = AlsEinfach(Zahlwert(value)))
        ablage_.DatensatzAnhaengen(*titel, kursart::Bezahlt, *kurs, 0, true, uhr_.Jetzt());
}

Titelzeiger Kontodaten::Kontotitel(std::string_view key, std::string_view curency, std::string_view accountName) {
    Titelzeiger& platz = Kontotitelliste[Kontoschluessel(key, curency, accountName)];
    if (platz) return platz;
    auto titel = std::make_shared<clTitelobjekt>();
    titel->Aktiv(true);
    titel->Symbol = key;
    if (!einstellungen_.KontenDatenUseNoKontoName) titel->Börsenplatz = accountName;
    titel->Typ = curency;
    titel->Katalog = Kontokatalog;
    platz = std::move(titel);
    return platz;
}

void Kontodaten::updatePortfolioEx(const tws::Contract& contract, double position, double marketPrice,
                                   std::string_view accountName) {
    const Einstellungen& einstellungen = einstellungen_;
    if (!einstellungen.KontenDatenAufzeichnen || !einstellungen.PortfolioAufzeichnen) return;
    for (const Titelzeiger& titel : bestand_.Titelliste) {
        if (!PasstZuTitel(contract, *titel)) continue;
        titel->AccountName = einstellungen.KontenDatenUseNoKontoName ? std::string_view() : accountName;
        const bool glaubhaft = marketPrice >= -HoechsterPositionskurs && marketPrice <= HoechsterPositionskurs;
        const auto kurs = AlsEinfach(glaubhaft ? marketPrice : 0);
        const auto volume = AlsEinfach(position);
        if (kurs && volume) ablage_.DatensatzAnhaengen(*titel, kursart::Position, *kurs, *volume, false, uhr_.Jetzt());
        return;
    }
}

}  // namespace zek
