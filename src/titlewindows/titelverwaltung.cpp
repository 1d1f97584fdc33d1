#include "titlewindows/titelverwaltung.h"

#include "bestand/inspektordatei.h"
#include "bestand/titelaenderung.h"
#include "fensterwerk/arbeitsfenster.h"
#include "fensterwerk/felder.h"
#include "fensterwerk/fensterplatz.h"
#include "fensterwerk/hilfe.h"
#include "fensterwerk/wartezeiger.h"
#include "platform/ohnefehler.h"
#include "titlewindows/katalogdialoge.h"
#include "titlewindows/titel_bearbeiten.h"
#include "titlewindows/titelmodell.h"

#include <QComboBox>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QMenu>
#include <QPushButton>
#include <QTreeView>
#include <QVBoxLayout>
#include <algorithm>
#include <utility>

namespace zek {

namespace {

constexpr std::string_view AbschnittVerwaltung = "Titelverwaltung", LetzterOrdner = "OrdnerIndex";
constexpr const char* VerwaltungPlatz = "ZEK-IB-Titelverwaltung";
constexpr const char* VerwaltungSpalten = "IBZEKTitelverwaltung";
constexpr const char* NichtsMarkiert = "Markieren Sie bitte zunächst einen Titel!";

// Shows how far an operation on titles is.
Fortschritt Zeiger(Arbeitsfenster& fenster, const QString& was) {
    return [&fenster, was](std::size_t fertig, std::size_t gesamt) {
        return fenster.Schritt(static_cast<int>(fertig), was.arg(fertig + 1).arg(gesamt));
    };
}

}  // namespace

frmTitelverwaltung::frmTitelverwaltung(QWidget* eltern, Titelfensterumgebung um)
    : Dialogbasis(eltern, "Titelverwaltung", um.Hilfe, hilfeseite::Titel), um_(std::move(um)), kataloge_(um_.Bestand) {
    setObjectName("frmTitelverwaltung");
    LOrdner_ = Auswahlfeld("LOrdner", {}, false);
    LOrdner_->setMaxVisibleItems(25);
    auto* kopf = Reihe({Beschriftung("Ka&talog:", LOrdner_), LOrdner_}, false);
    kopf->setStretchFactor(LOrdner_, 1);
    auto* links = new QVBoxLayout;
    links->addLayout(kopf);
    links->addWidget(MacheListe(), 1);
    auto* aufbau = new QHBoxLayout(this);
    aufbau->addLayout(links, 1);
    aufbau->addLayout(MacheKnoepfe());
    setSizeGripEnabled(true);

    Fensterplatz platz(um_.Speicher);
    if (!platz.Laden(*this, VerwaltungPlatz)) resize(sizeHint().expandedTo({960, 560}));
    for (int spalte = 0; spalte < Titelmodell::Spaltenzahl; ++spalte)
        LTitelliste_->header()->resizeSection(spalte, Titelmodell::Breiten[spalte] / TwipsProPixel);
    platz.SpaltenLaden(*LTitelliste_->header(), VerwaltungSpalten);
    connect(LOrdner_, &QComboBox::currentIndexChanged, this, [this] { OrdnerGewaehlt(); });
    ZeigeOrdner();
    if (um_.Bestand.Titel.Titelliste.IstLeer())
        for (QPushButton* knopf : titelknoepfe_) knopf->setEnabled(false);
    LTitelliste_->setFocus();
}

QWidget* frmTitelverwaltung::MacheListe() {
    modell_ = new Titelmodell(this);
    sortierung_ = new Titelsortierung(this);
    sortierung_->setSourceModel(modell_);
    LTitelliste_ = new QTreeView;
    LTitelliste_->setObjectName("LTitelliste");
    LTitelliste_->setModel(sortierung_);
    LTitelliste_->setRootIsDecorated(false);
    LTitelliste_->setUniformRowHeights(true);
    LTitelliste_->setAlternatingRowColors(true);
    LTitelliste_->setSelectionMode(QAbstractItemView::ExtendedSelection);
    LTitelliste_->setAllColumnsShowFocus(true);
    LTitelliste_->setContextMenuPolicy(Qt::CustomContextMenu);
    LTitelliste_->header()->setSectionsClickable(true);
    LTitelliste_->header()->setSortIndicatorShown(true);
    LTitelliste_->header()->setSortIndicator(-1, Qt::AscendingOrder);
    ZeigeLeertext(*LTitelliste_,
                  "Hier stehen keine Titel. Neue Titel legen Sie mit „Titel zufügen“ im Hauptfenster an.");
    connect(LTitelliste_->header(), &QHeaderView::sectionClicked, this, [this](int spalte) { Sortiere(spalte); });
    connect(LTitelliste_, &QTreeView::doubleClicked, this, [this] { Dateninspektor(); });
    connect(LTitelliste_, &QWidget::customContextMenuRequested, this, [this](const QPoint& ort) { Popup(ort); });
    return LTitelliste_;
}

QPushButton* frmTitelverwaltung::Knopf(const char* name, const QString& text, const QString& hinweis,
                                       void (frmTitelverwaltung::*tat)()) {
    auto* knopf = new QPushButton(text);
    knopf->setObjectName(name);
    knopf->setToolTip(hinweis);
    knopf->setAutoDefault(false);
    if (tat != nullptr) connect(knopf, &QPushButton::clicked, this, tat);
    return knopf;
}

QLayout* frmTitelverwaltung::MacheKnoepfe() {
    using F = frmTitelverwaltung;
    auto* aktivieren =
        Knopf("btnRealAktivieren", "&Bezahlt aktivieren",
              "Aktiviert für die markierten Titel die Datenaufzeichnung für Bezahlt-Kurse", &F::RealAktivieren);
    auto* alle =
        Knopf("btnAktivierenBidAsk", "Alle K&ursarten aktivieren",
              "Aktiviert für die markierten Titel die Datenaufzeichnung für alle Kursarten", &F::AktivierenBidAsk);
    auto* deaktivieren = Knopf("btnDeaktivieren", "&Deaktivieren",
                               "Deaktiviert die Datenaufzeichnung für die markierten Titel", &F::Deaktivieren);
    auto* katalog =
        Knopf("btnKatalog", "&Katalog...", "Markierte Titel in einen anderen Katalog verschieben", &F::KatalogWechseln);
    auto* bearbeiten = Knopf("btnBearbeiten", "Bea&rbeiten",
                             "Einstellungen für den markierten Titel kontrollieren/bearbeiten", &F::Bearbeiten);
    inspektor_ = Knopf("btnDateninspektor", "D&aten...", "Öffnet den Dateninspektor für den gewählten Titel",
                       &F::Dateninspektor);
    auto* loeschen = Knopf("btnLöschen", "L&öschen", "Löscht die markierten Titel aus der Titelliste", &F::Loeschen);
    auto* datenpflege =
        Knopf("btnDatenpflege", "Daten&pflege...",
              "Klicken Sie hier, wenn Sie Tickdaten für die markierten Titel nachladen möchten", &F::Datenpflege);
    auto* einstellungen =
        Knopf("btnEinstellungen", "&Einstellungen", "Einstellungen für ZEK für IB bearbeiten", &F::Einstellungen);
    auto* okay = Knopf("Okay", "&Schließen", "Schließt den Dialog und speichert alle Einstellungen ab", nullptr);
    auto* hilfe = Knopf("Hilfe", "Hilfe", "Öffnet das Handbuch an der passenden Stelle (F1)", nullptr);
    connect(okay, &QPushButton::clicked, this, &QDialog::accept);
    connect(hilfe, &QPushButton::clicked, this, [this] { ZeigeHilfe(); });
    titelknoepfe_ = {alle, bearbeiten, inspektor_, deaktivieren, loeschen, datenpflege, aktivieren};

    auto* spalte = new QVBoxLayout;
    for (QPushButton* knopf : {aktivieren, alle, deaktivieren}) spalte->addWidget(knopf);
    spalte->addSpacing(10);
    for (QPushButton* knopf : {bearbeiten, katalog, loeschen}) spalte->addWidget(knopf);
    spalte->addSpacing(10);
    for (QPushButton* knopf : {datenpflege, inspektor_, einstellungen}) spalte->addWidget(knopf);
    spalte->addStretch();
    spalte->addWidget(hilfe);
    spalte->addWidget(okay);
    return spalte;
}

void frmTitelverwaltung::ZeigeOrdner() {
    const std::vector<std::string> eintraege = kataloge_.Eintraege();
    const QSignalBlocker still(LOrdner_);
    LOrdner_->clear();
    for (const std::string& eintrag : eintraege) LOrdner_->addItem(Q(eintrag));
    LOrdner_->setCurrentIndex(
        static_cast<int>(Kataloge::Gewaehlter(eintraege, um_.Speicher.Lies(AbschnittVerwaltung, LetzterOrdner, ""))));
    OrdnerGewaehlt();
}

bool frmTitelverwaltung::StehtAufKonto() const {
    return Q(KatalogKontodaten) == LOrdner_->currentText();
}

void frmTitelverwaltung::OrdnerGewaehlt() {
    if (LOrdner_->currentIndex() < 0) return;
    ShowTitel();
    for (QPushButton* knopf : titelknoepfe_)
        if (knopf != inspektor_) knopf->setEnabled(!StehtAufKonto());
}

void frmTitelverwaltung::ShowTitel() {
    const Wartezeiger zeiger;
    const IBModul& modul = um_.Bestand.Modul;
    if (StehtAufKonto()) return modell_->Setze(Kontodateien(modul, um_.Bestand.Dateien));
    modell_->Setze(
        TitelVon(um_.Bestand.Titel.Titelliste, LOrdner_->currentText().toStdString(), LOrdner_->currentIndex() == 0));
}

// A second click on a column toggles its order; the selected row stays in sight.
void frmTitelverwaltung::Sortiere(int spalte) {
    const bool dieselbe = sortierung_->sortColumn() == spalte;
    const bool absteigend = dieselbe && sortierung_->sortOrder() == Qt::AscendingOrder;
    const Qt::SortOrder ordnung = absteigend ? Qt::DescendingOrder : Qt::AscendingOrder;
    sortierung_->sort(spalte, ordnung);
    LTitelliste_->header()->setSortIndicator(spalte, ordnung);
    if (LTitelliste_->currentIndex().isValid()) LTitelliste_->scrollTo(LTitelliste_->currentIndex());
}

// In the order in which they are shown.
std::vector<std::int32_t> frmTitelverwaltung::Markierte() const {
    QModelIndexList zeilen = LTitelliste_->selectionModel()->selectedRows();
    std::ranges::sort(zeilen, {}, &QModelIndex::row);
    std::vector<std::int32_t> nummern;
    for (const QModelIndex& zeile : zeilen)
        if (const auto nummer = modell_->Zeile(sortierung_->mapToSource(zeile).row()).Titelnummer; nummer != 0)
            nummern.push_back(nummer);
    return nummern;
}

Titelzeiger frmTitelverwaltung::Gewaehlter() const {
    const QModelIndex index = LTitelliste_->currentIndex();
    if (!index.isValid() || !LTitelliste_->selectionModel()->isRowSelected(index.row())) return nullptr;
    return um_.Bestand.Titel.Titelliste.FindeZeiger(modell_->Zeile(sortierung_->mapToSource(index).row()).Titelnummer);
}

bool frmTitelverwaltung::Hinweisen(const char* text) const {
    um_.Bestand.Fragen.ZeigeMeldung(text, meldung::Ok, 0);
    return false;
}

void frmTitelverwaltung::Schalte(bool aktiv, bool bidAsk) {
    const std::vector<std::int32_t> nummern = Markierte();
    Arbeitsfenster fenster(this, aktiv ? "Titel aktivieren" : "Titel deaktivieren", static_cast<int>(nummern.size()));
    Titelschaltung(um_.Bestand)
        .Schalte(
            nummern, aktiv, bidAsk,
            [this](const clTitelobjekt& titel, Schaltstand stand) { modell_->Geschaltet(titel.id, stand); },
            Zeiger(fenster, "Titel %1 von %2"));
}

void frmTitelverwaltung::KatalogWechseln() {
    const char* const keineAnderen =
        "Es gibt noch keine anderen Kataloge, in die die markierten Titel verschoben werden könnten.";
    if (LOrdner_->count() < 3) return void(Hinweisen(keineAnderen));
    if (StehtAufKonto()) return void(Hinweisen("Die Konto-Titel können nicht verschoben werden."));
    const std::vector<std::int32_t> nummern = Markierte();
    if (nummern.empty())
        return void(
            Hinweisen("Markieren Sie zunächst bitte die Titel, die Sie in einen anderen Katalog verschieben möchten."));
    std::vector<std::string> eintraege;
    eintraege.reserve(static_cast<std::size_t>(LOrdner_->count()));
    for (int i = 0; i < LOrdner_->count(); ++i) eintraege.push_back(LOrdner_->itemText(i).toStdString());
    const auto ziele = Kataloge::Ziele(eintraege, LOrdner_->currentText().toStdString());
    if (ziele.empty()) return void(Hinweisen(keineAnderen));
    frmKatalogWahl wahl(this, um_.Bestand.Fragen, um_.Hilfe, ziele);
    if (wahl.exec() != QDialog::Accepted) return;
    const std::string ziel = wahl.Katalog();
    const std::string anfang = nummern.size() == 1 ? std::string("Soll der markierte ")
                                                   : "Sollen die " + std::to_string(nummern.size()) + " markierten ";
    if (um_.Bestand.Fragen.ZeigeMeldung(anfang + "Titel in den Katalog '" + ziel +
                                            "' verschoben werden? Dabei werden auch die zu den Titeln gehörenden "
                                            "ZEK-Dateien in den entsprechenden Ordner verschoben.",
                                        meldung::JaNein, 0) != meldung::AntwortJa)
        return;
    {
        Arbeitsfenster fenster(this, "Titel verschieben", static_cast<int>(nummern.size()));
        kataloge_.Verschiebe(nummern, ziel, Zeiger(fenster, "Titel %1 von %2"));
    }
    um_.Bestand.Titelspeichern();
    ShowTitel();
    LeerenKatalogEntfernen(Q(ziel));
}

// The catalog that is shown has lost its last title. `danach`: the entry to go on with; empty for the first one.
void frmTitelverwaltung::LeerenKatalogEntfernen(const QString& danach) {
    const int stelle = LOrdner_->currentIndex();
    if (modell_->rowCount() > 0 || stelle < 1) return;
    um_.Bestand.Titel.Katalogliste.Entferne(LOrdner_->currentText().toStdString());
    if (um_.Bestand.Fragen.ZeigeMeldung("Dieser Katalog enthält keine Titel mehr. Soll er jetzt aus der "
                                        "Titelverwaltung entfernt werden? Wenn Sie 'Nein' klicken, wird der Katalog "
                                        "erst beim nächsten Öffnen der Titelverwaltung nicht mehr angezeigt.",
                                        meldung::JaNein, 0) != meldung::AntwortJa)
        return;
    {
        const QSignalBlocker still(LOrdner_);
        LOrdner_->removeItem(stelle);
        LOrdner_->setCurrentIndex(
            std::max(0, danach.isEmpty() ? 0 : LOrdner_->findText(danach, Qt::MatchExactly | Qt::MatchCaseSensitive)));
    }
    OrdnerGewaehlt();
}

void frmTitelverwaltung::Bearbeiten() {
    const Titelzeiger titel = Gewaehlter();
    if (!titel) return void(Hinweisen(NichtsMarkiert));
    const Titelaenderung aenderung(um_.Bestand);
    frmTitelBearbeiten dialog(this, um_, aenderung.FelderVon(*titel));
    if (dialog.exec() != QDialog::Accepted || !dialog.Geaendert()) return;
    const Wartezeiger zeiger;
    std::vector<std::int32_t> markierte = Markierte();
    if (std::ranges::find(markierte, titel->id) == markierte.end()) markierte.push_back(titel->id);
    Titelaenderung(um_.Bestand)
        .Aendere(*titel, dialog.Ergebnis(), markierte, [this](const clTitelobjekt& geschaltet, Schaltstand stand) {
            modell_->Geschaltet(geschaltet.id, stand);
        });
    modell_->Aktualisiere(*titel);
}

void frmTitelverwaltung::Loeschen() {
    const std::vector<std::int32_t> nummern = Markierte();
    if (nummern.empty()) return void(Hinweisen("Markieren Sie bitte zunächst die Titel, die Sie löschen möchten."));
    frmTitelLoeschen frage(this, um_.Hilfe);
    if (frage.exec() != QDialog::Accepted) return;
    std::size_t ungeloescht = 0;
    {
        Arbeitsfenster fenster(this, "Titel löschen", static_cast<int>(nummern.size()));
        ungeloescht = kataloge_.Loesche(
            nummern, frage.MitDateien(), [this](std::int32_t nummer) { modell_->Entferne(nummer); },
            Zeiger(fenster, "Titel %1 von %2"));
    }
    LeerenKatalogEntfernen({});
    if (ungeloescht > 0)
        um_.Bestand.Fragen.ZeigeMeldung("Es konnten " + std::to_string(ungeloescht) +
                                            " Datei(en) nicht gelöscht werden (schreibgeschützt oder in Benutzung).",
                                        meldung::Ok, 0);
}

void frmTitelverwaltung::Datenpflege() {
    std::vector<Titelzeiger> titel;
    for (const std::int32_t nummer : Markierte())
        if (auto gefunden = um_.Bestand.Titel.Titelliste.FindeZeiger(nummer)) titel.push_back(std::move(gefunden));
    um_.Datenpflege(titel);
}

void frmTitelverwaltung::Einstellungen() {
    um_.Einstellungen();
    const IBModul& modul = um_.Bestand.Modul;
    const bool konto = um_.Bestand.GibtKontotitel() || modul.Einstellungen.KontenDatenAufzeichnen;
    if (konto && LOrdner_->findText(Q(KatalogKontodaten)) < 0) LOrdner_->addItem(Q(KatalogKontodaten));
    if (StehtAufKonto()) ShowTitel();
}

void frmTitelverwaltung::Dateninspektor() {
    const QModelIndex index = LTitelliste_->currentIndex();
    if (!index.isValid() || !LTitelliste_->selectionModel()->isRowSelected(index.row()))
        return void(Hinweisen(NichtsMarkiert));
    if (StehtAufKonto()) {
        const Uebersichtszeile& zeile = modell_->Zeile(sortierung_->mapToSource(index).row());
        return um_.Inspektor(Kontodateiordner(um_.Bestand.Modul) + zeile.Dateiname);
    }
    const Titelzeiger titel = Gewaehlter();
    if (!titel) return;
    frmKursartWahl wahl(this);
    if (wahl.exec() == QDialog::Accepted) ZeigeKursart(titel, wahl.Kursart());
}

void frmTitelverwaltung::ZeigeKursart(const Titelzeiger& titel, std::int32_t kursart) {
    const Wartezeiger zeiger;
    OhneFehler("Datei für den Dateninspektor", [&] {
        if (const auto pfad = Inspektordatei(um_.Bestand, *titel, kursart)) um_.Inspektor(*pfad);
    });
}

void frmTitelverwaltung::Popup(const QPoint& ort) {
    const QModelIndex getroffen = LTitelliste_->indexAt(ort);
    if (!getroffen.isValid() || StehtAufKonto()) return;
    const auto nummer = modell_->Zeile(sortierung_->mapToSource(getroffen).row()).Titelnummer;
    const Titelzeiger titel = um_.Bestand.Titel.Titelliste.FindeZeiger(nummer);
    if (!titel) return;
    QMenu menue(this);
    menue.setObjectName("PopupMenue");
    std::int32_t kursart = 0;
    for (const char* text : {"Bezahlt-Daten anzeigen", "Brief-Daten anzeigen", "Geld-Daten anzeigen"})
        menue.addAction(text)->setData(++kursart);
    if (const QAction* gewaehlt = menue.exec(LTitelliste_->viewport()->mapToGlobal(ort)))
        ZeigeKursart(titel, gewaehlt->data().toInt());
}

void frmTitelverwaltung::keyPressEvent(QKeyEvent* ereignis) {
    const bool inListe = focusWidget() == LTitelliste_ && !StehtAufKonto();
    if (inListe && ereignis->key() == Qt::Key_Delete) return Loeschen();
    if (inListe && ereignis->key() == Qt::Key_F2) return Bearbeiten();
    if (focusWidget() == LTitelliste_ && (ereignis->key() == Qt::Key_Return || ereignis->key() == Qt::Key_Enter))
        return Dateninspektor();
    Dialogbasis::keyPressEvent(ereignis);
}

void frmTitelverwaltung::done(int ergebnis) {
    um_.Speicher.Schreibe(AbschnittVerwaltung, {{LetzterOrdner, LOrdner_->currentText().toStdString()}});
    Fensterplatz platz(um_.Speicher);
    platz.Speichern(*this, VerwaltungPlatz);
    platz.SpaltenSpeichern(*LTitelliste_->header(), VerwaltungSpalten);
    Dialogbasis::done(ergebnis);
}

}  // namespace zek
