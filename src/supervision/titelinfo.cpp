#include "supervision/titelinfo.h"

#include "platform/text.h"

#include <utility>

namespace zek {

Titelinfo::Titelinfo(const Titelbestand& bestand, const Tickuhr& tickuhr, const Uhr& uhr,
                     std::function<void(const std::string&)> anzeige)
    : bestand_(bestand), tickuhr_(tickuhr), uhr_(uhr), anzeige_(std::move(anzeige)) {}

void Titelinfo::TitelInfoAktualisieren(bool nurTickRate) {
    if (!nurTickRate) {
        aktive_ = 0;
        mitGeldBrief_ = 0;
        for (const Titelzeiger& titel : bestand_.Titelliste) {
            if (!titel->Aktiv()) continue;
            ++aktive_;
            if (titel->BidAsk) ++mitGeldBrief_;
        }
    }
    TickrateErneuern();
    anzeige_(std::to_string(aktive_) + " Titel aktiviert, " + std::to_string(mitGeldBrief_) + " mit Geld/Brief (" +
             FesteStellen(tickrate_, 1) + " Ticks/s)");
}

void Titelinfo::TickrateErneuern() {
    const Zeitpunkt jetzt = uhr_.Jetzt();
    if (basis_ > 0) {
        const double sekunden = AlsSekunden(jetzt - basisZeit_);
        if (sekunden <= 0) return;
        tickrate_ = static_cast<float>((tickuhr_.Kursanzahl - basis_) / sekunden);
    }
    basis_ = tickuhr_.Kursanzahl;
    basisZeit_ = jetzt;
}

}  // namespace zek
