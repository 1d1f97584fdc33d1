// What the monitor shows, without its window. Static mode: one fixed line per active title, whose cells change.
// Price list mode: a line for each tick. In both, a tick only notes what is new; Uebernehme, called by a timer, brings
// it to the view. So the cost of a tick is flat, however slow the view is.
#pragma once

#include "titles/titelliste.h"

#include <QAbstractTableModel>
#include <QString>
#include <array>
#include <cstdint>
#include <deque>
#include <unordered_map>
#include <vector>

namespace zek {

class Monitormodell : public QAbstractTableModel {
public:
    // The price list holds at most 2000 lines; one more, and the first 1000 go.
    static constexpr std::size_t HoechsteZeilen = 2000;
    static constexpr std::size_t Schnitt = 1000;

    explicit Monitormodell(QObject* eltern = nullptr) : QAbstractTableModel(eltern) {}

    // Empties the list and, in static mode, adds a line for each active title.
    void Baue(bool statisch, const Titelliste& titel);
    bool Statisch() const { return statisch_; }

    // One tick at day fraction `zeit` (a whole date is cut to its time). `kursart` 1, 2, 3 or a depth kind.
    void Tick(const clTitelobjekt& titel, std::int32_t kursart, float kurs, float volume, bool verworfen,
              Tageszeit zeit);

    // Makes visible what ticks have noted since the last call. True when lines were added to the price list.
    bool Uebernehme();

    // The longest volume of any tick since the list was built, as it is shown.
    QString GroessterUmsatz() const;
    // The columns that hold volumes, in the present mode.
    std::vector<int> Umsatzspalten() const;

    // The title of a line; 0 when there is none.
    std::int32_t TitelId(int zeile) const;

    int rowCount(const QModelIndex& eltern = {}) const override;
    int columnCount(const QModelIndex& eltern = {}) const override;
    QVariant data(const QModelIndex& index, int rolle) const override;
    QVariant headerData(int spalte, Qt::Orientation richtung, int rolle) const override;

private:
    enum StatischeSpalte { Name, WKN, Boerse, Zeit, Geld, VolGeld, Bezahlt, Volume, Brief, VolBrief, AnzahlStatisch };
    enum ListenSpalte { LGeld = 4, LBezahlt, LBrief, LVolume, AnzahlListe };

    struct StatischeZeile {
        std::int32_t id = 0;
        std::array<QString, AnzahlStatisch> Text;
        std::array<QString, AnzahlStatisch> Neu;  // the cell's pending text; null when there is none
        int Stellen = 0;                          // most decimals that a price of this line had
        bool Geaendert = false;
    };
    // Raw values; the texts are made when a line is looked at.
    struct Listenzeile {
        QString Name;
        QString WKN;
        QString Boerse;
        std::int32_t id = 0;
        std::int32_t kursart = 0;
        float kurs = 0;
        float volume = 0;
        bool verworfen = false;
        Tageszeit zeit;
    };

    StatischeZeile& ZeileFuer(const clTitelobjekt& titel);
    void TickStatisch(const clTitelobjekt& titel, std::int32_t kursart, float kurs, float volume, Tageszeit zeit);
    QString Statischertext(int zeile, int spalte) const;
    QString Listentext(const Listenzeile& zeile, int spalte) const;
    bool UebernehmeListe();
    void UebernehmeStatisch();

    bool statisch_ = false;
    std::vector<StatischeZeile> zeilen_;
    std::unordered_map<std::int32_t, std::size_t> zeileNachId_;
    float groessterUmsatz_ = 0;
    std::size_t sichtbar_ = 0;  // lines of zeilen_ that the view knows of
    std::deque<Listenzeile> liste_;
    std::vector<Listenzeile> wartend_;
};

// 999 is "999", 1000 is "1.000".
QString Volumentext(float volume);
// Digits behind the decimal sign of a price's text.
int Nachkommastellen(float kurs);

}  // namespace zek
