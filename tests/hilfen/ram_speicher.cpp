#include "hilfen/ram_speicher.h"

#include "platform/text.h"

namespace zek::hilfen {

namespace {

constexpr char Trenner = '\x1f';

std::string Profilschluessel(std::string_view abschnitt, std::string_view schluessel) {
    return Kleinbuchstaben(abschnitt) + Trenner + Kleinbuchstaben(schluessel);
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

bool RamNutzerspeicher::Schreibe(std::string_view anwendung, std::string_view abschnitt, std::string_view schluessel,
                                 std::string_view wert) {
    Schreibvorgaenge.push_back(
        {std::string(anwendung), std::string(abschnitt), std::string(schluessel), std::string(wert), false});
    if (Schreibgeschuetzt) return false;
    Setze(anwendung, abschnitt, schluessel, wert);
    return true;
}

bool RamNutzerspeicher::Loesche(std::string_view anwendung, std::string_view abschnitt, std::string_view schluessel) {
    Schreibvorgaenge.push_back({std::string(anwendung), std::string(abschnitt), std::string(schluessel), "", true});
    if (Schreibgeschuetzt) return false;
    return werte_.erase(Schluesseltext(anwendung, abschnitt, schluessel)) > 0;
}

void RamNutzerspeicher::Setze(std::string_view anwendung, std::string_view abschnitt, std::string_view schluessel,
                              std::string_view wert) {
    werte_[Schluesseltext(anwendung, abschnitt, schluessel)] = wert;
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

bool RamProfildatei::Schreibe(std::string_view abschnitt, std::string_view schluessel, std::string_view wert) {
    Schreibvorgaenge.push_back({"", std::string(abschnitt), std::string(schluessel), std::string(wert), false});
    if (Schreibgeschuetzt) return false;
    Setze(abschnitt, schluessel, wert);
    return true;
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
