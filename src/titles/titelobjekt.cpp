#include "titles/titelobjekt.h"

#include "platform/text.h"

#include <algorithm>
#include <limits>

namespace zek {

namespace {

constexpr std::int32_t TiefsteKursart = -220;
constexpr std::size_t IndexZusatz = 15, IndexOhneGesamtVolumen = 16;

[[noreturn]] void FalscherTyp(std::size_t index) {
    throw WertbaumFehler("Falscher Typ des Titelwertes " + std::to_string(index) + ".");
}

// Elements of a parameter list by the index that they carry.
class Parameterleser {
public:
    explicit Parameterleser(const Werteliste& liste) : liste_(liste) {}

    // Null when there is no such element.
    const Wert* Finde(std::size_t index) const {
        const auto stelle = static_cast<std::int64_t>(index) - liste_.Untergrenze;
        if (stelle < 0 || stelle >= static_cast<std::int64_t>(liste_.Elemente.size())) return nullptr;
        return &liste_.Elemente[static_cast<std::size_t>(stelle)];
    }

    const std::string& Text(std::size_t index) const { return Hole<std::string>(index); }
    bool Wahr(std::size_t index) const { return Hole<bool>(index); }

    double Zahl(std::size_t index) const {
        const Wert& wert = Element(index);
        if (const auto* d = std::get_if<double>(&wert.Inhalt)) return *d;
        return static_cast<double>(Ganz(index));
    }

    std::int32_t Ganz(std::size_t index) const {
        const Wert& wert = Element(index);
        if (const auto* lang = std::get_if<std::int32_t>(&wert.Inhalt)) return *lang;
        if (const auto* kurz = std::get_if<std::int16_t>(&wert.Inhalt)) return *kurz;
        FalscherTyp(index);
    }

    std::int16_t GanzKurz(std::size_t index) const {
        const std::int32_t wert = Ganz(index);
        if (wert < std::numeric_limits<std::int16_t>::min() || wert > std::numeric_limits<std::int16_t>::max()) {
            FalscherTyp(index);
        }
        return static_cast<std::int16_t>(wert);
    }

    const Werteliste* Liste(std::size_t index) const {
        const Wert* wert = Finde(index);
        return wert ? std::get_if<Werteliste>(&wert->Inhalt) : nullptr;
    }

private:
    const Wert& Element(std::size_t index) const {
        const Wert* wert = Finde(index);
        if (!wert) throw WertbaumFehler("Der Titelwert " + std::to_string(index) + " fehlt.");
        return *wert;
    }

    template <typename T>
    const T& Hole(std::size_t index) const {
        const T* inhalt = std::get_if<T>(&Element(index).Inhalt);
        if (!inhalt) FalscherTyp(index);
        return *inhalt;
    }

    const Werteliste& liste_;
};

void LiesZusatz(clTitelobjekt& titel, const Werteliste& liste) {
    const Parameterleser zusatz(liste);
    titel.ZeitKorrektur = zusatz.Zahl(0);
    // UseGesamtVol, the third of the inner list, is found out anew in each run.
    if (const Werteliste* innen = zusatz.Liste(1)) {
        const Parameterleser vertrag(*innen);
        titel.Multiplikator = vertrag.Text(0);
        titel.IstLokalesSymbol = vertrag.Wahr(1);
    }
    if (zusatz.Finde(2)) titel.BackfillPrioritaet = zusatz.GanzKurz(2);
}

}  // namespace

void clTitelobjekt::KonsistenzGecheckt(std::int32_t kursart, bool wert) {
    if (kursart >= 0) {
        gechecktPositiv_.at(static_cast<std::size_t>(kursart)) = wert;
    } else {
        gechecktNegativ_.at(static_cast<std::size_t>(std::int64_t{kursart} - TiefsteKursart)) = wert;
    }
}

bool clTitelobjekt::KonsistenzGecheckt(std::int32_t kursart) const {
    if (kursart >= 0) return gechecktPositiv_.at(static_cast<std::size_t>(kursart));
    return gechecktNegativ_.at(static_cast<std::size_t>(std::int64_t{kursart} - TiefsteKursart));
}

void clTitelobjekt::Aktiv(bool wert) {
    aktiv_ = wert;
    if (wert) return;
    VorigerLast = VorigerBid = VorigerAsk = KeinWert;
    VorigesMDVorzeichen = 0;
}

std::string clTitelobjekt::GetTitelInfo() const {
    if (IstLokalesSymbol) return "Lokales Symbol: " + Symbol + "," + Typ + "," + Börsenplatz + "," + Währung;
    // The currency stands there twice; readers of the log know the line like this.
    return "Underlying: " + Symbol + "," + Typ + "," + Börsenplatz + "," + Währung + "," + Laufzeit + "," +
           Zahltext(Basispreis) + "," + Ausübungsrecht + "," + Währung + "," + Multiplikator;
}

void clTitelobjekt::ReadAllPara(const Wert& para) {
    const auto* liste = std::get_if<Werteliste>(&para.Inhalt);
    if (!liste) throw WertbaumFehler("Die Titelwerte sind keine Liste.");
    const Parameterleser werte(*liste);
    Symbol = werte.Text(0);
    Börsenplatz = werte.Text(1);
    Typ = werte.Text(2);
    Laufzeit = werte.Text(3);
    Basispreis = werte.Zahl(4);
    Ausübungsrecht = werte.Text(5);
    Währung = werte.Text(6);
    aktiv_ = werte.Wahr(7);
    BidAsk = werte.Wahr(8);
    Katalog = werte.Text(9);
    Flags = werte.Ganz(10);
    Dateiname = werte.Text(11);
    StartZeit = werte.Zahl(12);
    UseMarkttiefe = werte.Wahr(13);
    NegativeWerteErlaubt = werte.Wahr(14);

    Multiplikator.clear();
    IstLokalesSymbol = false;
    if (const Werteliste* zusatz = werte.Liste(IndexZusatz)) {
        LiesZusatz(*this, *zusatz);
    } else {
        ZeitKorrektur = 0;
    }
    DontUseGesamtVol = werte.Finde(IndexOhneGesamtVolumen) && werte.Wahr(IndexOhneGesamtVolumen);
}

Wert clTitelobjekt::WriteAllPara() const {
    Werteliste vertrag;
    vertrag.Elemente = {Wert{Multiplikator}, Wert{IstLokalesSymbol}, Wert{UseGesamtVol}};
    Werteliste zusatz;
    zusatz.Elemente = {Wert{ZeitKorrektur}, Wert{std::move(vertrag)}, Wert{BackfillPrioritaet}};
    Werteliste para;
    para.Elemente = {
        Wert{Symbol},
        Wert{Börsenplatz},
        Wert{Typ},
        Wert{Laufzeit},
        Wert{Basispreis},
        Wert{Ausübungsrecht},
        Wert{Währung},
        Wert{aktiv_},
        Wert{BidAsk},
        Wert{Katalog},
        Wert{Flags},
        Wert{Dateiname},
        Wert{StartZeit},
        Wert{UseMarkttiefe},
        Wert{NegativeWerteErlaubt},
        Wert{std::move(zusatz)},
        Wert{DontUseGesamtVol},
    };
    return {std::move(para)};
}

bool Verbindungsvergleich(const clTitelobjekt& a, const clTitelobjekt& b) {
    return GleichOhneGrossKlein(a.Symbol, b.Symbol) && GleichOhneGrossKlein(a.Börsenplatz, b.Börsenplatz) &&
           GleichOhneGrossKlein(a.Laufzeit, b.Laufzeit) && GleichOhneGrossKlein(a.Typ, b.Typ) &&
           a.Basispreis == b.Basispreis && GleichOhneGrossKlein(a.Ausübungsrecht, b.Ausübungsrecht) &&
           GleichOhneGrossKlein(a.Währung, b.Währung);
}

}  // namespace zek
