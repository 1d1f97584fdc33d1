#include "session/schreibschlange.h"

#include "platform/ohnefehler.h"
#include "platform/text.h"

#include <algorithm>
#include <cerrno>
#include <utility>

namespace zek {

namespace {

bool DieselbeDatei(const Schreibschlange::Ziel& a, const Schreibschlange::Ziel& b) {
    return a.LokaleDatei == b.LokaleDatei && GleichOhneGrossKlein(a.Anwendung, b.Anwendung);
}

bool DerselbeWert(const Speicheraenderung& a, std::string_view abschnitt, std::string_view schluessel) {
    return GleichOhneGrossKlein(a.Abschnitt, abschnitt) && GleichOhneGrossKlein(a.Schluessel, schluessel);
}

}  // namespace

Schreibschlange::Buendel::~Buendel() {
    if (--schlange_.buendel_ == 0) OhneFehler("Einstellungen gebündelt schreiben", [this] { schlange_.Schreibe(); });
}

void Schreibschlange::Reihe(const Ziel& ziel, Speicheraenderung aenderung, Haltbarkeit haltbarkeit) {
    const auto alte = std::ranges::find_if(wartende_, [&](const Eintrag& eintrag) {
        return DieselbeDatei(eintrag.Wohin, ziel) &&
               DerselbeWert(eintrag.Aenderung, aenderung.Abschnitt, aenderung.Schluessel);
    });
    if (alte == wartende_.end())
        wartende_.push_back({ziel, std::move(aenderung), haltbarkeit});
    else
        *alte = {ziel, std::move(aenderung), haltbarkeit};
}

int Schreibschlange::Schreibe() {
    if (buendel_ > 0) return wartende_.empty() ? 0 : -EBUSY;
    int ergebnis = 0;
    const auto merke = [&](int fehler) {
        if (fehler < 0 && ergebnis != -EBUSY) ergebnis = fehler;
    };
    std::vector<Ziel> ziele;
    for (const Eintrag& eintrag : wartende_) {
        if (std::ranges::none_of(ziele, [&](const Ziel& ziel) { return DieselbeDatei(ziel, eintrag.Wohin); }))
            ziele.push_back(eintrag.Wohin);
    }
    for (const Ziel& ziel : ziele) merke(SchreibeDatei(ziel));
    return ergebnis;
}

int Schreibschlange::SchreibeDatei(const Ziel& ziel) {
    std::vector<Speicheraenderung> aenderungen;
    Haltbarkeit haltbarkeit = Haltbarkeit::Spaeter;
    for (const Eintrag& eintrag : wartende_) {
        if (!DieselbeDatei(eintrag.Wohin, ziel)) continue;
        aenderungen.push_back(eintrag.Aenderung);
        if (eintrag.Haltbarkeit == Haltbarkeit::Sofort) haltbarkeit = Haltbarkeit::Sofort;
    }
    const int fehler = ziel.LokaleDatei ? lokaleDatei_.Schreibe(aenderungen, haltbarkeit)
                                        : registry_.Schreibe(ziel.Anwendung, aenderungen, haltbarkeit);
    // A write that fails for another reason would fail again and again.
    if (fehler != -EBUSY) std::erase_if(wartende_, [&](const Eintrag& e) { return DieselbeDatei(e.Wohin, ziel); });
    return fehler;
}

const Speicheraenderung* Schreibschlange::Wartend(const Ziel& ziel, std::string_view abschnitt,
                                                  std::string_view schluessel) const {
    const auto gefunden = std::ranges::find_if(wartende_, [&](const Eintrag& eintrag) {
        return DieselbeDatei(eintrag.Wohin, ziel) && DerselbeWert(eintrag.Aenderung, abschnitt, schluessel);
    });
    return gefunden == wartende_.end() ? nullptr : &gefunden->Aenderung;
}

}  // namespace zek
