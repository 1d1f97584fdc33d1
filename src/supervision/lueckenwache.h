// The watch over gaps: knows at every moment whether the recorder is blind, and writes what it knows into the evidence
// of gaps. It is told of events at the moment they happen; what has no event (no ticks, a pause, a clock that jumps) it
// sees itself, once a second. A quiet second touches no file.
//
//   offeneluecken   what is open, and the way into the book
//   stromluecken    by the connection          titelluecken   by a title          farmluecken    by a data farm
//   uhrluecken      by the clock               pausenluecken  by the pause        dateiluecken   by a file
//   handelsluecken by the market's hours
//   pflegeluecken   what backfills did to them
//   vorleben        what an earlier run has left
//   lebenszeichengeber   brings data to the disk, and says until when all is well
#pragma once

#include "luecken/verdichtung.h"
#include "modul/ibmodul.h"
#include "modul/rollen.h"
#include "platform/dateisystem.h"
#include "platform/uhr.h"
#include "supervision/dateiluecken.h"
#include "supervision/farmluecken.h"
#include "supervision/handelsluecken.h"
#include "supervision/lebenszeichengeber.h"
#include "supervision/offeneluecken.h"
#include "supervision/pausenluecken.h"
#include "supervision/pflegeluecken.h"
#include "supervision/stromluecken.h"
#include "supervision/titelluecken.h"
#include "supervision/uhrluecken.h"
#include "supervision/vorleben.h"

#include <chrono>
#include <cstdint>
#include <string_view>

namespace zek {

class Lueckenwache final : public Ablagewache, public Stromwache {
public:
    // Its own timer, since a round can last as long as the backfill that it has started.
    static constexpr std::chrono::milliseconds Intervall{1000};

    // `tickuhr` is told when it is to wait for a first tick.
    Lueckenwache(const IBModul& modul, Tickuhr& tickuhr, Dateisystem& dateien, const Uhr& uhr, Statusausgabe& status);
    Lueckenwache(const Lueckenwache&) = delete;
    Lueckenwache& operator=(const Lueckenwache&) = delete;

    // The program starts, and isn't connected. `letztesEnde`: when data last arrived in an earlier run. From
    // here on events count; nothing goes to the disk yet.
    void Beginne(std::optional<Zeitpunkt> letztesEnde);
    // The earlier run died, or left no word. Known behind Beginne.
    bool EndeOhneOrdnung() const { return vorleben_.OhneOrdnung(); }
    // What the start has found in a data file, in German words.
    void DateiGeprueft(const std::string& dateiname, std::int32_t kursart, const std::string& text);
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
    void Meldung(int code, std::string_view text) override;
    void TitelMeldung(const clTitelobjekt& titel, int code) override;
    void Abonniert(const clTitelobjekt& titel) override;
    void Abbestellt(const clTitelobjekt& titel) override;
    void Boersenstunden(const clTitelobjekt& titel, std::string_view zone, std::string_view stunden) override;
    void SpeichernGescheitert(const clTitelobjekt& titel, std::int32_t kursart, int systemfehler) override;
    void DateiBeschaedigt(const clTitelobjekt& titel, std::int32_t kursart) override;
    void WiederGespeichert(const clTitelobjekt& titel, std::int32_t kursart) override;
    void AnderesGespeichert() override;
    // A merge is about to change the title's file between these times. Its end, however it came about, takes the mark
    // away; one that stays open tells that the program died in the merge.
    void BeimEinarbeitenBegonnen(const clTitelobjekt& titel, std::int32_t kursart, Zeitpunkt von, Zeitpunkt bis);
    void BeimEinarbeitenBeendet(const clTitelobjekt& titel, std::int32_t kursart);
    // The merge takes the records of the span and brings none, by the volume filter.
    void BeimLeeren(const clTitelobjekt& titel, std::int32_t kursart, Zeitpunkt von, Zeitpunkt bis);
    void DatenpflegeErgebnis(const Datenpflegeergebnis& ergebnis);

    // How far what came until `zeit` has reached files: not beyond the last record that any file took, while some fail.
    Zeitpunkt GespeichertBis(Zeitpunkt zeit) const { return dateiluecken_.GespeichertBis(zeit); }
    // True while a gap of this cause is open for the title ("*" for all).
    bool IstBlind(std::string_view titel, std::string_view grund) const { return offen_.IstOffen(titel, grund); }
    // Lines that couldn't be written anywhere yet.
    std::size_t Wartend() const { return buch_.Wartend(); }

private:
    void PflegeBuch(Zeitpunkt jetzt);
    void VerdichteBuch(Zeitpunkt jetzt);

    const IBModul& modul_;
    Dateisystem& dateien_;
    const Uhr& uhr_;
    Lueckenbuch buch_;
    OffeneLuecken offen_;
    Vorleben vorleben_;
    Stromluecken strom_;
    Titelluecken titel_;
    Farmluecken farm_;
    Uhrluecken uhrluecken_;
    Pausenluecken pause_;
    Handelsluecken handel_;
    Dateiluecken dateiluecken_;
    Pflegeluecken pflege_;
    Lebenszeichengeber lebenszeichen_;
    Buchverdichtung verdichtung_;
    bool laeuft_ = false;
    bool titelGeladen_ = false;
    Zeitpunkt start_{};
    std::uint32_t durchlaeufe_ = 0;
    Kalendertag standVom_{};      // of the last checkpoint
    std::uint64_t standBei_ = 0;  // bytes of the book at it
    bool verdichten_ = false;     // months of the past may be put together
};

}  // namespace zek
