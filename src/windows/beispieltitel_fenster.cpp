#include "windows/beispieltitel_fenster.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>
#include <utility>

namespace zek {

namespace {

constexpr int Fensterbreite = 460;

QLabel* Absatz(const QString& text) {
    auto* absatz = new QLabel(text);
    absatz->setWordWrap(true);
    return absatz;
}

}  // namespace

frmBeispieltitel::frmBeispieltitel(QWidget* eltern, Meldungen& meldungen,
                                   std::function<void(const Beispielbereiche&)> anlegen,
                                   std::function<void()> nieWiederFragen)
    : Dialogfenster(eltern),
      meldungen_(meldungen),
      anlegen_(std::move(anlegen)),
      nieWiederFragen_(std::move(nieWiederFragen)) {
    setObjectName("frmBeispieltitel");
    setWindowTitle("ZEK für IB - Titelverknüpfungen zufügen");
    LBereiche_ = new QListWidget;
    LBereiche_->setObjectName("LBereiche");
    for (const char* bereich : {" Forex", " Futures", " Indizes", " Nasdaq"}) {
        auto* eintrag = new QListWidgetItem(bereich, LBereiche_);
        eintrag->setFlags(eintrag->flags() | Qt::ItemIsUserCheckable);
        eintrag->setCheckState(Qt::Checked);
    }
    LBereiche_->setCurrentRow(0);
    LBereiche_->setFixedHeight(LBereiche_->sizeHintForRow(0) * 4 + 2 * LBereiche_->frameWidth() + 8);
    auto* btnWeiter = new QPushButton("Weiter");
    btnWeiter->setObjectName("btnWeiter");
    btnWeiter->setDefault(true);
    connect(btnWeiter, &QPushButton::clicked, this, [this] { Weiter(); });

    auto* kopf = Absatz("Es sind noch keine Titel zur Aufzeichnung zugefügt worden.");
    QFont fett = kopf->font();
    fett.setBold(true);
    kopf->setFont(fett);
    auto* unten = new QHBoxLayout;
    unten->addStretch();
    unten->addWidget(btnWeiter);
    auto* aufbau = new QVBoxLayout(this);
    aufbau->setSpacing(10);
    aufbau->addWidget(kopf);
    aufbau->addWidget(Absatz(
        "Auf Wunsch werden nun einige Titel zur Datenaufzeichnung zugefügt, damit Sie gleich loslegen können. Sie "
        "können später jederzeit diese Titel in der Titelverwaltung bearbeiten oder weitere Titel zufügen."));
    aufbau->addWidget(Absatz("Wählen Sie die Bereiche, aus denen Beispiel-Titel zugefügt werden sollen:"));
    aufbau->addWidget(LBereiche_);
    aufbau->addWidget(Absatz(
        "Hinweis: Damit tatsächlich Daten für die zugefügten Titel aufgezeichnet werden, müssen die entsprechenden "
        "Marktdaten bei IB abboniert sein, oder Sie verwenden die TWS mit einem Demo-Account."));
    aufbau->addStretch();
    aufbau->addLayout(unten);
    resize(Fensterbreite, aufbau->totalHeightForWidth(Fensterbreite));
    LBereiche_->setFocus();
}

Beispielbereiche frmBeispieltitel::Auswahl() const {
    const auto angehakt = [this](int zeile) { return LBereiche_->item(zeile)->checkState() == Qt::Checked; };
    return {angehakt(0), angehakt(1), angehakt(2), angehakt(3)};
}

void frmBeispieltitel::Weiter() {
    const Beispielbereiche auswahl = Auswahl();
    if (!auswahl.Keiner()) {
        anlegen_(auswahl);
        accept();
        return;
    }
    const auto frage = [this](const char* text) {
        return meldungen_.ZeigeMeldung(text, meldung::JaNein, 0) == meldung::AntwortJa;
    };
    if (!frage("Sollen wirklich keine Titel zur Datenaufzeichnung zugefügt werden?")) return;
    if (frage("Soll dieser Dialog künftig beim Starten von ZEK für IB nicht mehr angezeigt werden?"))
        nieWiederFragen_();
    accept();
}

}  // namespace zek
