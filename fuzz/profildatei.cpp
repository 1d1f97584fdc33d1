// The lines of an INI file: text survives reading and writing, and what was set is found.
#include "platform/ini_speicher.h"

#include <algorithm>
#include <cstdlib>

namespace {

// A carriage return that is no part of a line end may vanish at a rewrite.
bool HatLoseWagenruecklaeufe(std::string_view text) {
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '\r') continue;
        if (i + 1 == text.size() || text[i + 1] != '\n') return true;
    }
    return false;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* daten, std::size_t groesse) {
    const std::string_view text(reinterpret_cast<const char*>(daten), groesse);
    // Section, key and value come from the beginning of the text, so that they often hit what stands in it.
    const std::string_view abschnitt = text.substr(0, text.find('|'));
    const std::string_view rest = text.substr(std::min(text.size(), abschnitt.size() + 1));
    const std::string_view schluessel = rest.substr(0, rest.find('|'));
    const std::string_view inhalt = rest.substr(std::min(rest.size(), schluessel.size() + 1));

    if (HatLoseWagenruecklaeufe(inhalt)) return 0;
    zek::IniText ini(inhalt);
    if (zek::IniText(ini.Text()).Text() != ini.Text()) std::abort();
    const auto vorher = ini.Finde(abschnitt, schluessel);
    if (ini.Setze(abschnitt, schluessel, "wert")) {
        if (ini.Finde(abschnitt, schluessel) != "wert") std::abort();
        if (zek::IniText(ini.Text()).Finde(abschnitt, schluessel) != "wert") std::abort();
        if (!ini.Loesche(abschnitt, schluessel)) std::abort();
    } else if (zek::IniText(inhalt).Finde(abschnitt, schluessel) != vorher) {
        std::abort();
    }
    return 0;
}
