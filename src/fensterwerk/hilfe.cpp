#include "fensterwerk/hilfe.h"

#include "fensterwerk/text.h"

#include <QDesktopServices>
#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QProcess>
#include <QStandardPaths>
#include <QUrl>
#include <utility>

namespace zek {

namespace {

// A code that comes later is the viewer's own.
constexpr qint64 Startzeit = 5000;  // ms

}  // namespace

QStringList Hilfeordner(const QString& programmordner) {
    return {programmordner + "/hilfe", programmordner + "/../../share/tessaron-zek/hilfe"};
}

QString Hilfeseite(const QStringList& ordner, const std::string& seite) {
    for (const QString& einer : ordner)
        for (const QString& name : {Q(seite), QString("index")})
            if (const QFileInfo datei(einer + "/" + name + ".html"); datei.isFile()) return datei.canonicalFilePath();
    return {};
}

// xdg-open is there on nearly every desktop and tells by its exit code that nothing can show the file; a viewer that
// it has started may run for as long as it likes, and outlives this program.
void ZeigeDatei(const QString& datei, const std::function<void()>& gescheitert) {
    const QString oeffner = QStandardPaths::findExecutable("xdg-open");
    if (oeffner.isEmpty()) {
        if (!QDesktopServices::openUrl(QUrl::fromLocalFile(datei))) gescheitert();
        return;
    }
    auto* prozess = new QProcess;
    QElapsedTimer seit;
    seit.start();
    QObject::connect(prozess, &QProcess::errorOccurred, prozess, [prozess, gescheitert](QProcess::ProcessError fehler) {
        if (fehler != QProcess::FailedToStart) return;
        prozess->deleteLater();
        gescheitert();
    });
    QObject::connect(prozess, &QProcess::finished, prozess, [prozess, gescheitert, seit](int ergebnis) {
        prozess->deleteLater();
        if (ergebnis != 0 && seit.elapsed() < Startzeit) gescheitert();
    });
    prozess->start(oeffner, {datei});
}

Handbuch::Handbuch(QStringList ordner, Anzeiger anzeiger)
    : ordner_(std::move(ordner)), anzeiger_(std::move(anzeiger)) {}

void Handbuch::Oeffne(const std::string& seite, const std::function<void(const std::string& text)>& melde) const {
    const QString datei = Hilfeseite(ordner_, seite);
    if (datei.isEmpty()) {
        melde("Das Handbuch wurde nicht gefunden. Es gehört in den Ordner „" +
              QDir::cleanPath(ordner_.value(0)).toStdString() + "“.");
        return;
    }
    anzeiger_(datei, [melde, datei] {
        melde(
            "Es wurde kein Programm gefunden, das das Handbuch anzeigt. Öffnen Sie bitte diese Datei in einem "
            "Browser:\n" +
            datei.toStdString());
    });
}

}  // namespace zek
