// Settings: every one is a text under application name, section and key, in the per-user store ("registry") or, on
// the user's choice, in the local profile file "ZEK_IB_Para.ini" beside the program. Numbers are decimal text with
// "." as the decimal sign, booleans "1" and "0", dates and times the German text form of a date.
#pragma once

#include "modul/ibmodul.h"
#include "modul/rollen.h"
#include "platform/speicher.h"
#include "session/gesicht.h"

#include <functional>
#include <string>
#include <string_view>

namespace zek {

// Name of the local file, in the program folder.
inline constexpr std::string_view LokaleEinstellungsdatei = "ZEK_IB_Para.ini";

// Sections of the settings.
namespace abschnitt {
inline constexpr std::string_view Optionen = "Optionen", UmsatzFilter = "UmsatzFilter", IBConnect = "IBConnect",
                                  Datenpflege = "Datenpflege", Hauptfenster = "Hauptfenster", Kommando = "Kommando",
                                  Programm = "Programm", ZEKStart = "ZEKStart";
}  // namespace abschnitt

// A setting as a boolean: its numeric value isn't 0. "True" is not a number and counts as false.
bool EinstellungWahr(std::string_view text);
// A setting as a whole number, bounded to 32 bits.
int EinstellungGanzzahl(std::string_view text);
// The folder of account data with its separator. A text of one character gets one too, and counts as none all the same
// (Kontodatenordner of the data files).
std::string Kontoordner(std::string ordner);

class Einstellungsspeicher {
public:
    // All of them must outlive the object. `modul` holds LokalSettings and the plain fields.
    Einstellungsspeicher(IBModul& modul, Nutzerspeicher& registry, Profildatei& lokaleDatei);

    // The local file is used when `immerDatei` is set, or when LokalSettings is on and `immerRegistry` isn't set.
    // "wahr" and "falsch" come back as "True" and "False". The local file knows no application names.
    std::string LeseEinstellung(std::string_view anwendung, std::string_view abschnitt, std::string_view schluessel,
                                std::string_view vorgabe, bool immerRegistry = false, bool immerDatei = false);
    // Always true; a value that can't be stored is lost quietly.
    bool SchreibeEinstellung(std::string_view anwendung, std::string_view abschnitt, std::string_view schluessel,
                             std::string_view wert, bool immerRegistry = false, bool immerDatei = false);

    // Past the choice of the store, straight to the per-user store: commands, program path, data folder, sample
    // titles. The same for all instances of one user.
    std::string LeseRegistry(std::string_view anwendung, std::string_view abschnitt, std::string_view schluessel,
                             std::string_view vorgabe);
    void SchreibeRegistry(std::string_view anwendung, std::string_view abschnitt, std::string_view schluessel,
                          std::string_view wert);
    void LoescheRegistry(std::string_view anwendung, std::string_view abschnitt, std::string_view schluessel);

    // "LokalSettings" of the local file into the module's flag.
    void LeseLokalSettings();
    // All main settings into the module's fields, bounded and checked. `meldungen` gets the one of a bad restart time.
    void LeseAlleEinstellungen(Meldungen& meldungen);
    // The module's fields into the store that is in use.
    void SpeichereEinstellungen();

    // Address, port and client id, as a person has set them, into the module's fields and into the store.
    void UebernehmeVerbindung(const Verbindungsangaben& angaben);

    // Command 1041. `markeSetzen` moves the check mark of the command. Returns where LokalSettings ended.
    bool LokalSpeichernUmschalten(Meldungen& meldungen, const std::function<void(bool)>& markeSetzen);

private:
    bool InDatei(bool immerRegistry, bool immerDatei) const;
    std::string LiesAusDatei(std::string_view abschnitt, std::string_view schluessel, std::string_view vorgabe);
    std::string Lies(std::string_view abschnitt, std::string_view schluessel, std::string_view vorgabe);
    void Schreib(std::string_view abschnitt, std::string_view schluessel, std::string_view wert);
    bool LokalEinschalten(Meldungen& meldungen);
    bool LokalAusschalten(Meldungen& meldungen);

    IBModul& modul_;
    Nutzerspeicher& registry_;
    Profildatei& lokaleDatei_;
};

}  // namespace zek
