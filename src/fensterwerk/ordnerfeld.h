// A field for the path of a folder, with the button "…" that chooses one.
#pragma once

#include "fensterwerk/dateiwahl.h"

#include <QWidget>

class QLineEdit;

namespace zek {

class Ordnerfeld : public QWidget {
public:
    // `name` is that of the text field; the button is "btnWahl(name)". `titel`: of the choice. `wahl` must outlive it.
    Ordnerfeld(const QString& name, const QString& hinweis, const QString& titel, Dateiwahl& wahl);

    QLineEdit* Feld() const { return feld_; }

private:
    void Waehle();

    QString titel_;
    Dateiwahl& wahl_;
    QLineEdit* feld_;
};

}  // namespace zek
