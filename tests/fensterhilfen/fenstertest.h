// Words for tests that drive windows as a person does: by the object names of their controls, clicks and keys.
#pragma once

#include "hilfen/ram_speicher.h"
#include "hilfen/test_rollen.h"
#include "hilfen/virtuelle_welt.h"
#include "modul/ibmodul.h"
#include "session/einstellungen.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <QAbstractButton>
#include <QApplication>
#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QTest>
#include <QWidget>

namespace zek {

template <typename Art>
Art* Steuer(const QWidget& fenster, const char* name) {
    Art* gefunden = fenster.findChild<Art*>(QString::fromUtf8(name));
    EXPECT_NE(gefunden, nullptr) << "no control " << name;
    return gefunden;
}

inline void Klick(const QWidget& fenster, const char* name) {
    QTest::mouseClick(Steuer<QAbstractButton>(fenster, name), Qt::LeftButton);
}

inline void Schreibe(const QWidget& fenster, const char* name, const QString& text) {
    auto* feld = Steuer<QLineEdit>(fenster, name);
    feld->setFocus();
    feld->selectAll();
    QTest::keyClicks(feld, text);
    if (text.isEmpty()) QTest::keyClick(feld, Qt::Key_Delete);
}

inline void Haken(const QWidget& fenster, const char* name, bool an) {
    Steuer<QCheckBox>(fenster, name)->setChecked(an);
}

// Stores in memory.
struct Einstellungswelt {
    IBModul modul;
    hilfen::RamNutzerspeicher registry;
    hilfen::RamProfildatei datei;
    Einstellungsspeicher speicher{modul.Einstellungen, modul, registry, datei};
};

}  // namespace zek
