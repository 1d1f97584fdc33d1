#include "fensterwerk/hilfe.h"

#include "fensterwerk/dialogbasis.h"

#include <QCoreApplication>
#include <QDesktopServices>
#include <QFileInfo>
#include <QUrl>

namespace zek {

QStringList Hilfeordner(const QString& programmordner) {
    return {programmordner + "/hilfe", programmordner + "/../../share/tessaron-zek/hilfe",
            programmordner + "/../../../docs/hilfe"};
}

QString Hilfeseite(const QStringList& ordner, const std::string& seite) {
    for (const QString& einer : ordner)
        for (const QString& name : {Q(seite), QString("index")})
            if (const QFileInfo datei(einer + "/" + name + ".html"); datei.isFile()) return datei.canonicalFilePath();
    return {};
}

bool OeffneHilfe(const std::string& seite) {
    const QString datei = Hilfeseite(Hilfeordner(QCoreApplication::applicationDirPath()), seite);
    return !datei.isEmpty() && QDesktopServices::openUrl(QUrl::fromLocalFile(datei));
}

}  // namespace zek
