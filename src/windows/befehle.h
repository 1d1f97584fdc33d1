// What the commands of the main window do, numbers 1020 to 1041.
#pragma once

#include "fensterwerk/dateiwahl.h"
#include "fensterwerk/dialogbasis.h"
#include "session/gesicht.h"
#include "titlewindows/titelfenster.h"

namespace zek {

class Desktopgesicht;
class Sitzung;

class Befehle {
public:
    Befehle(Desktopgesicht& gesicht, Sitzung& sitzung, Hilfeoeffner hilfe, std::string version);

    void Ausfuehren(int nummer);

    // The connection settings dialog; true when it was accepted. `angaben` then holds what was entered.
    bool FrageVerbindung(Verbindungsangaben& angaben);

private:
    void NochNichtDa(const char* fenster);
    void Titelauswahl();
    void Verwaltung();
    Titelfensterumgebung Titelfenster();
    void ZeigeImInspektor(const std::string& pfad);
    void TWSEinstellungen();
    void StatusLoeschen();
    void Einstellungen();
    void LokalSpeichern();
    void Hilfe();
    QWidget* Fenster();

    Desktopgesicht& gesicht_;
    Sitzung& sitzung_;
    Hilfeoeffner hilfe_;
    std::string version_;
    Dateiwahldialog dateiwahl_;
};

}  // namespace zek
