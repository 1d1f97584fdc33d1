#include "datafiles/dateinamen.h"

#include "platform/text.h"

#include <algorithm>
#include <charconv>

namespace zek {

namespace {

constexpr std::string_view ZusatzBrief = "-ASK", ZusatzGeld = "-BID", ZusatzBAV = "-BAV", ZusatzPosition = "-POS-",
                           ZusatzBriefTiefe = "-ASKMT", ZusatzGeldTiefe = "-BIDMT";
constexpr std::int32_t BriefTiefeBasis = kursart::BriefTiefe(0), GeldTiefeBasis = kursart::GeldTiefe(0);

void ZahlAnhaengen(std::int32_t zahl, std::string& ziel) {
    char puffer[16];
    const auto ende = std::to_chars(puffer, puffer + sizeof(puffer), zahl).ptr;
    ziel.append(puffer, ende);
}

std::string FormeBasisname(const clTitelobjekt& titel) {
    std::string name = titel.Symbol + "@" + titel.Börsenplatz + "_" + titel.Typ;
    if (!titel.Laufzeit.empty()) name += "_" + titel.Laufzeit;
    if (titel.Basispreis > 0) name += "_" + Zahltext(titel.Basispreis);
    if (!titel.Ausübungsrecht.empty()) name += "_" + titel.Ausübungsrecht;
    if (!titel.Währung.empty()) name += "_" + titel.Währung;
    return Namensbereinigung(name);
}

const std::string& Basisname(clTitelobjekt& titel) {
    if (titel.Dateiname.empty()) titel.Dateiname = FormeBasisname(titel);
    return titel.Dateiname;
}

// Takes an ending off, in any letter case.
bool NimmEnde(std::string_view& text, std::string_view ende) {
    if (text.size() < ende.size()) return false;
    if (!GleichOhneGrossKlein(text.substr(text.size() - ende.size()), ende)) return false;
    text.remove_suffix(ende.size());
    return true;
}

// Takes "-ASKMT3" off; the number is a level without a leading zero.
bool NimmTiefe(std::string_view& stamm, Namensteile& teile) {
    const std::size_t letzte = stamm.find_last_not_of("0123456789");
    if (letzte == std::string_view::npos) return false;
    const std::string_view ziffern = stamm.substr(letzte + 1);
    const std::optional<long long> stufe = ziffern.starts_with('0') ? std::nullopt : Ganzzahl(ziffern);
    if (!stufe || *stufe < 1 || *stufe > kursart::TiefsteStufe) return false;
    std::string_view rest = stamm.substr(0, letzte + 1);
    if (NimmEnde(rest, ZusatzBriefTiefe)) {
        teile.Kursart = kursart::BriefTiefe(static_cast<int>(*stufe));
    } else if (NimmEnde(rest, ZusatzGeldTiefe)) {
        teile.Kursart = kursart::GeldTiefe(static_cast<int>(*stufe));
    } else {
        return false;
    }
    stamm = rest;
    return true;
}

void NimmPosition(std::string_view& stamm, Namensteile& teile) {
    const std::size_t stelle = stamm.rfind(ZusatzPosition);
    if (stelle == std::string_view::npos) return;
    teile.Kursart = kursart::Position;
    teile.AccountName = stamm.substr(stelle + ZusatzPosition.size());
    stamm = stamm.substr(0, stelle);
}

void SetzeTrennerAnsEnde(std::string& pfad) {
    if (!pfad.ends_with('/')) pfad += '/';
}

}  // namespace

std::string Namensbereinigung(std::string_view text) {
    std::string sauber(text);
    for (char& zeichen : sauber) {
        if (std::string_view("/\\:*?\"<>|").find(zeichen) != std::string_view::npos) zeichen = '-';
    }
    return sauber;
}

std::string ImOrdner(std::string_view name) {
    if (name == "." || name == "..") return std::string(name.size(), '-');
    if (name.find_first_of(std::string_view("/\0", 2)) == std::string_view::npos) return std::string(name);
    std::string sauber = Namensbereinigung(name);
    std::ranges::replace(sauber, '\0', '-');
    return sauber;
}

std::string Dateinamensbildung(clTitelobjekt& titel, std::int32_t kursart) {
    std::string name;
    DateinameAnhaengen(titel, kursart, name);
    return name;
}

void DateinameAnhaengen(clTitelobjekt& titel, std::int32_t kursart, std::string& ziel) {
    ziel += Basisname(titel);
    if (kursart == kursart::Basisname) return;
    NamenszusatzAnhaengen(titel, kursart, ziel);
    ziel += Dateiendung;
}

void NamenszusatzAnhaengen(const clTitelobjekt& titel, std::int32_t kursart, std::string& ziel) {
    if (kursart <= GeldTiefeBasis) {
        ziel += ZusatzGeldTiefe;
        ZahlAnhaengen(GeldTiefeBasis - kursart, ziel);
    } else if (kursart <= BriefTiefeBasis) {
        ziel += ZusatzBriefTiefe;
        ZahlAnhaengen(BriefTiefeBasis - kursart, ziel);
    } else if (kursart == kursart::Brief) {
        ziel += ZusatzBrief;
    } else if (kursart == kursart::Geld) {
        ziel += ZusatzGeld;
    } else if (kursart == kursart::BAVolume) {
        ziel += ZusatzBAV;
    } else if (kursart == kursart::Position) {
        ziel += ZusatzPosition;
        ziel += titel.AccountName;
    }
}

std::optional<Namensteile> ZerlegeDateiname(std::string_view name) {
    if (!NimmEnde(name, Dateiendung)) return std::nullopt;
    Namensteile teile;
    if (NimmEnde(name, ZusatzBrief)) {
        teile.Kursart = kursart::Brief;
    } else if (NimmEnde(name, ZusatzGeld)) {
        teile.Kursart = kursart::Geld;
    } else if (NimmEnde(name, ZusatzBAV)) {
        teile.Kursart = kursart::BAVolume;
    } else if (!NimmTiefe(name, teile)) {
        NimmPosition(name, teile);
    }
    teile.Basisname = name;
    return teile;
}

void OrdnertextAnhaengen(const IBModul& modul, const clTitelobjekt& titel, std::string& ziel) {
    ziel += modul.Datenordner;
    SetzeTrennerAnsEnde(ziel);
    ziel += titel.Katalog;
    ziel += '/';
}

std::string TitelOrdner(const IBModul& modul, Dateisystem& dateien, const clTitelobjekt& titel) {
    std::string ordner;
    OrdnertextAnhaengen(modul, titel, ordner);
    if (dateien.OrdnerExistiert(ordner)) return ordner;
    if (!titel.Katalog.empty()) {
        ordner = OhneGrossKlein(dateien, ordner);
        if (dateien.OrdnerExistiert(ordner)) return ordner;
    }
    dateien.LegeOrdnerAn(ordner);
    return ordner;
}

std::string_view Kontodatenordner(const IBModul& modul) {
    const std::string_view ordner = modul.Einstellungen.KontenDatenSpeicherOrdner;
    const std::size_t zeichen = ordner.ends_with('/') ? ordner.size() - 1 : ordner.size();
    return zeichen > 1 ? ordner : std::string_view();
}

std::string Dateipfad(const IBModul& modul, Dateisystem& dateien, clTitelobjekt& titel, std::int32_t kursart,
                      bool kontodaten, Ordnerwissen* wissen) {
    const std::string_view eigener = kontodaten ? Kontodatenordner(modul) : std::string_view();
    std::string pfad = eigener.empty() ? TitelOrdner(modul, dateien, titel) : std::string(eigener);
    SetzeTrennerAnsEnde(pfad);
    DateinameAnhaengen(titel, kursart, pfad);
    return wissen != nullptr ? wissen->OhneGrossKlein(pfad) : OhneGrossKlein(dateien, pfad);
}

}  // namespace zek
