// One change of a store in one word.
#pragma once

#include "platform/speicher.h"

#include <span>
#include <string_view>

namespace zek {

inline int Schreibe(Nutzerspeicher& speicher, std::string_view anwendung, const Speicheraenderung& eine) {
    return speicher.Schreibe(anwendung, std::span(&eine, 1), Haltbarkeit::Sofort);
}

inline int Schreibe(Profildatei& datei, const Speicheraenderung& eine) {
    return datei.Schreibe(std::span(&eine, 1), Haltbarkeit::Sofort);
}

}  // namespace zek
