// Files as a cause of gaps: they take no records. Says so once where a person looks, when it begins and when it is
// over.
#pragma once

#include "modul/rollen.h"
#include "supervision/offeneluecken.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <utility>

namespace zek {

class Dateiluecken {
public:
    Dateiluecken(OffeneLuecken& offen, Statusausgabe& status) : offen_(offen), status_(status) {}

    void Gescheitert(const clTitelobjekt& titel, std::int32_t kursart, int systemfehler, Zeitpunkt jetzt);
    void Beschaedigt(const clTitelobjekt& titel, std::int32_t kursart, Zeitpunkt jetzt);
    void WiederGespeichert(const clTitelobjekt& titel, std::int32_t kursart, Zeitpunkt jetzt);
    void AnderesGespeichert(Zeitpunkt jetzt);
    // Once a second.
    void Pruefe(Zeitpunkt jetzt);

    // How far what came until `zeit` has reached files: not beyond the last record that any file took, while some fail.
    Zeitpunkt GespeichertBis(Zeitpunkt zeit) const;

private:
    using Reihe = std::pair<std::string, std::int32_t>;  // base name and kind

    void Melde(const std::string& text) { status_.Statusmeldung(text, true); }
    void MeldeAusfall();
    void MeldeEnde(Zeitpunkt jetzt);

    OffeneLuecken& offen_;
    Statusausgabe& status_;
    std::map<Reihe, bool> gescheitert_;  // torn ones are true
    int systemfehler_ = 0;               // of the last failure
    std::optional<Zeitpunkt> beginn_;    // of the failures
    Zeitpunkt letzterFehler_{};
    Zeitpunkt letzterErfolg_{};  // counts while some file fails
    std::size_t hoechstens_ = 0;
    bool gemeldet_ = false;
    std::size_t beschaedigteGemeldet_ = 0;
};

}  // namespace zek
