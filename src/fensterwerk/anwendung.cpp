#include "fensterwerk/anwendung.h"

#include "fensterwerk/stil.h"

#include <QApplication>
#include <QIcon>
#include <QLocale>
#include <QTranslator>

// Pictures and translation lie in a library, which must be told to bring them. Outside of all namespaces, as Qt asks.
static void LadeMittel() {
    Q_INIT_RESOURCE(zek);
    Q_INIT_RESOURCE(deutsch);
}

namespace zek {

void RichteAnwendungEin(QApplication& programm) {
    LadeMittel();
    QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
    auto* texte = new QTranslator(&programm);
    if (texte->load(":/zek/qtbase_de.qm")) QCoreApplication::installTranslator(texte);
    QApplication::setStyle(new Stil);
    QCoreApplication::setApplicationName("TessaronZEK");
    QGuiApplication::setDesktopFileName("tessaron-zek");
    QGuiApplication::setWindowIcon(QIcon(":/zek/zek.svg"));
    QGuiApplication::setQuitOnLastWindowClosed(false);
}

}  // namespace zek
