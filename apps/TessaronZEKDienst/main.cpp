// The recorder without a screen.
#include "apps/maschine.h"
#include "platform/qt/signalempfang.h"
#include "platform/standardausgabe.h"
#include "session/dienst.h"

#include <QCoreApplication>

#include <iostream>

int main(int argc, char* argv[]) {
    using namespace zek;
    UeberhoereSigpipe();
    const auto beiAuflegen = Abgehaengt() ? BeiAuflegen::Weiterlaufen : BeiAuflegen::Beenden;
    const Dienstoptionen optionen = LiesDienstoptionen({argv + 1, argv + argc});
    if (optionen.Hilfe) return (std::cout << Dienstauskunft()).good() ? 0 : 1;
    if (optionen.Version) return (std::cout << "TessaronZEKDienst " ZEK_VERSION "\n").good() ? 0 : 1;
    if (!optionen.Fehler.empty()) return std::cerr << optionen.Fehler << "\n\n" << Dienstauskunft(), 2;

    Sicherungshelfer helfer;  // while this is the only thread
    // Qt's own loop: that of GLib costs a third more at each wake-up, and only windows need it.
    ::setenv("QT_NO_GLIB", "1", 1);
    QCoreApplication programm(argc, argv);
    Maschine maschine(helfer, [] { QCoreApplication::quit(); });
    Standardausgabe ausgabe;
    Dienst dienst(maschine.Plattform(), optionen, [&](const std::string& zeile) { ausgabe.Zeile(zeile); });
    const Signalempfang signale([&](int) { dienst.Beende(); }, beiAuflegen);
    if (dienst.Starte()) QCoreApplication::exec();
    if (dienst.Rueckgabe() == 1) std::cerr << dienst.LetzteMeldung() << '\n';
    return dienst.Rueckgabe();
}
