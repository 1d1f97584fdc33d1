#include "backfill/balken.h"

#include "datafiles/kursart.h"
#include "platform/text.h"

#include <algorithm>
#include <cmath>

namespace zek {
namespace {

// Reads along a text; every step leaves the rest in place when it doesn't fit.
class Leser {
public:
    explicit Leser(std::string_view text) : rest_(text) {}

    bool Zahl(std::size_t stellen, int& ziel) {
        if (rest_.size() < stellen) return false;
        int wert = 0;
        for (std::size_t i = 0; i < stellen; ++i) {
            if (rest_[i] < '0' || rest_[i] > '9') return false;
            wert = wert * 10 + (rest_[i] - '0');
        }
        ziel = wert;
        rest_.remove_prefix(stellen);
        return true;
    }
    bool Zeichen(char zeichen) {
        if (rest_.empty() || rest_.front() != zeichen) return false;
        rest_.remove_prefix(1);
        return true;
    }
    bool Leerzeichen() {
        const auto anzahl = std::min(rest_.find_first_not_of(" \t"), rest_.size());
        rest_.remove_prefix(anzahl);
        return anzahl > 0;
    }
    // Decimals behind a point; a time's fraction of a second.
    double Bruchteil() {
        double wert = 0, stelle = 0.1;
        while (!rest_.empty() && rest_.front() >= '0' && rest_.front() <= '9') {
            wert += stelle * (rest_.front() - '0');
            stelle /= 10;
            rest_.remove_prefix(1);
        }
        return wert;
    }
    std::string_view Rest() const { return rest_; }

private:
    std::string_view rest_;
};

bool LiesTag(Leser& leser, Kalendertag& ziel) {
    int jahr = 0, monat = 0, tag = 0;
    if (!leser.Zahl(4, jahr)) return false;
    const bool mitStrichen = leser.Zeichen('-');
    if (!leser.Zahl(2, monat)) return false;
    if (mitStrichen && !leser.Zeichen('-')) return false;
    if (!leser.Zahl(2, tag)) return false;
    if (jahr < 1900) return false;
    const auto datum = std::chrono::year(jahr) / monat / tag;
    if (datum.ok()) ziel = Kalendertag(datum);
    return datum.ok();
}

bool LiesUhrzeit(Leser& leser, Tageszeit& ziel) {
    int stunde = 0, minute = 0, sekunde = 0;
    if (!leser.Zahl(2, stunde) || !leser.Zeichen(':') || !leser.Zahl(2, minute)) return false;
    if (leser.Zeichen(':') && !leser.Zahl(2, sekunde)) return false;
    if (stunde > 23 || minute > 59 || sekunde > 59) return false;
    const double bruchteil = leser.Zeichen('.') ? leser.Bruchteil() : 0;
    ziel = Tageszeit(std::chrono::hours(stunde) + std::chrono::minutes(minute) + DauerAusSekunden(sekunde + bruchteil));
    return true;
}

}  // namespace

std::optional<Balkenzeit> LiesBalkendatum(std::string_view text) {
    Leser leser(Getrimmt(text));
    Kalendertag tag;
    if (!LiesTag(leser, tag)) return std::nullopt;
    if (leser.Rest().empty()) return Balkenzeit{tag, {}};
    if (!leser.Zeichen('-') && !leser.Leerzeichen()) return std::nullopt;
    Tageszeit uhrzeit;
    if (!LiesUhrzeit(leser, uhrzeit)) return std::nullopt;
    leser.Zeichen('Z');
    if (leser.Rest().empty()) return Balkenzeit{tag + uhrzeit, {}};
    if (!leser.Leerzeichen()) return std::nullopt;
    return Balkenzeit{tag + uhrzeit, leser.Rest()};
}

bool IstFertigmeldung(std::string_view datumtext) {
    return datumtext.starts_with("finished");
}

std::string Endzeittext(std::optional<Zeitpunkt> ende) {
    if (!ende) return {};
    // yyyy:mm:dd:hh:mm:ss
    const std::string felder = Felderstempel(*ende, ':');
    return felder.substr(0, 4) + felder.substr(5, 2) + felder.substr(8, 2) + " " + felder.substr(11);
}

std::string_view Historienart(std::int32_t kursart) {
    switch (kursart) {
        case kursart::Brief:
            return "ASK";
        case kursart::Geld:
            return "BID";
        default:
            return "TRADES";
    }
}

bool IstIndextitel(const clTitelobjekt& titel) {
    return GleichOhneGrossKlein(titel.Typ, "IND");
}

void Balkenpuffer::Beginne(std::int32_t kursart, bool istIndex) {
    kursart_ = kursart;
    istIndex_ = istIndex;
    saetze_.clear();
    zuNeu_ = 0;
}

void Balkenpuffer::Nimm(const tws::Bar& balken) {
    const auto kurs = static_cast<float>(balken.close);
    if (!std::isfinite(kurs) || saetze_.size() >= Hoechstzahl) return;
    const auto volume = static_cast<float>(balken.volume);
    const auto zeit = LiesBalkendatum(balken.date);
    if (!zeit) return;
    zone_ = istIndex_ ? std::string(zeit->Zone) : std::string();
    // A volume that is none: as a service says that it has none.
    saetze_.push_back({DatumAus(zeit->Zeit), kurs, std::isfinite(volume) ? volume : -1});
}

void Balkenpuffer::Schliesse(Datum bis) {
    zuNeu_ = std::erase_if(saetze_, [bis](const auto& satz) { return satz.Datum > bis; });
    std::ranges::stable_sort(saetze_, {}, &KursDatensatz::Datum);
    Verdichte();
}

void Balkenpuffer::Verdichte() {
    const bool nurUmsaetze = !istIndex_ && kursart_ == kursart::Bezahlt;
    auto ende = saetze_.begin();
    for (const KursDatensatz& satz : saetze_) {
        const bool behalten = nurUmsaetze ? satz.Volume > 0 : ende == saetze_.begin() || satz.Kurs != ende[-1].Kurs;
        if (!behalten) continue;
        *ende = {satz.Datum, satz.Kurs, istIndex_ ? 0.0F : std::max(satz.Volume, 0.0F)};
        ++ende;
    }
    saetze_.erase(ende, saetze_.end());
}

void Gesamtreihe::Uebernimm(std::span<const KursDatensatz> puffer, Datum start) {
    const std::size_t bisher = saetze_.size();
    for (auto satz = puffer.rbegin(); satz != puffer.rend(); ++satz) {
        if (satz->Datum < start) return;
        if (bisher > 0 && !(satz->Datum < saetze_[bisher - 1].Datum)) continue;
        saetze_.push_back(*satz);
    }
}

std::size_t Gesamtreihe::Anzahl(Datum von, Datum bis) const {
    return static_cast<std::size_t>(std::count_if(
        saetze_.begin(), saetze_.end(), [=](const auto& satz) { return satz.Datum >= von && satz.Datum <= bis; }));
}

std::vector<KursDatensatz> Gesamtreihe::Abgeben(double zeitKorrektur) {
    std::vector<KursDatensatz> fertig = std::move(saetze_);
    saetze_ = {};
    std::reverse(fertig.begin(), fertig.end());
    if (zeitKorrektur != 0)
        for (auto& satz : fertig) satz.Datum += zeitKorrektur;
    return fertig;
}

}  // namespace zek
