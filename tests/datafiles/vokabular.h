// What the tests of data files speak: titles, files made of records, and headers written out by hand.
#pragma once

#include "datafiles/anhaengen.h"
#include "datafiles/dateikopf.h"
#include "datafiles/datensatz.h"
#include "hilfen/ram_dateisystem.h"
#include "hilfen/stoerdateisystem.h"
#include "hilfen/test_rollen.h"
#include "hilfen/virtuelle_welt.h"
#include "modul/ibmodul.h"

#include <cstring>
#include <string>
#include <string_view>
#include <vector>

namespace zek::hilfen {

// Bytes out of a text of hexadecimal pairs; all else is skipped.
inline std::string Hex(std::string_view text) {
    std::string bytes;
    int hoch = -1;
    for (const char c : text) {
        const std::size_t ziffer = std::string_view("0123456789ABCDEF").find(c);
        if (ziffer == std::string_view::npos) continue;
        if (hoch >= 0) bytes += static_cast<char>(hoch * 16 + static_cast<int>(ziffer));
        hoch = hoch >= 0 ? -1 : static_cast<int>(ziffer);
    }
    return bytes;
}

inline std::string Aufgefuellt(std::string text, std::size_t breite) {
    text.resize(breite, ' ');
    return text;
}

inline std::string Nullen(std::size_t anzahl) {
    return std::string(anzahl, '\0');
}

// The header of the traded file of a future on the DAX, put together by hand from the layout.
inline std::string DaxKopf() {
    const std::string name = "DAX@EUREX_FUT_201206_EUR";
    return "VQL ZeitstromKit-Datei Version 01.00" + Hex("FF FF") + Aufgefuellt(name, 50) + "DAX@EUREX_FUT_2012" +
           Aufgefuellt("Datenfeed Interactive Brokers\r\n" + name, 250) + "Ja" + Aufgefuellt(name, 130) +
           Aufgefuellt(name, 68) + Aufgefuellt("IB", 10) + Aufgefuellt("DAX;FUT;201206;0;;;EUREX;;EUR;25;0", 100) +
           Nullen(8) + Aufgefuellt("Bezahlt", 12) + Nullen(20) + Nullen(150);
}

inline void MacheDax(clTitelobjekt& titel) {
    titel.Symbol = "DAX";
    titel.Börsenplatz = "EUREX";
    titel.Typ = "FUT";
    titel.Laufzeit = "201206";
    titel.Währung = "EUR";
    titel.Multiplikator = "25";
}

inline std::string Satzbytes(double datum, float kurs, float volume) {
    std::string bytes(16, '\0');
    std::memcpy(bytes.data(), &datum, 8);
    std::memcpy(bytes.data() + 8, &kurs, 4);
    std::memcpy(bytes.data() + 12, &volume, 4);
    return bytes;
}
inline std::string Satzbytes(Zeitpunkt zeit, float kurs, float volume) {
    return Satzbytes(DatumAus(zeit), kurs, volume);
}

inline std::vector<KursDatensatz> Saetze(std::string_view datei) {
    std::vector<KursDatensatz> saetze((datei.size() - 856) / 16);
    if (!saetze.empty()) std::memcpy(saetze.data(), datei.data() + 856, saetze.size() * 16);
    return saetze;
}

// Header and n good records, one second apart.
inline std::string DaxDatei(int saetze) {
    std::string datei = DaxKopf();
    for (int i = 0; i < saetze; ++i) datei += Satzbytes(46000 + i / 86400.0, 100.0F + static_cast<float>(i), 5);
    return datei;
}

}  // namespace zek::hilfen
