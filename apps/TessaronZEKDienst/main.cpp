// The recorder without a screen.
#include "feed/tws/twsclient.h"
#include "platform/dateisystem_posix.h"
#include "platform/ini_speicher.h"
#include "platform/prozess_posix.h"
#include "platform/qt/qt_plattform.h"
#include "platform/qt/qt_tcp.h"
#include "platform/qt/signalempfang.h"
#include "platform/systemuhr_posix.h"
#include "session/dienst.h"

#include <QCoreApplication>

#include <iostream>

int main(int argc, char* argv[]) {
    using namespace zek;
    const Dienstoptionen optionen = LiesDienstoptionen({argv + 1, argv + argc});
    if (optionen.Hilfe) return (std::cout << Dienstauskunft()).good() ? 0 : 1;
    if (optionen.Version) return (std::cout << "TessaronZEKDienst " ZEK_VERSION "\n").good() ? 0 : 1;
    if (!optionen.Fehler.empty()) return std::cerr << optionen.Fehler << "\n\n" << Dienstauskunft(), 2;

    QCoreApplication programm(argc, argv);
    const std::string ordner = Programmordner();
    HinterlegeFuerNeustart(ordner);
    PosixUhr uhr;
    PosixDateisystem dateien;
    IniNutzerspeicher registry(IniNutzerspeicher::Standardordner());
    IniProfildatei lokal(ordner + std::string(LokaleEinstellungsdatei));
    IniProfildatei port(ordner + std::string(Portdateiname));
    QtPumpe pumpe;
    QtZeitgeberfabrik zeitgeber;
    QtTcpFabrik tcp;
    QtProzesse prozesse(ordner);
    const tws::TwsFabrik tws = [&](tws::TwsEreignisse& e) {
        return std::make_unique<tws::TwsClient>(tcp, pumpe, uhr, e);
    };

    Dienst dienst({uhr, pumpe, zeitgeber, tcp, dateien, registry, lokal, port, prozesse, tws, ordner,
                   [] { QCoreApplication::quit(); }},
                  optionen, [](const std::string& zeile) { std::cout << zeile << std::endl; });
    const Signalempfang signale([&](int) { dienst.Beende(); });
    if (dienst.Starte()) QCoreApplication::exec();
    if (dienst.Rueckgabe() != 0) std::cerr << dienst.LetzteMeldung() << '\n';
    return dienst.Rueckgabe();
}
