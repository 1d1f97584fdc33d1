// Files as a cause of gaps: they take no records. Says so once where a person looks, when it begins and when it is
// over.
#pragma once

#include "modul/rollen.h"
#include "supervision/offeneluecken.h"

#include <cstdint>
#include <map>
#include <string>
#include <utility>

namespace zek {

class Dateiluecken {
public:
    Dateiluecken(OffeneLuecken& offen, Statusausgabe& status) : offen_(offen), status_(status) {}

    void Gescheitert(const clTitelobjekt& titel, std::int32_t kursart, int systemfehler, Datum jetzt);
    void Beschaedigt(const clTitelobjekt& titel, std::int32_t kursart, Datum jetzt);
    void WiederGespeichert(const clTitelobjekt& titel, std::int32_t kursart, Datum jetzt);
    void AnderesGespeichert(Datum jetzt);
    // Once a second.
    void Pruefe(Datum jetzt);

    // How far what came until `zeit` has reached files: not beyond the last record that any file took, while some fail.
    Datum GespeichertBis(Datum zeit) const;

private:
    using Reihe = std::pair<std::string, std::int32_t>;  // base name and kind

    void Melde(const std::string& text) { status_.Statusmeldung(text, true); }
    void MeldeAusfall();
    void MeldeEnde(Datum jetzt);

    OffeneLuecken& offen_;
    Statusausgabe& status_;
    std::map<Reihe, bool> gescheitert_;  // torn ones are true
    int systemfehler_ = 0;               // of the last failure
    Datum beginn_ = 0;                   // of the failures; 0 for none
    Datum letzterFehler_ = 0;
    Datum letzterErfolg_ = 0;  // counts while some file fails
    std::size_t hoechstens_ = 0;
    bool gemeldet_ = false;
    std::size_t beschaedigteGemeldet_ = 0;
};

}  // namespace zek
