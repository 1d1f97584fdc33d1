#include "backfill/wahl.h"

#include "platform/text.h"

#include <cmath>

namespace zek {
namespace {

constexpr std::string_view Abschnitt = "Datenpflege";
constexpr int FeldBezahlt = 1, FeldGeldBrief = 2, FeldRTH = 4;
constexpr double HoechstesAlterTage = 1825;
constexpr double WarnalterTage = 7;

// Day fractions are stored with the decimal comma; a point is understood as well.
double LiesBruchteil(const std::string& text) {
    if (text.find(',') == std::string::npos) return Zahlwert(text);
    return ZahlAusDeutsch(text).value_or(0);
}

}  // namespace

Datenpflegewahl LiesDatenpflegewahl(Einstellungszugang& ablage, Datum jetzt) {
    const auto lies = [&](std::string_view schluessel, std::string_view vorgabe) {
        return ablage.Lies(Abschnitt, schluessel, vorgabe);
    };
    Datenpflegewahl wahl;
    const double uhrzeit = LiesBruchteil(lies("IBUhrzeit", "0"));
    wahl.Start = GanzerTag(jetzt - Zahlwert(lies("IBStartTage", "0"))) + Tagesbruchteil(uhrzeit);
    wahl.AktualBisAktuell = Zahlwert(lies("IBAktualBisAktuell", "1")) != 0;
    wahl.Ende = jetzt;
    if (wahl.AktualBisAktuell) wahl.Ende = DatumAusText(lies("IBEndDatum", "")).value_or(jetzt);
    const int felder = static_cast<int>(Ganzzahl(lies("IBFelder", "1")).value_or(FeldBezahlt) & 7);
    wahl.Bezahlt = (felder & FeldBezahlt) != 0;
    wahl.GeldBrief = (felder & FeldGeldBrief) != 0;
    wahl.UseRTH = (felder & FeldRTH) != 0;
    return wahl;
}

void SpeichereDatenpflegewahl(Einstellungszugang& ablage, const Datenpflegewahl& wahl, Datum jetzt) {
    const int felder =
        (wahl.Bezahlt ? FeldBezahlt : 0) + (wahl.GeldBrief ? FeldGeldBrief : 0) + (wahl.UseRTH ? FeldRTH : 0);
    const Kalender start = Zerlege(wahl.Start);
    const double uhrzeit = Uhrzeit(start.Stunde, start.Minute, start.Sekunde);
    ablage.Schreibe(Abschnitt, {{"IBStartTage", std::to_string(GanzeTage(wahl.Start, jetzt))},
                                {"IBUhrzeit", Zahltext(uhrzeit)},
                                {"IBEndDatum", Datumtext(wahl.Ende)},
                                {"IBAktualBisAktuell", wahl.AktualBisAktuell ? "1" : "0"},
                                {"IBFelder", std::to_string(felder)}});
}

std::optional<Beanstandung> NaechsteBeanstandung(const Datenpflegewahl& wahl, Datum jetzt,
                                                 bool langerZeitraumBestaetigt) {
    const Datum heute = GanzerTag(jetzt);
    if (GanzeSekunden(wahl.Start, jetzt) <= 0)
        return Beanstandung{
            "Ungültiges Startdatum/Zeit! Geben Sie bitte ein Datum/Uhrzeit an, das in der Vergangenheit liegt."};
    if (!wahl.AktualBisAktuell && GanzeSekunden(wahl.Start, wahl.Ende) <= 0)
        return Beanstandung{
            "Die 'Bis'-Einstellung des Zeitraums für die Aktualisierung ist nicht korrekt (muss nach dem "
            "Startzeitpunkt liegen)."};
    if (wahl.Start < heute - HoechstesAlterTage)
        return Beanstandung{"Ungültiges Startdatum/Zeit! Das Startdatum darf höchstens 5 Jahre zurück liegen."};
    if (wahl.Start < heute - WarnalterTage && !langerZeitraumBestaetigt)
        return Beanstandung{
            "Sie starten hiermit einer Datenpflege über mehr als sieben Tage. Beachten Sie, dass die Datenpflege über "
            "einen solchen Zeitraum lange Zeit dauert und dass es vom IB-Server abhängt, ab welchem Zeitpunkt Daten "
            "geliefert werden.",
            true};
    if (!wahl.Bezahlt && !wahl.GeldBrief)
        return Beanstandung{"Wählen Sie bitte mindestens einen Kurstyp für die Datenpflege aus."};
    return std::nullopt;
}

bool WahlBestaetigt(const Datenpflegewahl& wahl, Datum jetzt, Meldungen& meldungen) {
    bool bestaetigt = false;
    while (const auto beanstandung = NaechsteBeanstandung(wahl, jetzt, bestaetigt)) {
        const int flags = beanstandung->IstRueckfrage ? meldung::OkAbbrechen : meldung::Ok;
        const int antwort = meldungen.ZeigeMeldung(beanstandung->Text, flags, 0);
        if (!beanstandung->IstRueckfrage || antwort == meldung::AntwortAbbrechen) return false;
        bestaetigt = true;
    }
    return true;
}

}  // namespace zek
