// The bridges between the rooms: each plays the role that a lower room has named for its neighbours, and passes the
// calls on to the object of the assembly that does the work.
#pragma once

#include "backfill/laufanzeige.h"
#include "backfill/wahl.h"
#include "session/gesicht.h"
#include "supervision/neustart.h"
#include "supervision/runde.h"

#include <functional>

namespace zek {

struct Zusammenbau;

class Neustartbruecke final : public Neustart::Sitzung {
public:
    // `entladen` runs the shutdown order.
    Neustartbruecke(Zusammenbau& teile, std::function<void()> entladen);

    bool TwsVerbunden() const override;
    void disconnect() override;
    bool DatenpflegeAbbrechen() override;
    void DatenpflegeFensterFreigeben() override;
    void HauptfensterEntladen() override { entladen_(); }

private:
    Zusammenbau& teile_;
    std::function<void()> entladen_;
};

class Rundenbruecke final : public Runde::Mitspieler {
public:
    Rundenbruecke(Zusammenbau& teile, Offlineanzeige& anzeige);

    void AlleMarktdatenAbbestellen(std::int32_t& count) override;
    void AlleMarktdatenAbonnieren(std::int32_t count) override;
    void KontoabosAnfordern() override;
    void TWSVerbindungAufbauen() override;
    bool TwsVerbunden() const override;
    void reqCurrentTime() override;
    void VerbergeOfflinewarnung() override;
    bool StarteAutoBackfill(std::optional<Zeitpunkt> zeitpunkt) override;
    void AtomZeitAbfrage() override;
    Zeitpunkt GespeichertBis(Zeitpunkt zeit) const override;

private:
    Zusammenbau& teile_;
    Offlineanzeige& anzeige_;
};

class Datenpflegebruecke final : public Datenpflegefenster, public Datenpflegeoptionen {
public:
    explicit Datenpflegebruecke(Gesicht& gesicht) : gesicht_(gesicht) {}

    Datenpflegeanzeige& Erzeuge() override { return gesicht_.DatenpflegeFensterErzeugen(); }
    void GibFrei() override { gesicht_.DatenpflegeFensterFreigeben(); }
    void Statuspanel(const std::string& text) override { gesicht_.Statuspanel(text); }
    void Ton() override { gesicht_.Ton(); }
    std::optional<Datenpflegewahl> Frage(const Vorgabe& vorgabe) override {
        return gesicht_.DatenpflegeOptionen(vorgabe);
    }

private:
    Gesicht& gesicht_;
};

}  // namespace zek
