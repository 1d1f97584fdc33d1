// frmTitelverwaltung: the titles of a catalog or of all, switched, moved, deleted, edited and filled while the session
// runs.
#pragma once

#include "bestand/kataloge.h"
#include "titlewindows/titelfenster.h"

#include <cstdint>
#include <vector>

class QComboBox;
class QModelIndex;
class QPushButton;
class QTreeView;

namespace zek {

class Titelmodell;
class Titelsortierung;

class frmTitelverwaltung : public Dialogbasis {
public:
    frmTitelverwaltung(QWidget* eltern, Titelfensterumgebung um);

    // The catalogs into their list, with the one of the last time chosen, which shows its titles.
    void ZeigeOrdner();
    // The list of the chosen catalog anew.
    void ShowTitel();
    void done(int ergebnis) override;

protected:
    void keyPressEvent(QKeyEvent* ereignis) override;

private:
    QWidget* MacheListe();
    QLayout* MacheKnoepfe();
    QPushButton* Knopf(const char* name, const QString& text, const QString& hinweis,
                       void (frmTitelverwaltung::*tat)());
    void OrdnerGewaehlt();
    void Sortiere(int spalte);
    void Popup(const QPoint& ort);
    bool StehtAufKonto() const;
    std::vector<std::int32_t> Markierte() const;
    Titelzeiger Gewaehlter() const;
    bool Hinweisen(const char* text) const;
    void Schalte(bool aktiv, bool bidAsk);
    void RealAktivieren() { Schalte(true, false); }
    void AktivierenBidAsk() { Schalte(true, true); }
    void Deaktivieren() { Schalte(false, false); }
    void KatalogWechseln();
    void LeerenKatalogEntfernen(const QString& danach);
    void Bearbeiten();
    void Loeschen();
    void Datenpflege();
    void Einstellungen();
    void Dateninspektor();
    void ZeigeKursart(const Titelzeiger& titel, std::int32_t kursart);

    Titelfensterumgebung um_;
    Kataloge kataloge_;
    QComboBox* LOrdner_;
    QTreeView* LTitelliste_;
    Titelmodell* modell_;
    Titelsortierung* sortierung_;
    std::vector<QPushButton*> titelknoepfe_;  // of no use without titles
    QPushButton* inspektor_ = nullptr;
};

}  // namespace zek
