#include "windows/monitorplatz.h"

#include "fensterwerk/fensterplatz.h"
#include "platform/text.h"

#include <QDockWidget>
#include <QGuiApplication>
#include <QMainWindow>
#include <QScreen>
#include <array>
#include <optional>

namespace zek {

namespace {

std::optional<QRect> Rechteck(const std::string& text) {
    const std::vector<std::string> teile = Teile(text, '\t');
    if (teile.size() != 4) return std::nullopt;
    std::array<int, 4> zahlen{};
    for (std::size_t i = 0; i < zahlen.size(); ++i) {
        const auto zahl = Ganzzahl(teile[i]);
        if (!zahl || *zahl < -100000 || *zahl > 100000) return std::nullopt;
        zahlen[i] = static_cast<int>(*zahl);
    }
    const QRect platz(QPoint(zahlen[0], zahlen[1]), QPoint(zahlen[2] - 1, zahlen[3] - 1));
    if (!platz.isValid()) return std::nullopt;
    return platz;
}

Qt::DockWidgetArea Seite(const std::string& text) {
    switch (static_cast<int>(Zahlwert(text))) {
        case Qt::LeftDockWidgetArea:
            return Qt::LeftDockWidgetArea;
        case Qt::RightDockWidgetArea:
            return Qt::RightDockWidgetArea;
        case Qt::TopDockWidgetArea:
            return Qt::TopDockWidgetArea;
        default:
            return Qt::BottomDockWidgetArea;
    }
}

}  // namespace

std::string Monitorplatz::Lies(std::string_view schluessel) {
    return speicher_.LeseEinstellung(Programmtitel, Abschnitt, schluessel, "");
}

void Monitorplatz::Schreibe(std::string_view schluessel, const std::string& wert) {
    speicher_.SchreibeEinstellung(Programmtitel, Abschnitt, schluessel, wert);
}

void Monitorplatz::Laden(QMainWindow& fenster, QDockWidget& dock) {
    const auto platz = Rechteck(Lies("DockKoord"));
    if (!platz) return;
    const Qt::DockWidgetArea seite = Seite(Lies("DockPos"));
    fenster.addDockWidget(seite, &dock);
    if (Zahlwert(Lies("DockFloat")) != 0) {
        const QScreen* schirm = QGuiApplication::screenAt(platz->center());
        if (schirm == nullptr) schirm = QGuiApplication::primaryScreen();
        dock.setFloating(true);
        dock.setGeometry(Hineingeschoben(*platz, schirm->availableGeometry()));
        return;
    }
    const bool waagerecht = seite == Qt::LeftDockWidgetArea || seite == Qt::RightDockWidgetArea;
    fenster.resizeDocks({&dock}, {waagerecht ? platz->width() : platz->height()},
                        waagerecht ? Qt::Horizontal : Qt::Vertical);
}

void Monitorplatz::Speichern(const QMainWindow& fenster, const QDockWidget& dock) {
    const Einstellungsspeicher::Buendel buendel(speicher_);
    const QRect platz = dock.geometry();
    std::string koordinaten;
    for (const int zahl : {platz.left(), platz.top(), platz.right() + 1, platz.bottom() + 1}) {
        if (!koordinaten.empty()) koordinaten += '\t';
        koordinaten += std::to_string(zahl);
    }
    Schreibe("DockKoord", koordinaten);
    Schreibe("DockPos", std::to_string(static_cast<int>(fenster.dockWidgetArea(const_cast<QDockWidget*>(&dock)))));
    Schreibe("DockFloat", dock.isFloating() ? "1" : "0");
}

}  // namespace zek
