#include "backfill/wahl.h"

#include "platform/datum.h"
#include "platform/text.h"

namespace zek {
namespace {

constexpr std::string_view Abschnitt = "Datenpflege";
constexpr int FeldBezahlt = 1, FeldGeldBrief = 2, FeldRTH = 4;
using std::chrono::days;
using std::chrono::seconds;

constexpr days FruehesterBeginn(1825);
constexpr days Warnalter(7);

// Day fractions are stored with the decimal comma; a point is understood as well.
double LiesBruchteil(const std::string& text) {
    if (text.find(',') == std::string::npos) return Zahlwert(text);
    return ZahlAusDeutsch(text).value_or(0);
}

}  // namespace

Datenpflegewahl LiesDatenpflegewahl(Einstellungszugang& ablage, Zeitpunkt jetzt) {
    const auto lies = [&](std::string_view schluessel, std::string_view vorgabe) {
        return ablage.Lies(Abschnitt, schluessel, vorgabe);
    };
    Datenpflegewahl wahl;
    const Tageszeit uhrzeit(ZeitpunktAus(LiesBruchteil(lies("IBUhrzeit", "0"))));
    wahl.Start = TagVon(jetzt - DauerAusTagen(Zahlwert(lies("IBStartTage", "0")))) + uhrzeit;
    wahl.AktualBisAktuell = Zahlwert(lies("IBAktualBisAktuell", "1")) != 0;
    wahl.Ende = jetzt;
    if (wahl.AktualBisAktuell) wahl.Ende = ZeitpunktAusText(lies("IBEndDatum", "")).value_or(jetzt);
    const int felder = static_cast<int>(Ganzzahl(lies("IBFelder", "1")).value_or(FeldBezahlt) & 7);
    wahl.Bezahlt = (felder & FeldBezahlt) != 0;
    wahl.GeldBrief = (felder & FeldGeldBrief) != 0;
    wahl.UseRTH = (felder & FeldRTH) != 0;
    return wahl;
}

void SpeichereDatenpflegewahl(Einstellungszugang& ablage, const Datenpflegewahl& wahl, Zeitpunkt jetzt) {
    const int felder =
        (wahl.Bezahlt ? FeldBezahlt : 0) + (wahl.GeldBrief ? FeldGeldBrief : 0) + (wahl.UseRTH ? FeldRTH : 0);
    const Dauer uhrzeit = std::chrono::floor<seconds>(wahl.Start) - TagVon(wahl.Start);
    ablage.Schreibe(Abschnitt, {{"IBStartTage", std::to_string(Grenzen<days>(wahl.Start, jetzt).count())},
                                {"IBUhrzeit", Zahltext(AlsTage(uhrzeit))},
                                {"IBEndDatum", Datumtext(wahl.Ende)},
                                {"IBAktualBisAktuell", wahl.AktualBisAktuell ? "1" : "0"},
                                {"IBFelder", std::to_string(felder)}});
}

std::optional<Beanstandung> NaechsteBeanstandung(const Datenpflegewahl& wahl, Zeitpunkt jetzt,
                                                 bool langerZeitraumBestaetigt) {
    const Kalendertag heute = TagVon(jetzt);
    if (Grenzen<seconds>(wahl.Start, jetzt) <= 0s)
        return Beanstandung{
            "Ungültiges Startdatum/Zeit! Geben Sie bitte ein Datum/Uhrzeit an, das in der Vergangenheit liegt."};
    if (!wahl.AktualBisAktuell && Grenzen<seconds>(wahl.Start, wahl.Ende) <= 0s)
        return Beanstandung{
            "Die 'Bis'-Einstellung des Zeitraums für die Aktualisierung ist nicht korrekt (muss nach dem "
            "Startzeitpunkt liegen)."};
    if (wahl.Start < heute - FruehesterBeginn)
        return Beanstandung{"Ungültiges Startdatum/Zeit! Das Startdatum darf höchstens 5 Jahre zurück liegen."};
    if (wahl.Start < heute - Warnalter && !langerZeitraumBestaetigt)
        return Beanstandung{
            "Sie starten hiermit einer Datenpflege über mehr als sieben Tage. Beachten Sie, dass die Datenpflege über "
            "einen solchen Zeitraum lange Zeit dauert und dass es vom IB-Server abhängt, ab welchem Zeitpunkt Daten "
            "geliefert werden.",
            true};
    if (!wahl.Bezahlt && !wahl.GeldBrief)
        return Beanstandung{"Wählen Sie bitte mindestens einen Kurstyp für die Datenpflege aus."};
    return std::nullopt;
}

bool WahlBestaetigt(const Datenpflegewahl& wahl, Zeitpunkt jetzt, Meldungen& meldungen) {
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
