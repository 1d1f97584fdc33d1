#include "supervision/dateiluecken.h"

#include "platform/datum.h"
#include "platform/systemtext.h"

#include <algorithm>

namespace zek {

namespace {

// So long files are counted before the failure is told.
constexpr double Sammelzeit = 2;
// Saving works again when a file took a record and none failed for so long.
constexpr double Ruhezeit = 60;

std::string Dateizahl(std::size_t anzahl) {
    return anzahl == 1 ? "1 Datei" : std::to_string(anzahl) + " Dateien";
}

}  // namespace

void Dateiluecken::Gescheitert(const clTitelobjekt& titel, std::int32_t kursart, int systemfehler, Datum jetzt) {
    if (titel.Dateiname.empty()) return;
    if (beginn_ == 0) {
        beginn_ = jetzt;
        letzterErfolg_ = jetzt;
    }
    letzterFehler_ = jetzt;
    systemfehler_ = systemfehler;
    gescheitert_.try_emplace({titel.Dateiname, kursart}, false);
    offen_.Oeffne(titel.Dateiname, MitZusatz(ursache::SpeichernFehlgeschlagen, Kursartzusatz(kursart)), jetzt);
}

void Dateiluecken::Beschaedigt(const clTitelobjekt& titel, std::int32_t kursart, Datum jetzt) {
    if (titel.Dateiname.empty()) return;
    gescheitert_.insert_or_assign({titel.Dateiname, kursart}, true);
    offen_.Oeffne(titel.Dateiname, MitZusatz(ursache::DateiBeschaedigt, Kursartzusatz(kursart)), jetzt);
}

void Dateiluecken::WiederGespeichert(const clTitelobjekt& titel, std::int32_t kursart, Datum jetzt) {
    letzterErfolg_ = jetzt;
    gescheitert_.erase({titel.Dateiname, kursart});
    for (const auto grund : {ursache::DateiBeschaedigt, ursache::SpeichernFehlgeschlagen})
        offen_.Schliesse(titel.Dateiname, MitZusatz(grund, Kursartzusatz(kursart)), jetzt);
}

void Dateiluecken::AnderesGespeichert(Datum jetzt) {
    letzterErfolg_ = jetzt;
}

Datum Dateiluecken::GespeichertBis(Datum zeit) const {
    return beginn_ == 0 ? zeit : std::min(zeit, letzterErfolg_);
}

void Dateiluecken::Pruefe(Datum jetzt) {
    const auto beschaedigte =
        static_cast<std::size_t>(std::ranges::count_if(gescheitert_, [](const auto& e) { return e.second; }));
    const std::size_t gescheiterte = gescheitert_.size() - beschaedigte;
    if (beschaedigte > beschaedigteGemeldet_)
        Melde(Dateizahl(beschaedigte) +
              (beschaedigte == 1 ? " ist beschädigt und nimmt" : " sind beschädigt und nehmen") +
              " keine Kurse mehr auf. Welche, sagt „zek check“.");
    beschaedigteGemeldet_ = beschaedigte;
    if (beginn_ == 0) return;
    hoechstens_ = std::max(hoechstens_, gescheiterte);
    if (!gemeldet_ && gescheiterte > 0 && SekundenZwischen(beginn_, jetzt) >= Sammelzeit) MeldeAusfall();
    const bool ruhig = letzterErfolg_ > letzterFehler_ && SekundenZwischen(letzterFehler_, jetzt) >= Ruhezeit;
    if (gescheiterte == 0 || ruhig) MeldeEnde(jetzt);
}

void Dateiluecken::MeldeAusfall() {
    gemeldet_ = true;
    const std::string grund = SystemText(systemfehler_);
    Melde("Das Speichern schlägt fehl: " + Dateizahl(hoechstens_) + (hoechstens_ == 1 ? " nimmt" : " nehmen") +
          " keine Kurse auf" + (grund.empty() ? "" : " (" + grund + ")") + ". Diese Kurse gehen verloren!");
}

void Dateiluecken::MeldeEnde(Datum jetzt) {
    if (gemeldet_)
        Melde("Das Speichern gelingt wieder (zuvor " + Dateizahl(hoechstens_) + ", seit " + NurZeittext(beginn_) +
              (GanzerTag(beginn_) == GanzerTag(jetzt) ? "" : " am " + NurDatumtext(beginn_)) + ").");
    beginn_ = 0;
    hoechstens_ = 0;
    gemeldet_ = false;
}

}  // namespace zek
