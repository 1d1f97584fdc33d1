// The recorder without a screen.
#include "apps/maschine.h"
#include "platform/qt/signalempfang.h"
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
    Maschine maschine([] { QCoreApplication::quit(); });
    Dienst dienst(maschine.Plattform(), optionen, [](const std::string& zeile) { std::cout << zeile << std::endl; });
    const Signalempfang signale([&](int) { dienst.Beende(); });
    if (dienst.Starte()) QCoreApplication::exec();
    if (dienst.Rueckgabe() != 0) std::cerr << dienst.LetzteMeldung() << '\n';
    return dienst.Rueckgabe();
}
