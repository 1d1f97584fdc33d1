// The recorder with its windows.
#include "apps/maschine.h"
#include "fensterwerk/anwendung.h"
#include "fensterwerk/hilfe.h"
#include "platform/qt/signalempfang.h"
#include "session/sitzung.h"
#include "windows/auskunft.h"
#include "windows/desktopgesicht.h"

#include <QApplication>

#include <iostream>

int main(int argc, char* argv[]) {
    using namespace zek;
    UeberhoereSigpipe();
    const std::vector<std::string> argumente(argv + 1, argv + argc);
    if (const auto auskunft = Desktopauskunft(argumente, ZEK_VERSION)) return (std::cout << *auskunft).good() ? 0 : 1;
    // Orders to the running instance need no screen.
    const std::string befehlszeile = Befehlszeilentext(argumente);
    if (const auto ergebnis = KommandoUebergeben(befehlszeile)) return *ergebnis;
    if (const auto fehler = FehlenderBildschirm(argumente)) return std::cerr << *fehler, 1;

    Sicherungshelfer helfer;  // while this is the only thread
    QApplication programm(argc, argv);
    RichteAnwendungEin(programm);
    Maschine maschine(helfer, [] { QCoreApplication::exit(0); });
    const Handbuch handbuch(Hilfeordner(QCoreApplication::applicationDirPath()));
    Desktopgesicht* anzeige = nullptr;
    const auto hilfe = [&](const std::string& seite) {
        handbuch.Oeffne(seite, [&](const std::string& text) { anzeige->ZeigeMeldung(text, meldung::Ok, 0); });
    };
    Desktopgesicht gesicht(maschine.Uhr, hilfe, ZEK_VERSION);
    anzeige = &gesicht;
    Sitzung sitzung(maschine.Plattform(), gesicht, befehlszeile);
    gesicht.SetzeSitzung(sitzung);
    const Signalempfang signale([&](int) { sitzung.Beende(); });
    // The end of the desktop session closes without a question.
    QObject::connect(&programm, &QGuiApplication::commitDataRequest, &programm, [&] { sitzung.Beende(); });
    if (sitzung.Starte()) QApplication::exec();
    return sitzung.Rueckgabe();
}
