// A TWS to test and demonstrate against.
#include "platform/dateisystem_posix.h"
#include "platform/prozess_posix.h"
#include "platform/qt/melder.h"
#include "platform/qt/qt_plattform.h"
#include "platform/qt/qt_tcp.h"
#include "platform/qt/signalempfang.h"
#include "platform/systemuhr_posix.h"
#include "simulator/programm.h"

#include <QCoreApplication>

#include <unistd.h>
#include <array>
#include <iostream>
#include <memory>

int main(int argc, char* argv[]) {
    using namespace zek;
    UeberhoereSigpipe();
    simulator::Programmoptionen optionen = simulator::LiesProgrammoptionen({argv + 1, argv + argc});
    if (optionen.Hilfe) return (std::cout << simulator::Programmhilfe()).good() ? 0 : 1;
    if (optionen.Version) return (std::cout << "tws-simulator " ZEK_VERSION "\n").good() ? 0 : 1;
    if (!optionen.Fehler.empty()) return std::cerr << optionen.Fehler << "\nsee tws-simulator --help\n", 2;

    QCoreApplication qt(argc, argv);
    PosixUhr uhr;
    PosixDateisystem dateien;
    QtZeitgeberfabrik zeitgeber;
    QtTcpServerfabrik netz;
    simulator::Programm programm(netz, zeitgeber, uhr, dateien, std::move(optionen),
                                 [](const std::string& zeile) { std::cout << zeile << std::endl; });
    const Signalempfang signale([](int) { QCoreApplication::quit(); });

    // Commands on standard input; its end only ends the commands.
    std::unique_ptr<Melder> eingabe;
    eingabe = std::make_unique<Melder>(STDIN_FILENO, QSocketNotifier::Read, [&] {
        std::array<char, 4096> puffer;
        const ssize_t anzahl = ::read(STDIN_FILENO, puffer.data(), puffer.size());
        if (anzahl <= 0) return eingabe->setEnabled(false);
        programm.Eingabe({puffer.data(), static_cast<std::size_t>(anzahl)});
    });
    if (!programm.Starte()) return 1;
    const int ergebnis = QCoreApplication::exec();
    programm.Beende();
    return ergebnis;
}
