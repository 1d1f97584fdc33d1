// The file that the data inspector is asked to show: found, and given its header where it has none yet.
#pragma once

#include "bestand/bestandsumgebung.h"

#include <cstdint>
#include <optional>
#include <string>

namespace zek {

// The full path of a title's file of a kind. A file that isn't there or holds no header is made on request; on no none
// stays behind, and there is no path. Throws DateiFehler when it can't be opened.
std::optional<std::string> Inspektordatei(const Bestandsumgebung& um, clTitelobjekt& titel, std::int32_t kursart);

}  // namespace zek
