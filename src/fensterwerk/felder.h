// The controls of dialogs, made with the name by which tests and the manual know them.
#pragma once

#include <QString>
#include <initializer_list>

class QCheckBox;
class QDateEdit;
class QHBoxLayout;
class QLabel;
class QLineEdit;
class QTimeEdit;
class QWidget;

namespace zek {

QCheckBox* Schalter(const char* name, const QString& text, const QString& hinweis = {});
QLineEdit* Textfeld(const char* name, const QString& hinweis = {});
// Narrow, with its text at the right.
QLineEdit* Zahlenfeld(const char* name, const QString& hinweis = {});
// A date with its calendar, and a time of day to the second, both in the German form.
QDateEdit* Datumfeld(const QString& name);
QTimeEdit* Zeitfeld(const QString& name);

// The words of a field: its mnemonic leads there, and it is as enabled as the field (BeschriftungenSchalten).
QLabel* Beschriftung(const QString& text, QWidget* feld);
// The name given to a label whose text comes from elsewhere: it is shown as it stands, without any markup.
QLabel* Benannt(QLabel* label, const char* name);
// An explanation that wraps.
QLabel* Hinweis(const QString& text);

// Widgets side by side; `mitRest`: the rest of the width stays free.
QHBoxLayout* Reihe(std::initializer_list<QWidget*> teile, bool mitRest = true);
// Moved to the right, as what depends on the check box above it.
inline constexpr int Einzug = 22;  // px
QHBoxLayout* Eingerueckt(QHBoxLayout* reihe);

// Greys the labels of disabled fields: each label is as enabled as the field that it names.
void BeschriftungenSchalten(const QWidget& dialog);

// Selects the whole text whenever the field gets the focus.
void MarkiereBeiEintritt(QLineEdit* feld);

}  // namespace zek
