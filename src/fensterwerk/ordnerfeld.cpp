#include "fensterwerk/ordnerfeld.h"

#include "fensterwerk/text.h"

#include <QHBoxLayout>
#include <QLineEdit>
#include <QToolButton>

namespace zek {

Ordnerfeld::Ordnerfeld(const QString& name, const QString& hinweis, const QString& titel, Dateiwahl& wahl)
    : titel_(titel), wahl_(wahl), feld_(new QLineEdit) {
    feld_->setObjectName(name);
    feld_->setToolTip(hinweis);
    auto* knopf = new QToolButton;
    knopf->setObjectName("btnWahl(" + name + ")");
    knopf->setText("…");
    knopf->setToolTip("Ordner wählen");
    knopf->setFocusPolicy(Qt::StrongFocus);
    connect(knopf, &QToolButton::clicked, this, [this] { Waehle(); });
    auto* aufbau = new QHBoxLayout(this);
    aufbau->setContentsMargins(0, 0, 0, 0);
    aufbau->addWidget(feld_, 1);
    aufbau->addWidget(knopf);
    setFocusProxy(feld_);
}

void Ordnerfeld::Waehle() {
    if (const auto ordner = wahl_.Ordner(this, titel_, feld_->text().trimmed().toStdString())) {
        feld_->setText(Q(*ordner));
        feld_->setFocus();
    }
}

}  // namespace zek
