// Command line of the desktop program.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace zek {

// What "--help" or "--version" print; empty when the program is to start.
std::optional<std::string> Desktopauskunft(const std::vector<std::string>& argumente, const std::string& version);

// All arguments joined by blanks, as the classic switches are looked for.
std::string Befehlszeilentext(const std::vector<std::string>& argumente);

}  // namespace zek
