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
    void FensterNachVorn() override {}
    void Ton() override {}

    void Protokolleintrag(const clTitelobjekt&, std::int32_t, float, float, bool) override {}

    void Startinfo(const std::string&) override {}
    void FortschrittMaximum(int) override {}
    void FortschrittWert(int) override {}
    void Sanduhr(bool) override {}

    bool OhneBildschirm() const override { return true; }
    StarthinweisAntwort ZeigeStarthinweis() override { return {}; }
    void VerzoegerungBeginnt(const std::string& text, int maximum) override;
    void VerzoegerungWert(int) override {}
    bool VerzoegerungAbgebrochen() const override { return false; }
    void VerzoegerungEndet() override {}
    void LadeHauptfenster() override {}
    // Entries of the status list are wanted only where there is an output for them.
    bool HauptfensterGeladen() const override { return static_cast<bool>(ausgabe_); }
    bool HauptfensterMinimiert() const override { return true; }
    void TaskleistenstilSetzen(bool) override {}
    void ZeigeStartansicht() override {}
    bool Verbindungseinstellungen(Verbindungsangaben& angaben) override;
    void ZeigeArbeitsansicht(const std::string&) override {}
    void BefehlsmarkeSetzen(int, bool) override {}
    void KomprimierteAnsichtSetzen(bool) override {}
    void InitSysTray() override {}
    void ZeigeBeispieltitel() override {}

    void StatuslisteEintrag(Datum zeit, const std::string& text, bool fett) override;
    void TitelInfo(const std::string&) override {}
    void Statuspanel(const std::string&) override {}
    Datenpflegeanzeige& DatenpflegeFensterErzeugen() override;
    void DatenpflegeFensterFreigeben() override;

    bool InTaskleisteAngehakt() const override { return false; }
    void TrayFreigeben() override {}
    void FensterplatzSpeichern() override {}
    void MonitorplatzSpeichern() override {}

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
