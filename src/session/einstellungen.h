// Settings: every one is a text under application name, section and key, in the per-user store ("registry") or, on
// the user's choice, in the local profile file "ZEK_IB_Para.ini" beside the program. Numbers are decimal text with
// "." as the decimal sign, booleans "1" and "0", dates and times the German text form of a date.
#pragma once

#include "modul/einstellungstabelle.h"
#include "modul/ibmodul.h"
#include "modul/rollen.h"
#include "platform/pumpe.h"
#include "platform/speicher.h"
#include "session/gesicht.h"
#include "session/schreibschlange.h"

#include <functional>
#include <string>
#include <string_view>

namespace zek {

// Name of the local file, in the program folder.
inline constexpr std::string_view LokaleEinstellungsdatei = "ZEK_IB_Para.ini";

class Einstellungsspeicher final : public Einstellungszugang {
public:
    // All of them must outlive the object. `felder`: the plain fields.
    Einstellungsspeicher(zek::Einstellungen& felder, const Ordner& ordner, Nutzerspeicher& registry,
                         Profildatei& lokaleDatei);

    // The local file is used when `immerDatei` is set, or when LokalSettings is on and `immerRegistry` isn't set.
    // "wahr" and "falsch" come back as "True" and "False". The local file knows no application names.
    std::string LeseEinstellung(std::string_view anwendung, std::string_view abschnitt, std::string_view schluessel,
                                std::string_view vorgabe, bool immerRegistry = false, bool immerDatei = false);
    // Always true; a value that can't be stored is lost quietly. Never waits: what another instance's write keeps from
    // the store is already read from here, and is written as soon as it can be.
    bool SchreibeEinstellung(std::string_view anwendung, std::string_view abschnitt, std::string_view schluessel,
                             std::string_view wert, bool immerRegistry = false, bool immerDatei = false);
    // The same under the program's title, without a wait for the disk: for a mark that is written over and over while
    // ticks come in.
    void SchreibeMarke(std::string_view abschnitt, std::string_view schluessel, std::string_view wert) override;

    // The program's own settings, as the rooms below see them.
    std::string Lies(std::string_view abschnitt, std::string_view schluessel, std::string_view vorgabe) override;
    void Schreibe(std::string_view abschnitt, std::initializer_list<Wert> werte) override;
    std::string LiesKommando(std::string_view schluessel) override;

    // Past the choice of the store, straight to the per-user store: commands, program path, data folder, sample
    // titles. The same for all instances of one user. Writes as SchreibeWartendes results.
    std::string LeseRegistry(std::string_view anwendung, std::string_view abschnitt, std::string_view schluessel,
                             std::string_view vorgabe);
    int SchreibeRegistry(std::string_view anwendung, std::string_view abschnitt, std::string_view schluessel,
                         std::string_view wert);
    int LoescheRegistry(std::string_view anwendung, std::string_view abschnitt, std::string_view schluessel);

    // Tries again what waits. 0 when nothing waits any more, -EBUSY while something does, else the negative errno value
    // of what is lost.
    int SchreibeWartendes() { return schlange_.Schreibe(); }
    // The same until nothing waits, for at most two seconds, with events running.
    int WarteBisGeschrieben(Pumpe& pumpe);

    // While one lives changes are gathered; at its end each file is written once.
    class Buendel {
    public:
        explicit Buendel(Einstellungsspeicher& speicher) : buendel_(speicher.schlange_) {}

    private:
        Schreibschlange::Buendel buendel_;
    };

    bool LokalSettings = false;  // the settings lie in the local file
    // "LokalSettings" of the local file into the flag.
    void LeseLokalSettings();
    // All main settings into the fields, bounded and checked. `meldungen` gets the one of a bad restart time.
    void LeseAlleEinstellungen(Meldungen& meldungen);
    // Address, port and client id alone.
    void LeseVerbindung();
    // The fields into the store that is in use, in one write.
    void SpeichereEinstellungen();

    // Address, port and client id, as a person has set them, into the fields and into the store.
    void UebernehmeVerbindung(const Verbindungsangaben& angaben);

    // Command 1041. `markeSetzen` moves the check mark of the command. Returns where LokalSettings ended.
    bool LokalSpeichernUmschalten(Meldungen& meldungen, const std::function<void(bool)>& markeSetzen);

private:
    bool InDatei(bool immerRegistry, bool immerDatei) const;
    std::string LiesAusDatei(std::string_view abschnitt, std::string_view schluessel, std::string_view vorgabe);
    void LeseZeile(const Einstellungszeile& zeile, Meldungen* meldungen);
    void SpeichereZeile(const Einstellungszeile& zeile);
    int Schreibe(const Schreibschlange::Ziel& ziel, Speicheraenderung aenderung, Haltbarkeit haltbarkeit);
    bool LokalEinschalten(Meldungen& meldungen);
    bool LokalAusschalten(Meldungen& meldungen);

    Einstellungen& felder_;
    const Ordner& ordner_;
    Nutzerspeicher& registry_;
    Profildatei& lokaleDatei_;
    Schreibschlange schlange_;
};

}  // namespace zek
