// The log: one entry goes to the status list of the main window and to the text file "IBZEKLog.txt" in the program
// folder. The file is Windows-1252 text, one entry per line: date and time, ": ", the message, CR LF.
#pragma once

#include "modul/ibmodul.h"
#include "modul/rollen.h"
#include "platform/dateisystem.h"
#include "platform/uhr.h"

#include <cstddef>
#include <cstdint>
#include <deque>
#include <string>
#include <string_view>
#include <utility>

namespace zek {

class Gesicht;

inline constexpr std::string_view Protokolldatei = "IBZEKLog.txt";

class Protokoll final : public Statusausgabe {
public:
    // Bytes up to which the file is appended to; a longer one is cut to what follows the first line break in its last
    // Restlaenge bytes. An empty line stands before the new entry then, which has no line break of its own.
    static constexpr std::int64_t Hoechstlaenge = 1000000;
    static constexpr std::int64_t Restlaenge = 100000;

    // The file lies in the program folder; the face has the list.
    Protokoll(const Uhr& uhr, Dateisystem& dateien, const Ordner& ordner, Gesicht& gesicht);

    // The same text twice within one second makes one entry.
    void Statusmeldung(std::string_view text, bool fett = false) override;

private:
    void SchreibeInDatei(const std::string& zeile);
    bool LiesBleibendes(Dateihandle datei, std::string& rest);

    const Uhr& uhr_;
    Dateisystem& dateien_;
    const Ordner& ordner_;
    Gesicht& gesicht_;
    std::string letzteMeldung_;
};

// The entries of the status list, as the list of the main window shows them.
class Statusliste {
public:
    static constexpr std::size_t KuerzenUeber = 500;
    static constexpr std::size_t KuerzenUnter = 400;

    struct Eintrag {
        Zeitpunkt Zeit{};
        std::string Text;
        bool Fett = false;
    };

    // How many of the oldest entries the next Fuege has to drop first: more than 500 are cut to 399.
    std::size_t ZuKuerzen() const;
    void Kuerze();
    void Fuege(Eintrag eintrag) { eintraege_.push_back(std::move(eintrag)); }
    void Leere() { eintraege_.clear(); }

    std::size_t Anzahl() const { return eintraege_.size(); }
    const Eintrag& operator[](std::size_t zeile) const { return eintraege_[zeile]; }

    // What a double click on an entry shows: date and time, ": ", message.
    static std::string Anzeigetext(const Eintrag& eintrag);

private:
    std::deque<Eintrag> eintraege_;
};

}  // namespace zek
