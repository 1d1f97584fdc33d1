#include "platform/aufruf.h"

#include <initializer_list>
#include <memory>
#include <utility>

namespace zek {

void SprichDeutsch(CLI::App& aufruf) {
    const auto worte = std::make_shared<CLI::Formatter>();
    for (const auto& [englisch, deutsch] :
         std::initializer_list<std::pair<const char*, const char*>>{{"Usage", "Aufruf"},
                                                                    {"Positionals", "Angaben"},
                                                                    {"OPTIONS", "SCHALTER"},
                                                                    {"SUBCOMMAND", "BEFEHL"},
                                                                    {"SUBCOMMANDS", "BEFEHLE"},
                                                                    {"REQUIRED", ""}})
        worte->label(englisch, deutsch);
    worte->column_width(26);
    aufruf.formatter(worte);
    aufruf.option_defaults()->group("Schalter");
}

// The library's words are English; what they are about stands in front of their first colon.
std::string AufDeutsch(const CLI::ParseError& fehler, const CLI::App& aufruf) {
    const std::string text = fehler.what();
    if (const auto uebrig = aufruf.remaining(true); !uebrig.empty())
        return "Überzählig oder unbekannt: " + uebrig.front();
    if (dynamic_cast<const CLI::RequiredError*>(&fehler) != nullptr)
        return "Es fehlt: " + text.substr(0, text.find(' '));
    if (dynamic_cast<const CLI::ArgumentMismatch*>(&fehler) != nullptr)
        return "Hinter " + text.substr(0, text.find(':')) + " fehlt die Angabe.";
    return text;
}

}  // namespace zek
