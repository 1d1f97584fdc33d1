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
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace zek {

class Titelluecken {
public:
    Titelluecken(IBModul& modul, OffeneLuecken& offen) : modul_(modul), offen_(offen) {}

    // All titles are in the list. From here on they are looked after.
    void TitelGeladen(Datum start);
    // All streams were lost, and are being asked for again from now on.
    void DurchgangBeginnt(Datum jetzt);
    void Abonniert(const clTitelobjekt& titel, Datum jetzt);
    void Abbestellt(const clTitelobjekt& titel, Datum jetzt);
    void Meldung(const clTitelobjekt& titel, int code, Datum jetzt);
    void VerbindungWeg(Datum jetzt);
    // The program ends.
    void Beende(Datum jetzt);
    // Once a second.
    void Pruefe(Datum jetzt);

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
        Datum NeuSeit = 0;  // switched on then, but the evidence doesn't say so yet; 0 for not
        bool Abonniert = false;
        Datum Abozeit = 0;
        Datum WartetSeit = 0;  // for its first tick; 0 for not
        std::string_view WartetGrund;
        bool WartetGeschrieben = false;
        std::string Abgelehnt;  // the cause of its refusal; "" for none
        std::string Tiefe;      // the same of its depth
    };

    Titelstand* Finde(const clTitelobjekt& titel);
    void LerneKennen(clTitelobjekt& titel, Datum jetzt);
    void PruefeTitel(clTitelobjekt& titel, Titelstand& stand, Datum jetzt);
    void PruefeNeue(const clTitelobjekt& titel, Titelstand& stand, Datum jetzt);
    void SchalteAus(std::int32_t id, Titelstand& stand, Datum jetzt);
    void EntferneVerschwundene(Datum jetzt);
    void VergissAlteNamen(Datum start);
    void LassWarten(std::int32_t id, Titelstand& stand, std::string_view grund, Datum seit);
    void BeendeWarten(std::int32_t id, Titelstand& stand, Datum bis);
    bool ErsterKursIstDa(std::int32_t id, Titelstand& stand);
    void PruefeWartende(Datum jetzt);
    void SchliesseAblehnung(Titelstand& stand, Datum bis);
    void PruefeAblehnungen();

    IBModul& modul_;
    OffeneLuecken& offen_;
    std::unordered_map<std::int32_t, Titelstand> titel_;
    std::unordered_map<std::string, std::int32_t> namen_;  // base names; the first title with one stands for it
    std::set<std::int32_t> wartende_;
    std::set<std::int32_t> abgelehnte_;
    std::unordered_set<std::int32_t> abonnierte_;
    Datum durchgang_ = 0;  // its beginning
    bool geladen_ = false;
    std::size_t aktive_ = 0;
};

}  // namespace zek
