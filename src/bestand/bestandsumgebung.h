// What the operations on the stock of titles need from the house.
#pragma once

#include "feed/abonnement.h"
#include "modul/ibmodul.h"
#include "modul/rollen.h"
#include "platform/dateisystem.h"
#include "platform/pumpe.h"
#include "platform/uhr.h"

#include <functional>

namespace zek {

struct Bestandsumgebung {
    const IBModul& Modul;  // folders and settings
    Titelbestand& Titel;
    Dateisystem& Dateien;
    const Uhr& Zeit;
    zek::Pumpe& Pumpe;
    Meldungen& Fragen;
    Abonnement& Abos;
    std::function<bool()> GibtKontotitel;  // account values have come in this run
    std::function<void()> TitelInfoAktualisieren;
    std::function<void()> Titelspeichern;
};

// How far a long operation is; false asks it to stop before its next title. May be empty.
using Fortschritt = std::function<bool(std::size_t fertig, std::size_t gesamt)>;

}  // namespace zek
