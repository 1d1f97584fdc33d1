// The timed message without its window: buttons, results, layout and countdown. Flags and results are those of
// modul/rollen.h (namespace meldung). All lengths are pixels.
#pragma once

#include "platform/uhr.h"

#include <array>
#include <optional>
#include <string>
#include <string_view>

namespace zek {

inline constexpr std::string_view Meldungstitel = "Tessaron ZEK";
// Title of the system's message box that stands in for the dialog while the main window is minimized.
inline constexpr std::string_view Systemmeldungstitel = "Tessaron";

struct Meldungsknoepfe {
    int Anzahl = 1;
    std::array<std::string_view, 3> Beschriftung{};
    int Standard = -1;  // index of the default button; -1 for none
    int Abbruch = -1;   // index of the cancel button; -1 for none
};

// Bits 0 to 3 of `flags` choose the set; 0x100 and 0x200 make the second or third button the default one.
Meldungsknoepfe KnoepfeFuer(int flags);

// The result of a click on button 0 to 2.
int Meldungsergebnis(int flags, int knopf);

// True when the system's message box takes the place of the dialog: no time limit, and nobody sees the main window.
bool AlsSystemmeldung(int sekunden, bool hauptfensterMinimiert);

// "Dieser Hinweisdialog wird in 5 Sekunden automatisch geschlossen  "
std::string Restzeittext(long long sekunden);

struct Meldungsmasse {
    static constexpr int Knopfabstand = 20;
    static constexpr int HoechsteTextbreite = 500;
    static constexpr int TextOben = 10;
    static constexpr int AbstandUnterText = 25;  // from the label's lower edge to the buttons
    static constexpr int Streifenhoehe = 20;     // of the countdown

    int Labelbreite = 0;
    int Innenbreite = 0;  // of the window
    int Innenhoehe = 0;   // without the borders
    std::array<int, 3> KnopfLinks{};
};

// Width of the label for a text that is `textbreite` wide on one line.
int Labelbreite(int textbreite);

// `labelhoehe` is the height that the text takes at Labelbreite(textbreite), `streifenbreite` what the countdown needs.
Meldungsmasse MasseFuer(int knopfAnzahl, int knopfbreite, int knopfhoehe, int textbreite, int labelhoehe,
                        bool mitRestzeit, int streifenbreite = 0);

// The time limit of one message; asked once a second by the window's timer.
class Meldungstakt {
public:
    // `sekunden` of 0 or less never ends.
    Meldungstakt(const Uhr& uhr, int sekunden);

    bool MitZeitgrenze() const { return closeZeit_.has_value(); }
    // True once the present time has reached the limit.
    bool Abgelaufen() const;
    // Text of the countdown strip at this moment; empty without a limit.
    std::string Text() const;

private:
    const Uhr& uhr_;
    std::optional<Zeitpunkt> closeZeit_;
};

}  // namespace zek
