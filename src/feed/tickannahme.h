// Tick intake: joins the single fields of the stream to records. A price tick only updates the title's state; records
// are written by size ticks.
#pragma once

#include "feed/aufzeichnung.h"
#include "modul/ibmodul.h"
#include "platform/uhr.h"

#include <string_view>

namespace zek {

// Tick types that are read; all others are ignored.
namespace ticktyp {
inline constexpr int Geldvolumen = 0, Geld = 1, Brief = 2, Briefvolumen = 3, Bezahlt = 4, Bezahltvolumen = 5,
                     Gesamtvolumen = 8;
}  // namespace ticktyp

class Tickannahme {
public:
    Tickannahme(const Einstellungen& einstellungen, const Titelbestand& bestand, Tickuhr& tickuhr, const Uhr& uhr,
                Aufzeichnung& aufzeichnung);

    // `id` of a title; events of unknown ids are dropped. A price or size that no single holds leaves its field as it
    // was.
    void tickPrice(int id, int tickType, double price);
    void tickSize(int id, int tickType, double size);
    // Time stamps of the exchange don't enter the program: the recorder's own clock stamps every record.
    void tickString(int, int, std::string_view) {}

private:
    clTitelobjekt* Empfange(int id, Zeitpunkt& jetzt);
    void Geldregel(clTitelobjekt& titel, double size, Zeitpunkt jetzt);
    void Briefregel(clTitelobjekt& titel, double size, Zeitpunkt jetzt);
    void Bezahltregel(clTitelobjekt& titel, double size, Zeitpunkt jetzt);
    void Gesamtvolumenregel(clTitelobjekt& titel, double size, Zeitpunkt jetzt);

    const Einstellungen& einstellungen_;
    const Titelbestand& bestand_;
    Tickuhr& tickuhr_;
    const Uhr& uhr_;
    Aufzeichnung& aufzeichnung_;
};

}  // namespace zek
