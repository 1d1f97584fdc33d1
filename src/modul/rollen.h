// The roles that the engine needs from its face and its session. Each is narrow on purpose: a class takes the roles it
// uses by reference, and its test double is a few lines.
#pragma once

#include "platform/uhr.h"
#include "titles/titelobjekt.h"

#include <cstdint>
#include <functional>
#include <initializer_list>
#include <string>
#include <string_view>

namespace zek {

// One entry in status list and log file. Never fails.
class Statusausgabe {
public:
    virtual ~Statusausgabe() = default;
    virtual void Statusmeldung(std::string_view text, bool fett = false) = 0;
};

// The program's own settings, by section and key, wherever they are stored. A value that can't be stored is lost
// quietly.
class Einstellungszugang {
public:
    struct Wert {
        std::string_view Schluessel;
        std::string Text;
    };

    virtual ~Einstellungszugang() = default;
    virtual std::string Lies(std::string_view abschnitt, std::string_view schluessel, std::string_view vorgabe) = 0;
    // All in one write.
    virtual void Schreibe(std::string_view abschnitt, std::initializer_list<Wert> werte) = 0;
    // Without a wait for the disk: for what is written while ticks come in.
    virtual void SchreibeMarke(std::string_view abschnitt, std::string_view schluessel, std::string_view wert) = 0;
    // An order to this instance, "0" when there is none. Always from the per-user store.
    virtual std::string LiesKommando(std::string_view schluessel) = 0;
};

// Button sets of ZeigeMeldung (bits 0 to 3 of its flags), default button bits, and results.
namespace meldung {
inline constexpr int Ok = 0, OkAbbrechen = 1, AbbrechenWiederholenIgnorieren = 2, JaNeinAbbrechen = 3, JaNein = 4,
                     WiederholenAbbrechen = 5;
inline constexpr int Knopfsatzmaske = 15;
inline constexpr int ZweiterKnopf = 0x100, DritterKnopf = 0x200;
inline constexpr int Zeitablauf = 0, AntwortOk = 1, AntwortAbbrechen = 2, AntwortAbbruch = 3, AntwortWiederholen = 4,
                     AntwortIgnorieren = 5, AntwortJa = 6, AntwortNein = 7;
}  // namespace meldung

// The one funnel of every message and question.
class Meldungen {
public:
    virtual ~Meldungen() = default;
    // `sekunden` of 1 or more closes the message by itself with the result 0; 0 or less never does.
    // Blocks its caller while events go on.
    virtual int ZeigeMeldung(const std::string& text, int flags, int sekunden) = 0;
};

// The offline warning and what goes with it.
class Offlineanzeige {
public:
    virtual ~Offlineanzeige() = default;
    virtual bool OfflinewarnungSichtbar() const = 0;
    // Sets the text, shows the warning and brings it to the top.
    virtual void ZeigeOfflinewarnung(const std::string& text) = 0;
    // Shows it with the text that it holds at that moment.
    virtual void ZeigeOfflinewarnung() = 0;
    virtual void VerbergeOfflinewarnung() = 0;
    // Window state normal, activated, on top of the others.
    virtual void FensterNachVorn() = 0;
    virtual void Ton() = 0;
};

// The live monitor; does nothing while it is closed.
class Monitorausgabe {
public:
    virtual ~Monitorausgabe() = default;
    // `verworfen`: the tick was seen and isn't kept.
    virtual void Protokolleintrag(const clTitelobjekt& titel, std::int32_t kursart, float kurs, float volume,
                                  bool verworfen) = 0;
};

// Takes one record of a title into its data file. Never throws: it reports its own failures, and the record is lost.
class Datensatzablage {
public:
    virtual ~Datensatzablage() = default;
    // `kontodaten`: the record belongs into the folder of account data. For kursart::BAVolume `volume` is replaced by
    // the signed volume. `jetzt`: the present time, as read when the event came in; a reading of the clock costs a tick
    // some percent of its whole road, so each event reads it once and hands it down.
    virtual void DatensatzAnhaengen(clTitelobjekt& titel, std::int32_t kursart, float kurs, float volume,
                                    bool kontodaten, Zeitpunkt jetzt) noexcept = 0;
};

// Told of records that don't reach their file. A record that does costs nothing as long as every file takes its own.
class Ablagewache {
public:
    virtual ~Ablagewache() = default;
    // Comes for each record that is lost. `systemfehler`: errno, or 0 when there is none.
    virtual void SpeichernGescheitert(const clTitelobjekt& titel, std::int32_t kursart, int systemfehler) = 0;
    // The same for a file that is left alone because it is torn.
    virtual void DateiBeschaedigt(const clTitelobjekt& titel, std::int32_t kursart) = 0;
    // The first record that a file takes behind lost ones.
    virtual void WiederGespeichert(const clTitelobjekt& titel, std::int32_t kursart) = 0;
    // While some file takes none: another one has taken a record.
    virtual void AnderesGespeichert() = 0;
};

// Told of what makes the stream stop and go on, at the moment it happens.
class Stromwache {
public:
    virtual ~Stromwache() = default;
    virtual void VerbindungWeg() = 0;
    virtual void TwsIstOffline() = 0;
    // `datenErhalten`: the streams go on; otherwise they stay dead until they are asked for again.
    virtual void TwsIstWiederDa(bool datenErhalten) = 0;
    // A message of the session, not of a title; any code.
    virtual void Meldung(int code, std::string_view text) = 0;
    // A message with the title's number; any code.
    virtual void TitelMeldung(const clTitelobjekt& titel, int code) = 0;
    // While the connection stands only.
    virtual void Abonniert(const clTitelobjekt& titel) = 0;
    virtual void Abbestellt(const clTitelobjekt& titel) = 0;
    // The trading hours of a title for the days to come, and the time zone they stand in, as the broker words them.
    virtual void Boersenstunden(const clTitelobjekt& titel, std::string_view zone, std::string_view stunden) = 0;
};

// What the start shows, until the working view.
class Startanzeige {
public:
    virtual ~Startanzeige() = default;
    virtual void Startinfo(const std::string& text) = 0;
    virtual void FortschrittMaximum(int maximum) = 0;
    virtual void FortschrittWert(int wert) = 0;
    virtual void Sanduhr(bool an) = 0;
};

// The progress window of a backfill run.
class Datenpflegeanzeige {
public:
    virtual ~Datenpflegeanzeige() = default;
    virtual void Titellabel(const std::string& text) = 0;
    virtual void AktuelleTitelLabel(const std::string& text) = 0;
    virtual void Datumlabel(const std::string& text, bool rot) = 0;
    virtual void Statuslabel(const std::string& text, bool rot) = 0;
    virtual void Kursartlabel(const std::string& text) = 0;
    virtual void FortschrittMaximum(int maximum) = 0;
    virtual void FortschrittWert(int wert) = 0;
    // Share of the whole run that is done, 0 to 1, and the seconds still to go (below 0: not known yet).
    virtual void Gesamtfortschritt(double anteil, double restSekunden) = 0;
    virtual void AbbruchMoeglich(bool moeglich) = 0;
    // What a click on btnAbbruch, or the closing of the window, calls.
    virtual void BeiAbbruch(std::function<void()> beiKlick) = 0;
};

// Shows nothing: where nobody looks, and in place of a window that is gone while the run is still on the stack.
class StummeDatenpflegeanzeige : public Datenpflegeanzeige {
public:
    void Titellabel(const std::string&) override {}
    void AktuelleTitelLabel(const std::string&) override {}
    void Datumlabel(const std::string&, bool) override {}
    void Statuslabel(const std::string&, bool) override {}
    void Kursartlabel(const std::string&) override {}
    void FortschrittMaximum(int) override {}
    void FortschrittWert(int) override {}
    void Gesamtfortschritt(double, double) override {}
    void AbbruchMoeglich(bool) override {}
    void BeiAbbruch(std::function<void()>) override {}
};

}  // namespace zek
