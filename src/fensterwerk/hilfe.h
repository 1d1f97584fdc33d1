// The manual: HTML pages that the desktop's browser shows.
#pragma once

#include <QString>
#include <QStringList>
#include <string>

namespace zek {

// The pages that windows ask for by their Hilfe button or F1; names without the extension.
namespace hilfeseite {

inline constexpr const char* Inhalt = "index";
inline constexpr const char* ErsteSchritte = "erste_schritte";
inline constexpr const char* Monitor = "monitor";
inline constexpr const char* Einstellungen = "einstellungen";
inline constexpr const char* Verbindung = "verbindung";
inline constexpr const char* Datenpflege = "datenpflege";
inline constexpr const char* Titel = "titel";

inline constexpr const char* Alle[] = {Inhalt, ErsteSchritte, Monitor, Einstellungen, Verbindung, Datenpflege, Titel};

}  // namespace hilfeseite

// Where the manual may lie, seen from the folder of the executable: beside it, installed, or in the source tree.
QStringList Hilfeordner(const QString& programmordner);

// The file of a page ("einstellungen"), the first page where that one is missing, or empty when there is no manual.
QString Hilfeseite(const QStringList& ordner, const std::string& seite);

// Opens a page in the browser. False when there is no manual or nothing that could show it.
bool OeffneHilfe(const std::string& seite);

}  // namespace zek
