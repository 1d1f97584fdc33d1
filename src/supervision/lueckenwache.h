// The watch over gaps: knows at every moment whether the recorder is blind, and writes what it knows into the evidence
// of gaps. It is told of events at the moment they happen; what has no event (no ticks, a pause, a clock that jumps) it
// sees itself, once a second. A quiet second touches no file.
#pragma once

#include "backfill/lauf.h"
#include "luecken/lueckenbuch.h"
#include "modul/ibmodul.h"
#include "modul/rollen.h"
#include "platform/dateisystem.h"
#include "platform/uhr.h"

#include <array>
#include <chrono>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>

namespace zek {

class Lueckenwache final : public Ablagewache, public Stromwache {
public:
    // Its own timer, since a round can last as long as the backfill that it has started.
    static constexpr std::chrono::milliseconds Intervall{1000};
    // A second that took longer than this was a jump of the clock, or the process stood still.
    static constexpr double SprungSekunden = 10;
    // Shorter interruptions of one title aren't worth a line.
    static constexpr double BagatelleSekunden = 0.02;
    // Titles that are subscribed this soon behind each other belong to one pass.
    static constexpr double DurchgangSekunden = 2;

    Lueckenwache(IBModul& modul, Dateisystem& dateien, const Uhr& uhr);

    // The program starts, and isn't connected. `letztesEnde`: when data last arrived in an earlier run, 0 unknown. From
    // here on events count; nothing goes to the disk yet.
    void Beginne(Datum letztesEnde);
    // The titles are in the list, and those that are active were subscribed if the connection stands. Writes what has
    // come about since the start. The end of an earlier run that crashed is taken from its last records.
    void TitelGeladen();
    // Once a second.
    void Durchlauf();
    // The program ends in order. Nothing counts any more but results of a backfill that is still on the stack.
    void Beende();

    // ---- events
    void VerbindungWeg() override;
    void TwsIstOffline() override;
    void TwsIstWiederDa(bool datenErhalten) override;
    void TitelMeldung(const clTitelobjekt& titel, int code) override;
    void Abonniert(const clTitelobjekt& titel) override;
    void Abbestellt(const clTitelobjekt& titel) override;
    void Meldung(int code, std::string_view text) override;
    void SpeichernGescheitert(const clTitelobjekt& titel, std::int32_t kursart, int systemfehler) override;
    void DateiBeschaedigt(const clTitelobjekt& titel, std::int32_t kursart) override;
    void WiederGespeichert(const clTitelobjekt& titel, std::int32_t kursart) override;
    void AnderesGespeichert() override;
    // A merge is about to change the title's file between these times. Its end, however it came about, takes the mark
    // away; one that stays open tells that the program died in the merge.
    void BeimEinarbeitenBegonnen(const clTitelobjekt& titel, std::int32_t kursart, Datum von, Datum bis);
    void BeimEinarbeitenBeendet(const clTitelobjekt& titel, std::int32_t kursart);
    void DatenpflegeErgebnis(const Datenpflegeergebnis& ergebnis);
    void BeimEinarbeitenVerloren(const clTitelobjekt& titel, std::int32_t kursart, Datum von, Datum bis);

    // True while a gap of this cause is open for the title ("*" for all).
    bool IstBlind(std::string_view titel, std::string_view grund) const;
    // Lines that wait because they couldn't be written.
    std::size_t Wartend() const { return buch_.Wartend(); }

private:
    using Tickstand = std::array<double, 6>;
    struct Ablehnung {
        std::string Name;
        std::string Ursache;
        Tickstand Stand;
    };
    struct Titelstand {
        std::string Name;
        bool Aktiv = false;
    };

    void UebernimmFrueheres(Datum letztesEnde);
    Datum LetzterSatz(const clTitelobjekt& titel, std::int32_t kursart);
    void SchreibeAbsturz();

    void PruefeUhr(Datum jetzt);
    void SchliesseOffline(Datum bis);
    void PruefeOffline();
    void PruefeKurse(Datum jetzt);
    void PruefePause(Datum jetzt);
    bool PauseFuer(const std::string& name, bool aktiv, Datum jetzt);
    void PruefeTitel(Datum jetzt);
    void TitelWechselt(std::int32_t id, Titelstand& stand, bool aktiv, Datum jetzt);
    void EntferneVerschwundene(Datum jetzt);
    void PruefeAblehnungen(Datum jetzt);
    Datum ErsterTick(const Tickstand& vorher, const Tickstand& nachher, Datum jetzt) const;
    bool StromSteht() const;
    Datum StromendeSpaetestens(Datum jetzt) const;
    void SchliesseAblehnung(std::int32_t id, Datum bis);
    void SchliesseAbbestellte(Datum bis);

    void Oeffne(const std::string& titel, std::string_view grund, Datum von);
    void Schliesse(const std::string& titel, std::string_view grund, Datum bis);
    void Schreibe(Datum von, Datum bis, std::string titel, std::string grund, std::string text = {});

    IBModul& modul_;
    Dateisystem& dateien_;
    const Uhr& uhr_;
    Lueckenbuch buch_;
    bool laeuft_ = false;
    bool titelGeladen_ = false;
    Datum start_ = 0;
    Datum absturzAb_ = 0;                                         // last sign of life of a run that crashed; 0 for none
    std::map<std::pair<std::string, std::string>, Datum> offen_;  // beginning by title and cause
    std::map<std::pair<std::string, std::string>, std::pair<Datum, Datum>> geschlossen_;  // the last closed ones

    std::unordered_map<std::int32_t, Datum> abonniert_;                           // since when, in this session
    std::unordered_map<std::int32_t, std::pair<std::string, Datum>> abbestellt_;  // cancelled, not yet asked for again
    Datum durchgangBeginn_ = 0;                                                   // of a pass of subscriptions
    Datum durchgangLetzte_ = 0;
    Datum offlineSeit_ = 0;
    bool getrennt_ = false;  // the TWS is offline
    bool datenWeg_ = false;  // it came back without streams, and they haven't been asked for since
    std::map<std::int32_t, Ablehnung> abgelehnt_;
    std::unordered_map<std::int32_t, Titelstand> titel_;
    std::map<std::pair<std::string, std::int32_t>, Lueckenzeile> einarbeitungen_;  // that go on, by title and kind
    std::size_t aktive_ = 0;

    Datum letzterDurchlauf_ = 0;
    bool pausiert_ = false;
    Datum ruheBis_ = 0;  // until then a lack of ticks means nothing
    std::uint32_t durchlaeufe_ = 0;
    clTitelobjekt pausenprobe_;  // takes part in the recording pause
};

}  // namespace zek
