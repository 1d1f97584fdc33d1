// The command-line tool "zek": looks at data files, also while they are being written. All output is German.
//
//   zek info FILE|DIR...                       header, records, span and damage of each file
//   zek tabelle FILE|DIR...                    one line for each file, its last price with it
//   zek csv [--zeit deutsch|iso] FILE          all records as CSV
//   zek pruefe DIR...                          damage of every file below the folders; also "check"
//   zek repariere FILE|DIR...                  cuts off what isn't a record at the ends of files
//   zek luecken [--csv] [--alles] [--von D] [--bis D] [--titel PATTERN] [--programm DIR] DIR
//                                              what is recorded, filled and missing, and why; also "gaps"
//   zek [COMMAND] --hilfe, zek --version
#pragma once

#include "platform/dateisystem.h"
#include "platform/uhr.h"

#include <functional>
#include <ostream>
#include <string>
#include <vector>

namespace zek {

// Exit codes of the tool.
namespace werkzeug {
inline constexpr int Gut = 0, Beanstandet = 1, Fehlgeschlagen = 2;

// The world of the tool.
struct Umgebung {
    Dateisystem& Dateien;
    Zeitpunkt Jetzt{};
    // Whether a recorder holds this program folder.
    std::function<bool(const std::string& programmordner)> OrdnerGehalten;
};
}  // namespace werkzeug

// Runs the tool with the arguments behind the program's name. Returns its exit code: 0 all in order, 1 damage or
// something was found wrong with the data, 2 wrong use or a file that can't be read.
int Werkzeug(const std::vector<std::string>& argumente, const std::string& version, const werkzeug::Umgebung& umgebung,
             std::ostream& ausgabe, std::ostream& fehler);

}  // namespace zek
