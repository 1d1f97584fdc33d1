// Answers given beforehand to every choice of a folder.
#pragma once

#include "fensterwerk/dateiwahl.h"

#include <deque>
#include <string>
#include <vector>

namespace zek::hilfen {

class TestDateiwahl : public Dateiwahl {
public:
    struct Frage {
        std::string Titel;
        std::string Start;
        bool operator==(const Frage&) const = default;
    };

    std::optional<std::string> Ordner(QWidget*, const QString& titel, const std::string& start) override {
        Gefragt.push_back({titel.toStdString(), start});
        if (Antworten.empty()) return std::nullopt;
        const auto antwort = Antworten.front();
        Antworten.pop_front();
        return antwort;
    }

    std::vector<Frage> Gefragt;
    std::deque<std::optional<std::string>> Antworten;  // taken from the front; cancelled when there are none left
};

}  // namespace zek::hilfen
