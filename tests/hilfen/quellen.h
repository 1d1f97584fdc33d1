// Where the sources lie: tests read documents, the manual and kept samples there.
#pragma once

#include <cstdlib>
#include <string>

namespace zek::hilfen {

// Without a final separator; the present folder when nothing else is said.
inline std::string Quellordner() {
    const char* ordner = std::getenv("ZEK_QUELLEN");
    return ordner != nullptr ? ordner : ".";
}

}  // namespace zek::hilfen
