// The manual: HTML pages that the desktop's browser shows.
#pragma once

#include <QString>
#include <QStringList>
#include <string>

namespace zek {

// Where the manual may lie, seen from the folder of the executable: beside it, installed, or in the source tree.
QStringList Hilfeordner(const QString& programmordner);

// The file of a page ("einstellungen"), the first page where that one is missing, or empty when there is no manual.
QString Hilfeseite(const QStringList& ordner, const std::string& seite);

// Opens a page in the browser. False when there is no manual or nothing that could show it.
bool OeffneHilfe(const std::string& seite);

}  // namespace zek
