// What the buttons of the parameter table do: save edited rows into titles, files and subscriptions; discard; take rows
// out; switch titles off; make new titles.
#pragma once

#include "bestand/parametertabelle.h"

#include <cstdint>
#include <string>
#include <vector>

namespace zek {

class Tabellenbefehle {
public:
    // `tabelle` must outlive the object.
    explicit Tabellenbefehle(Parametertabelle& tabelle) : tabelle_(tabelle), um_(tabelle.Umgebung()) {}

    struct Ergebnis {
        bool Fertig = false;  // the walk has reached its end
        int Zeile = 0;        // to be selected: the one that was refused; 0 for none
    };

    // Every edited row, the hidden ones too, into its title, the first to the last, with its questions. What was saved
    // before a refusal stays saved. Doesn't save the definitions.
    Ergebnis Speichern(const Fortschritt& fortschritt = {});
    // The values of the titles again, by position. False when nothing was done.
    bool Verwerfen();
    enum class Entfernung { Nichts, Entfernt, AlleEntfernt };
    Entfernung Entfernen(const std::vector<int>& zeilen);
    // At once, paced; only the other edits wait for a save. False when nothing was done.
    bool Deaktivieren(const std::vector<int>& zeilen, const Fortschritt& fortschritt = {});

    // New titles from edited rows; their source titles stay as they are. Empty when there are none.
    struct Neue {
        std::vector<Titelzeiger> Titel;
        int Zeile = 0;  // to be selected: the one that was refused
    };
    Neue NeueTitel();

    enum class Schluss { Bleibt, Schliesst };
    // The question about unsaved changes. `zeile`: to be selected when a save was refused.
    Schluss Schliessen(int& zeile);

private:
    std::vector<std::string> LiesZeile(int zeile, clTitelobjekt& titel) const;
    int FrageWarnungen(int zeile, const std::vector<std::string>& warnungen, const char* frage) const;
    bool MeldeDoppelten(const clTitelobjekt& angaben, const std::string& dateiname, std::int32_t ausser) const;
    void Uebertrage(const clTitelobjekt& angaben, clTitelobjekt& titel) const;
    void AbonniereNeu(clTitelobjekt& titel) const;
    void ZeigeDeaktiviert(const clTitelobjekt& titel);
    bool Ja(const std::string& frage) const;
    bool Hinweis(const std::string& text) const;

    Parametertabelle& tabelle_;
    const Bestandsumgebung& um_;
};

}  // namespace zek
