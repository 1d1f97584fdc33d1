// The command "zek repariere", and what every command does first: finish a merge that was broken off.
#pragma once

#include "datafiles/einarbeitungsjournal.h"
#include "platform/dateisystem.h"

#include <ostream>
#include <span>
#include <string>

namespace zek::werkzeug {

// Cuts what isn't a record off the ends of files. The bytes are kept beside the file, as "<name>.abgeschnitten";
// without that nothing is cut. 0 when every file is sound then, 1 when one has damage that can't be cut off.
int Repariere(std::span<const std::string> pfade, Dateisystem& dateien, std::ostream& ausgabe, std::ostream& fehler);

// Finishes the merge of one file, if there is one, and tells of it; false when that failed.
bool HoleEinarbeitungNach(Dateisystem& dateien, const std::string& pfad, std::ostream& fehler);

}  // namespace zek::werkzeug
