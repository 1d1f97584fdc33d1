// Single titles as a cause of gaps: one is switched off, waits for its first tick behind a subscription, or is refused.
// Says of each active title how it is recorded.
//
// A title waits from the moment at which it lost its stream until its own first tick. Waits that are over within two
// seconds become one line; longer ones are written while they last.
#pragma once

#include "luecken/aufzeichnungsweise.h"
#include "modul/ibmodul.h"
#include "supervision/offeneluecken.h"
#include "supervision/stromluecken.h"

#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace zek {

class Titelluecken {
public:
    Titelluecken(const Titelbestand& bestand, OffeneLuecken& offen) : bestand_(bestand), offen_(offen) {}

    // All titles are in the list. From here on they are looked after.
    void TitelGeladen(Zeitpunkt start);
    // All streams were lost, and are being asked for again from now on.
    void DurchgangBeginnt(Zeitpunkt jetzt);
    void Abonniert(const clTitelobjekt& titel, Zeitpunkt jetzt);
    void Abbestellt(const clTitelobjekt& titel, Zeitpunkt jetzt);
    void Meldung(const clTitelobjekt& titel, int code, Zeitpunkt jetzt);
    void VerbindungWeg(Zeitpunkt jetzt);
    // The program ends.
    void Beende(Zeitpunkt jetzt);
    // Once a second.
    void Pruefe(Zeitpunkt jetzt);

    Stromluecken::Titellage Lage() const { return {aktive_, abonnierte_.size()}; }
    // Titles with a stream that gives ticks.
    std::vector<std::int32_t> Laufende() const;
    // Base name of a title that is looked after; null for others.
    const std::string* Name(std::int32_t id) const;

private:
    struct Titelstand {
        std::string Name;
        bool Aktiv = false;  // as the evidence has it
        Aufzeichnungsweise Weise;
        std::optional<Zeitpunkt> NeuSeit;  // switched on then, but the evidence doesn't say so yet
        bool Abonniert = false;
        Zeitpunkt Abozeit{};
        std::optional<Zeitpunkt> WartetSeit;  // for its first tick
        std::string_view WartetGrund;
        bool WartetGeschrieben = false;
        std::string Abgelehnt;  // the cause of its refusal; "" for none
        std::string Tiefe;      // the same of its depth
    };

    Titelstand* Finde(const clTitelobjekt& titel);
    void LerneKennen(clTitelobjekt& titel, Zeitpunkt jetzt);
    void PruefeTitel(clTitelobjekt& titel, Titelstand& stand, Zeitpunkt jetzt);
    void PruefeNeue(const clTitelobjekt& titel, Titelstand& stand, Zeitpunkt jetzt);
    void SchalteAus(std::int32_t id, Titelstand& stand, Zeitpunkt jetzt);
    void EntferneVerschwundene(Zeitpunkt jetzt);
    void VergissAlteNamen(Zeitpunkt start);
    void LassWarten(std::int32_t id, Titelstand& stand, std::string_view grund, Zeitpunkt seit);
    void BeendeWarten(std::int32_t id, Titelstand& stand, Zeitpunkt bis);
    bool ErsterKursIstDa(std::int32_t id, Titelstand& stand);
    void PruefeWartende(Zeitpunkt jetzt);
    void SchliesseAblehnung(Titelstand& stand, Zeitpunkt bis);
    void PruefeAblehnungen();

    const Titelbestand& bestand_;
    OffeneLuecken& offen_;
    std::unordered_map<std::int32_t, Titelstand> titel_;
    std::unordered_map<std::string, std::int32_t> namen_;  // base names; the first title with one stands for it
    std::set<std::int32_t> wartende_;
    std::set<std::int32_t> abgelehnte_;
    std::unordered_set<std::int32_t> abonnierte_;
    std::optional<Zeitpunkt> durchgang_;  // its beginning
    bool geladen_ = false;
    std::size_t aktive_ = 0;
};

}  // namespace zek
