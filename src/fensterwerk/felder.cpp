#include "fensterwerk/felder.h"

#include <QCheckBox>
#include <QDateEdit>
#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QTimeEdit>
#include <QTimer>

namespace zek {

QCheckBox* Schalter(const char* name, const QString& text, const QString& hinweis) {
    auto* schalter = new QCheckBox(text);
    schalter->setObjectName(name);
    schalter->setToolTip(hinweis);
    return schalter;
}

QLineEdit* Textfeld(const char* name, const QString& hinweis) {
    auto* feld = new QLineEdit;
    feld->setObjectName(name);
    feld->setToolTip(hinweis);
    return feld;
}

QLineEdit* Zahlenfeld(const char* name, const QString& hinweis) {
    auto* feld = Textfeld(name, hinweis);
    feld->setMaximumWidth(feld->fontMetrics().averageCharWidth() * 12);
    feld->setAlignment(Qt::AlignRight);
    return feld;
}

QDateEdit* Datumfeld(const QString& name) {
    auto* feld = new QDateEdit;
    feld->setObjectName(name);
    feld->setDisplayFormat("dd.MM.yyyy");
    feld->setCalendarPopup(true);
    return feld;
}

QTimeEdit* Zeitfeld(const QString& name) {
    auto* feld = new QTimeEdit;
    feld->setObjectName(name);
    feld->setDisplayFormat("HH:mm:ss");
    return feld;
}

QLabel* Beschriftung(const QString& text, QWidget* feld) {
    auto* beschriftung = new QLabel(text);
    beschriftung->setBuddy(feld);
    return beschriftung;
}

QLabel* Benannt(QLabel* label, const char* name) {
    label->setObjectName(name);
    label->setTextFormat(Qt::PlainText);
    return label;
}

QLabel* Hinweis(const QString& text) {
    auto* hinweis = new QLabel(text);
    hinweis->setWordWrap(true);
    return hinweis;
}

QHBoxLayout* Reihe(std::initializer_list<QWidget*> teile, bool mitRest) {
    auto* reihe = new QHBoxLayout;
    for (QWidget* teil : teile) reihe->addWidget(teil);
    if (mitRest) reihe->addStretch();
    return reihe;
}

QHBoxLayout* Eingerueckt(QHBoxLayout* reihe) {
    reihe->setContentsMargins(Einzug, 0, 0, 0);
    return reihe;
}

void BeschriftungenSchalten(const QWidget& dialog) {
    for (QLabel* label : dialog.findChildren<QLabel*>())
        if (label->buddy() != nullptr) label->setEnabled(label->buddy()->isEnabled());
}

namespace {

class Eintrittsmarkierer : public QObject {
public:
    explicit Eintrittsmarkierer(QLineEdit* feld) : QObject(feld), feld_(feld) {}
    bool eventFilter(QObject* objekt, QEvent* ereignis) override {
        // Behind the event, so that the click that gave the focus doesn't take the selection back.
        if (ereignis->type() == QEvent::FocusIn) QTimer::singleShot(0, feld_, &QLineEdit::selectAll);
        return QObject::eventFilter(objekt, ereignis);
    }

private:
    QLineEdit* feld_;
};

}  // namespace

void MarkiereBeiEintritt(QLineEdit* feld) {
    feld->installEventFilter(new Eintrittsmarkierer(feld));
}

}  // namespace zek
