#include "session/zuruf.h"

#include "platform/text.h"

#include <utility>

namespace zek {

namespace {

constexpr std::string_view Schluessel = "Zeigen";
constexpr char Trenner = '\t';

}  // namespace

void RufeNachVorn(Einstellungsspeicher& speicher, std::string_view programmordner, Zeitpunkt jetzt) {
    speicher.SchreibeRegistry(Programmtitel, abschnitt::Kommando, Schluessel,
                              std::string(programmordner) + Trenner + ZahltextPunkt(DatumAus(jetzt)));
}

Zurufhoerer::Zurufhoerer(Einstellungsspeicher& speicher, std::string programmordner)
    : speicher_(speicher), programmordner_(std::move(programmordner) + Trenner), letzter_(Lies()) {}

std::string Zurufhoerer::Lies() {
    return speicher_.LeseRegistry(Programmtitel, abschnitt::Kommando, Schluessel, "");
}

bool Zurufhoerer::Gerufen() {
    std::string ruf = Lies();
    if (ruf == letzter_) return false;
    letzter_ = std::move(ruf);
    return letzter_.starts_with(programmordner_);
}

}  // namespace zek
