// The manual: HTML pages that the desktop's browser shows.
#pragma once

#include <QString>
#include <QStringList>
#include <functional>
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

// Where the manual may lie, seen from the folder of the executable: beside it (a build folder has a link there) or
// installed.
QStringList Hilfeordner(const QString& programmordner);

// The file of a page ("einstellungen"), the first page where that one is missing, or empty when there is no manual.
QString Hilfeseite(const QStringList& ordner, const std::string& seite);

// Hands a file to the program that the desktop has for it. `gescheitert` is called, now or within some seconds, when
// there is none.
void ZeigeDatei(const QString& datei, const std::function<void()>& gescheitert);

// Opens pages of the manual, and says so where that can't be done.
class Handbuch {
public:
    using Anzeiger = std::function<void(const QString& datei, const std::function<void()>& gescheitert)>;

    explicit Handbuch(QStringList ordner, Anzeiger anzeiger = ZeigeDatei);

    // `melde` gets the words for a person when there is no manual, or nothing that could show it.
    void Oeffne(const std::string& seite, const std::function<void(const std::string& text)>& melde) const;

private:
    QStringList ordner_;
    Anzeiger anzeiger_;
};

}  // namespace zek
