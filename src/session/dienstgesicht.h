// The face without a screen: nothing ever blocks. Messages and questions go to the log; a question counts as closed
// by its time limit, which is the answer 0.
#pragma once

#include "session/gesicht.h"

#include <functional>
#include <string>

namespace zek {

class Dienstgesicht final : public Gesicht {
public:
    // `ausgabe`, where given, gets each log line as it is shown in a status list.
    explicit Dienstgesicht(std::function<void(const std::string& zeile)> ausgabe = {});

    // Where messages and questions go; until then they are dropped. Must outlive this object's use.
    void ProtokollierenIn(Statusausgabe& protokoll) { protokoll_ = &protokoll; }

    // The message or question shown last, "" before the first.
    const std::string& LetzteMeldung() const { return letzteMeldung_; }

    int ZeigeMeldung(const std::string& text, int flags, int sekunden) override;

    bool OfflinewarnungSichtbar() const override { return offlinewarnung_; }
    void ZeigeOfflinewarnung(const std::string&) override { offlinewarnung_ = true; }
    void ZeigeOfflinewarnung() override { offlinewarnung_ = true; }
    void VerbergeOfflinewarnung() override { offlinewarnung_ = false; }

    bool OhneBildschirm() const override { return true; }
    void VerzoegerungBeginnt(const std::string& text, int maximum) override;
    // Entries of the status list are wanted only where there is an output for them.
    bool HauptfensterGeladen() const override { return static_cast<bool>(ausgabe_); }
    bool HauptfensterMinimiert() const override { return true; }
    bool Verbindungseinstellungen(Verbindungsangaben& angaben) override;

    void StatuslisteEintrag(Zeitpunkt zeit, const std::string& text, bool fett) override;
    Datenpflegeanzeige& DatenpflegeFensterErzeugen() override;
    void DatenpflegeFensterFreigeben() override;

private:
    // Reports each title and the end of the way, not each step.
    class Datenpflegemelder final : public StummeDatenpflegeanzeige {
    public:
        explicit Datenpflegemelder(Dienstgesicht& gesicht) : gesicht_(gesicht) {}
        void Titellabel(const std::string& text) override;
        void NeuerLauf() { titel_.clear(); }

    private:
        Dienstgesicht& gesicht_;
        std::string titel_;
    };

    void Melde(const std::string& text);

    std::function<void(const std::string&)> ausgabe_;
    Statusausgabe* protokoll_ = nullptr;
    std::string letzteMeldung_;
    bool offlinewarnung_ = false;
    Datenpflegemelder datenpflege_{*this};
};

}  // namespace zek
