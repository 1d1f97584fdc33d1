#include "supervision/dateiluecken.h"

#include "platform/datum.h"
#include "platform/systemtext.h"

#include <algorithm>

namespace zek {

namespace {

// So long files are counted before the failure is told.
constexpr Dauer Sammelzeit = 2s;
// Saving works again when a file took a record and none failed for so long.
constexpr Dauer Ruhezeit = 60s;

std::string Dateizahl(std::size_t anzahl) {
    return anzahl == 1 ? "1 Datei" : std::to_string(anzahl) + " Dateien";
}

}  // namespace

void Dateiluecken::Gescheitert(const clTitelobjekt& titel, std::int32_t kursart, int systemfehler, Zeitpunkt jetzt) {
    if (titel.Dateiname.empty()) return;
    if (!beginn_) {
        beginn_ = jetzt;
        letzterErfolg_ = jetzt;
    }
    letzterFehler_ = jetzt;
    systemfehler_ = systemfehler;
    gescheitert_.try_emplace({titel.Dateiname, kursart}, false);
    offen_.Oeffne(titel.Dateiname, MitZusatz(ursache::SpeichernFehlgeschlagen, Kursartzusatz(kursart)), jetzt);
}

void Dateiluecken::Beschaedigt(const clTitelobjekt& titel, std::int32_t kursart, Zeitpunkt jetzt) {
    if (titel.Dateiname.empty()) return;
    gescheitert_.insert_or_assign({titel.Dateiname, kursart}, true);
    offen_.Oeffne(titel.Dateiname, MitZusatz(ursache::DateiBeschaedigt, Kursartzusatz(kursart)), jetzt);
}

void Dateiluecken::WiederGespeichert(const clTitelobjekt& titel, std::int32_t kursart, Zeitpunkt jetzt) {
    letzterErfolg_ = jetzt;
    gescheitert_.erase({titel.Dateiname, kursart});
    for (const auto grund : {ursache::DateiBeschaedigt, ursache::SpeichernFehlgeschlagen})
        offen_.Schliesse(titel.Dateiname, MitZusatz(grund, Kursartzusatz(kursart)), jetzt);
}

void Dateiluecken::AnderesGespeichert(Zeitpunkt jetzt) {
    letzterErfolg_ = jetzt;
}

Zeitpunkt Dateiluecken::GespeichertBis(Zeitpunkt zeit) const {
    return beginn_ ? std::min(zeit, letzterErfolg_) : zeit;
}

void Dateiluecken::Pruefe(Zeitpunkt jetzt) {
    const auto beschaedigte =
        static_cast<std::size_t>(std::ranges::count_if(gescheitert_, [](const auto& e) { return e.second; }));
    const std::size_t gescheiterte = gescheitert_.size() - beschaedigte;
    if (beschaedigte > beschaedigteGemeldet_)
        Melde(Dateizahl(beschaedigte) +
              (beschaedigte == 1 ? " ist beschädigt und nimmt" : " sind beschädigt und nehmen") +
              " keine Kurse mehr auf. Welche, sagt „zek check“.");
    beschaedigteGemeldet_ = beschaedigte;
    if (!beginn_) return;
    hoechstens_ = std::max(hoechstens_, gescheiterte);
    if (!gemeldet_ && gescheiterte > 0 && jetzt - *beginn_ >= Sammelzeit) MeldeAusfall();
    const bool ruhig = letzterErfolg_ > letzterFehler_ && jetzt - letzterFehler_ >= Ruhezeit;
    if (gescheiterte == 0 || ruhig) MeldeEnde(jetzt);
}

void Dateiluecken::MeldeAusfall() {
    gemeldet_ = true;
    const std::string grund = SystemText(systemfehler_);
    Melde("Das Speichern schlägt fehl: " + Dateizahl(hoechstens_) + (hoechstens_ == 1 ? " nimmt" : " nehmen") +
          " keine Kurse auf" + (grund.empty() ? "" : " (" + grund + ")") + ". Diese Kurse gehen verloren!");
}

void Dateiluecken::MeldeEnde(Zeitpunkt jetzt) {
    if (gemeldet_)
        Melde("Das Speichern gelingt wieder (zuvor " + Dateizahl(hoechstens_) + ", seit " + NurZeittext(*beginn_) +
              (TagVon(*beginn_) == TagVon(jetzt) ? "" : " am " + NurDatumtext(*beginn_)) + ").");
    beginn_.reset();
    hoechstens_ = 0;
    gemeldet_ = false;
}

}  // namespace zek
