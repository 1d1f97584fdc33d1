// The words for what the system says: German, from a table of our own, since the system's texts follow its language.
#pragma once

#include <exception>
#include <string>

namespace zek {

// The words for an errno value (positive), or "" when the system knows none.
std::string SystemText(int fehlernummer);

// What an error says to a person: the words above for an error of the system, German words for a lack of memory, else
// the error's own text.
std::string Fehlertext(const std::exception& fehler);

}  // namespace zek
