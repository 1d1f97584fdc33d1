// What a data folder and the definitions know of titles: which files have records, which titles are active.
#pragma once

#include "luecken/urteil.h"
#include "platform/dateisystem.h"

#include <map>
#include <string>
#include <unordered_map>

namespace zek::werkzeug {

class Titelakten {
public:
    // `programmordner` ends in "/"; "" when there are no definitions.
    Titelakten(Dateisystem& dateien, const std::string& datenordner, const std::string& programmordner);

    // Titles that the definitions call active: names by key, which is the name in lower case.
    const std::map<std::string, std::string>& Definierte() const { return definierte_; }
    // Titles that have data files, by their names.
    std::map<std::string, std::string> MitDateien() const;
    // `mitErstem`: the first record is wanted as well. `korrektur` was added to the time stamps.
    Titelakte Von(const std::string& name, bool mitErstem, std::chrono::milliseconds korrektur) const;
    // The time of the last record of all, as it stands; 0 for none.
    Zeit LetzterSatz() const;

private:
    void LiesDefinitionen(const std::string& programmordner);

    Dateisystem& dateien_;
    std::unordered_map<std::string, std::string> pfade_;  // by file name in lower case
    std::map<std::string, std::string> definierte_;
    std::map<std::string, std::chrono::milliseconds> korrekturen_;
};

}  // namespace zek::werkzeug
