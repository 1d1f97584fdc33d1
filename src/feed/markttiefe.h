// Market depth: each update of a row goes straight into the file of its side and level. No state, no filter.
#pragma once

#include "feed/aufzeichnung.h"
#include "modul/ibmodul.h"
#include "platform/uhr.h"

namespace zek {

class Markttiefe {
public:
    Markttiefe(const Titelbestand& bestand, const Uhr& uhr, Aufzeichnung& aufzeichnung);

    // `position` 0 to 9; rows beyond the 10 that are requested are dropped. `operation` 2 is a delete. `side` 0 is
    // the ask side, any other the bid side.
    void updateMktDepth(int id, int position, int operation, int side, double price, double size);

private:
    const Titelbestand& bestand_;
    const Uhr& uhr_;
    Aufzeichnung& aufzeichnung_;
};

}  // namespace zek
