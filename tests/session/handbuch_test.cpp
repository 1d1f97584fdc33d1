// The manual's table of all settings is the one that the program walks.
#include "hilfen/quellen.h"
#include "modul/einstellungstabelle.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <string>

namespace zek {
namespace {

std::string Form(const Einstellungszeile& zeile) {
    switch (zeile.Form) {
        case Einstellungsform::Wahrheitswert:
            return "0 oder 1";
        case Einstellungsform::Ganzzahl:
            return zeile.Mindestens == Einstellungszeile::Unbegrenzt
                       ? "ganze Zahl"
                       : "ganze Zahl ab " + std::to_string(zeile.Mindestens);
        case Einstellungsform::Tageszeit:
            return "Uhrzeit";
        case Einstellungsform::DatumUhrzeit:
            return "Datum und Uhrzeit";
        case Einstellungsform::Text:
            return "Text";
        case Einstellungsform::Liste:
            return "Liste";
        case Einstellungsform::Ordner:
            return "Ordner";
    }
    return "";
}

std::string Handbuchzeilen() {
    std::string text;
    for (const Einstellungszeile& zeile : Einstellungstabelle())
        text += "<tr><td>" + std::string(zeile.Abschnitt) + "</td><td><code>" + std::string(zeile.Schluessel) +
                "</code></td><td>" + Form(zeile) + "</td><td>" + std::string(zeile.Vorgabe) + "</td><td>" +
                std::string(zeile.Bedeutung) + "</td></tr>\n";
    return text;
}

TEST(Handbuchtabelle, NamesEverySettingAsTheProgramReadsIt) {
    std::ifstream datei(hilfen::Quellordner() + "/docs/hilfe/einstellungen.html");
    const std::string seite((std::istreambuf_iterator<char>(datei)), std::istreambuf_iterator<char>());
    EXPECT_NE(seite.find("<h2 id=\"alle\">"), std::string::npos);
    EXPECT_NE(seite.find(Handbuchzeilen()), std::string::npos) << "docs/hilfe/einstellungen.html should hold\n"
                                                               << Handbuchzeilen();
}

}  // namespace
}  // namespace zek
