#include "datafiles/dateikopf.h"

#include "datafiles/dateiio.h"
#include "datafiles/dateinamen.h"
#include "platform/datum.h"
#include "platform/text.h"

#include <algorithm>
#include <utility>

namespace zek {

namespace {

constexpr std::string_view Feedzeile = "Datenfeed Interactive Brokers";
constexpr std::string_view FeedzeileTiefe = "Datenfeed Interactive Brokers Markttiefe";
constexpr std::int32_t LetzteGrundart = -99;  // kinds below are market depth
constexpr std::string_view DatenquelleIB = "IB";
constexpr std::string_view LangGueltig = "Ja";

bool LangfelderGelten(const DatenDateikopf& kopf) {
    return std::string_view(kopf.LangFelderGueltig.data(), kopf.LangFelderGueltig.size()) == LangGueltig;
}

}  // namespace

void DateikopfAufbauen(DatenDateikopf& kopf, clTitelobjekt& titel, std::int32_t kursart) {
    kopf = DatenDateikopf{};
    std::string name = Dateinamensbildung(titel, kursart::Basisname);
    NamenszusatzAnhaengen(titel, kursart, name);
    SetzeFeld(kopf.Kennung, DateiKennung);
    SetzeFeld(kopf.KurzName, name);
    SetzeFeld(kopf.KurzSymbol, name);
    const std::string_view zeile = kursart >= LetzteGrundart ? Feedzeile : FeedzeileTiefe;
    SetzeFeld(kopf.Kommentar, std::string(zeile) + "\r\n" + name);
    kopf.Gueltig = -1;
    SetzeFeld(kopf.LangFelderGueltig, LangGueltig);
    SetzeFeld(kopf.LangName, name);
    SetzeFeld(kopf.LangSymbol, name);
    ParameterErneuern(kopf, titel);
    if (const std::string_view art = KursartName(kursart); !art.empty()) SetzeFeld(kopf.Kursartname, art);
}

std::span<std::byte> KopfBytes(DatenDateikopf& kopf) {
    return std::as_writable_bytes(std::span(&kopf, 1));
}

std::span<const std::byte> KopfBytes(const DatenDateikopf& kopf) {
    return std::as_bytes(std::span(&kopf, 1));
}

bool KennungStimmt(const DatenDateikopf& kopf) {
    return std::ranges::equal(kopf.Kennung, DateiKennung);
}

void SetzeFeld(std::span<char> feld, std::string_view text) {
    const std::string bytes = NachCodepage(text);
    const std::size_t anzahl = std::min(bytes.size(), feld.size());
    std::copy_n(bytes.begin(), anzahl, feld.begin());
    std::ranges::fill(feld.subspan(anzahl), ' ');
}

std::string FeldText(std::span<const char> feld) {
    std::string_view bytes(feld.data(), feld.size());
    constexpr std::string_view Fuellung("\0 ", 2);
    const std::size_t anfang = bytes.find_first_not_of(Fuellung);
    if (anfang == std::string_view::npos) return {};
    return AusCodepage(bytes.substr(anfang, bytes.find_last_not_of(Fuellung) - anfang + 1));
}

std::string AnzeigeName(const DatenDateikopf& kopf) {
    return LangfelderGelten(kopf) ? FeldText(kopf.LangName) : FeldText(kopf.KurzName);
}

std::string AnzeigeSymbol(const DatenDateikopf& kopf) {
    return LangfelderGelten(kopf) ? FeldText(kopf.LangSymbol) : FeldText(kopf.KurzSymbol);
}

std::string TitelparameterText(const clTitelobjekt& titel) {
    return titel.Symbol + ";" + titel.Typ + ";" + titel.Laufzeit + ";" + Zahltext(titel.Basispreis) + ";" +
           titel.Ausübungsrecht + ";;" + titel.Börsenplatz + ";;" + titel.Währung + ";" + titel.Multiplikator + ";" +
           (titel.IstLokalesSymbol ? "1" : "0");
}

std::string_view KursartName(std::int32_t kursart) {
    switch (kursart) {
        case kursart::Bezahlt:
            return "Bezahlt";
        case kursart::Brief:
            return "Brief";
        case kursart::Geld:
            return "Geld";
        case kursart::BAVolume:
            return "BAVolume";
        case kursart::Position:
            return "Position";
        default:
            return {};
    }
}

void ParameterErneuern(DatenDateikopf& kopf, const clTitelobjekt& titel) {
    SetzeFeld(kopf.Datenquelle, DatenquelleIB);
    SetzeFeld(kopf.Titelparameter, TitelparameterText(titel));
}

void SetzeLetztePflege(DatenDateikopf& kopf, Zeitpunkt zeit) {
    SetzeFeld(kopf.LetztePflege, Felderstempel(zeit, '#'));
}

bool DateikopfErneuern(Dateisystem& dateien, const std::string& pfad, const clTitelobjekt& titel) {
    const std::string wirklich = OhneGrossKlein(dateien, pfad);
    if (!dateien.DateiExistiert(wirklich)) return false;
    clDateiIO datei(dateien);
    datei.OpenFile(wirklich, false);
    if (datei.FileSize().Bytes() < DateikopfBytes) return false;
    DatenDateikopf kopf;
    if (datei.Lies(KopfBytes(kopf)) != DateikopfBytes || !KennungStimmt(kopf)) return false;
    ParameterErneuern(kopf, titel);
    if (datei.SeekAbsolute({}) != 0) return false;
    return datei.Schreibe(KopfBytes(std::as_const(kopf))) == DateikopfBytes;
}

}  // namespace zek
