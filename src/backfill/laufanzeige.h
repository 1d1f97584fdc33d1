// What a run shows: the labels of its window, its progress and the time to go. Shows nothing once the window is gone.
#pragma once

#include "backfill/anfragetakt.h"
#include "modul/rollen.h"
#include "platform/uhr.h"

#include <functional>
#include <optional>
#include <string>

namespace zek {

// The window side of a run.
class Datenpflegefenster {
public:
    virtual ~Datenpflegefenster() = default;
    // Shows the progress window.
    virtual Datenpflegeanzeige& Erzeuge() = 0;
    // Hides and releases it; its callbacks aren't called any more.
    virtual void GibFrei() = 0;
    // Second panel of the main window's status bar; an empty text takes it away.
    virtual void Statuspanel(const std::string& text) = 0;
    virtual void Ton() = 0;
};

class Laufanzeige {
public:
    Laufanzeige(Datenpflegefenster& fenster, const Uhr& uhr, const Anfragetakt& takt)
        : seite_(fenster), uhr_(uhr), takt_(takt) {}

    void Erzeuge(std::function<void()> beiAbbruch);
    void GibFrei();

    Datenpflegeanzeige& Fenster();
    void Statuslabel(const std::string& text, bool rot = false);
    bool StatusRot() const { return statusRot_; }
    void Ton() { seite_.Ton(); }

    // ---- progress
    void ErwarteSerien(int anzahl) { serienGesamt_ = anzahl; }
    void BeginneSerie(Zeitpunkt start, std::optional<Zeitpunkt> ende);
    // The series goes on backwards from here; none: from the present.
    void SerieBei(std::optional<Zeitpunkt> ende) { ende_ = ende; }
    void SerieFertig() { ++serienFertig_; }
    // One answer took so long and covered so much of history.
    void Beantwortet(Dauer dauer, Dauer bewegt);
    // `wartezeit`: before the next request.
    void ZeigeFortschritt(Dauer wartezeit = {});

private:
    Dauer Restspanne() const;

    Datenpflegefenster& seite_;
    const Uhr& uhr_;
    const Anfragetakt& takt_;
    Datenpflegeanzeige* fenster_ = nullptr;
    StummeDatenpflegeanzeige stumm_;
    bool statusRot_ = false;

    int serienGesamt_ = 0;
    int serienFertig_ = 0;
    Zeitpunkt start_{};  // of the present series
    std::optional<Zeitpunkt> ende_;
    Dauer spanne_{};
    // Of the answers so far.
    Dauer bewegt_{};
    Dauer antwortdauer_{};
    int antworten_ = 0;
};

}  // namespace zek
