#include "hilfen/ram_speicher.h"

#include "platform/text.h"

#include <cerrno>

namespace zek::hilfen {

namespace {

constexpr char Trenner = '\x1f';

std::string Profilschluessel(std::string_view abschnitt, std::string_view schluessel) {
    return Kleinbuchstaben(abschnitt) + Trenner + Kleinbuchstaben(schluessel);
}

Speichervorgang AlsVorgang(std::string_view anwendung, const Speicheraenderung& eine) {
    return {std::string(anwendung), eine.Abschnitt, eine.Schluessel, eine.Wert.value_or(""), !eine.Wert};
}

}  // namespace

std::string RamNutzerspeicher::Schluesseltext(std::string_view anwendung, std::string_view abschnitt,
                                              std::string_view schluessel) {
    return Kleinbuchstaben(anwendung) + Trenner + Profilschluessel(abschnitt, schluessel);
}

std::optional<std::string> RamNutzerspeicher::Lies(std::string_view anwendung, std::string_view abschnitt,
                                                   std::string_view schluessel) {
    const auto stelle = werte_.find(Schluesseltext(anwendung, abschnitt, schluessel));
    if (stelle == werte_.end()) return std::nullopt;
    return stelle->second;
}

int RamNutzerspeicher::Schreibe(std::string_view anwendung, std::span<const Speicheraenderung> aenderungen,
                                Haltbarkeit haltbarkeit) {
    if (Belegt) return -EBUSY;
    for (const Speicheraenderung& eine : aenderungen) Schreibvorgaenge.push_back(AlsVorgang(anwendung, eine));
    if (Schreibgeschuetzt) return -EROFS;
    bool geaendert = false;
    for (const auto& [abschnitt, schluessel, wert] : aenderungen) {
        const std::string name = Schluesseltext(anwendung, abschnitt, schluessel);
        const auto stelle = werte_.find(name);
        geaendert |= wert ? stelle == werte_.end() || stelle->second != *wert : stelle != werte_.end();
        if (wert)
            werte_[name] = *wert;
        else
            werte_.erase(name);
    }
    if (geaendert) Schreibzugriffe.push_back(haltbarkeit);
    return 0;
}

void RamNutzerspeicher::Setze(std::string_view anwendung, std::string_view abschnitt, std::string_view schluessel,
                              std::string_view wert) {
    werte_[Schluesseltext(anwendung, abschnitt, schluessel)] = wert;
}

void RamNutzerspeicher::Loesche(std::string_view anwendung, std::string_view abschnitt, std::string_view schluessel) {
    werte_.erase(Schluesseltext(anwendung, abschnitt, schluessel));
}

std::string RamProfildatei::Lies(std::string_view abschnitt, std::string_view schluessel, std::string_view vorgabe,
                                 std::size_t puffer) {
    const auto stelle = werte_.find(Profilschluessel(abschnitt, schluessel));
    std::string_view wert = stelle == werte_.end() ? vorgabe : Getrimmt(stelle->second);
    const bool inAnfuehrung = wert.size() >= 2 && wert.front() == wert.back() && (wert[0] == '"' || wert[0] == '\'');
    if (stelle != werte_.end() && inAnfuehrung) wert = wert.substr(1, wert.size() - 2);
    if (puffer == 0) return {};
    return AusCodepage(NachCodepage(wert).substr(0, puffer - 1));
}

int RamProfildatei::Schreibe(std::span<const Speicheraenderung> aenderungen, Haltbarkeit haltbarkeit) {
    for (const Speicheraenderung& eine : aenderungen) Schreibvorgaenge.push_back(AlsVorgang("", eine));
    if (Schreibgeschuetzt) return -EROFS;
    for (const auto& [abschnitt, schluessel, wert] : aenderungen) {
        if (wert)
            Setze(abschnitt, schluessel, *wert);
        else
            werte_.erase(Profilschluessel(abschnitt, schluessel));
    }
    Schreibzugriffe.push_back(haltbarkeit);
    return 0;
}

void RamProfildatei::Setze(std::string_view abschnitt, std::string_view schluessel, std::string_view roh) {
    werte_[Profilschluessel(abschnitt, schluessel)] = roh;
}

std::optional<std::string> RamProfildatei::Roh(std::string_view abschnitt, std::string_view schluessel) const {
    const auto stelle = werte_.find(Profilschluessel(abschnitt, schluessel));
    if (stelle == werte_.end()) return std::nullopt;
    return stelle->second;
}

}  // namespace zek::hilfen
