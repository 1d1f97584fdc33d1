// Command line of the desktop program.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace zek {

// What "--help" or "--version" print; empty when the program is to start.
std::optional<std::string> Desktopauskunft(const std::vector<std::string>& argumente, const std::string& version);

// Why no window can be shown, German: Qt would end the program hard. Empty when there is a screen, as far as the
// environment tells.
std::optional<std::string> FehlenderBildschirm(const std::vector<std::string>& argumente);

// All arguments joined by blanks, as the classic switches are looked for.
std::string Befehlszeilentext(const std::vector<std::string>& argumente);

}  // namespace zek
