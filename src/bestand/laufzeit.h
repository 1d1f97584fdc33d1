// The expiry of a contract: one text in the title, year and month apart in the inputs.
#pragma once

#include <string>
#include <string_view>

namespace zek {

struct Jahrmonat {
    std::string Jahr;   // the first four characters
    std::string Monat;  // the rest; also a day behind the month, as in "0516"
};

// Both empty for an empty text.
Jahrmonat TeileLaufzeit(std::string_view laufzeit);
// The year with four digits and the month with two, or with four when it was typed with three characters or more. What
// is no number goes in as it stands; what is empty gives nothing.
std::string LaufzeitAus(std::string_view jahr, std::string_view monat);

}  // namespace zek
