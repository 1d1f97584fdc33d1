#include "session/fehlerprotokoll.h"

#include "platform/systemtext.h"

#include <string>

namespace zek {

Fehlerprotokoll::Fehlerprotokoll(Statusausgabe& status) : status_(status), vorher_(SetzeFehlerhoerer(this)) {}

Fehlerprotokoll::~Fehlerprotokoll() {
    SetzeFehlerhoerer(vorher_);
}

void Fehlerprotokoll::Verschluckt(const char* stelle, const std::exception* fehler) noexcept {
    if (vorher_ != nullptr) vorher_->Verschluckt(stelle, fehler);
    try {
        const bool erster = ++anzahl_[stelle] == 1;
        if (!erster || meldet_) return;  // an error of the log itself is only counted
        meldet_ = true;
        status_.Statusmeldung("Interner Fehler bei „" + std::string(stelle) +
                                  "“: " + (fehler != nullptr ? Fehlertext(*fehler) : "unbekannt") +
                                  " (Weitere an dieser Stelle werden nur gezählt.)",
                              true);
    } catch (...) {
        // No memory for the entry: there is nobody left to tell.
    }
    meldet_ = false;
}

void Fehlerprotokoll::Zusammenfassung() {
    if (anzahl_.empty()) return;
    std::string text = "Interne Fehler seit dem Start:";
    for (const auto& [stelle, anzahl] : anzahl_)
        text.append(" „").append(stelle).append("“ ").append(std::to_string(anzahl)).append("-mal,");
    text.back() = '.';
    status_.Statusmeldung(text, true);
}

}  // namespace zek
