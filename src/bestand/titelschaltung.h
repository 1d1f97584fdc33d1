// Recording switched on and off while the recorder runs: the only road for titles of the manager and the editor.
#pragma once

#include "bestand/bestandsumgebung.h"

#include <cstdint>
#include <functional>
#include <vector>

namespace zek {

// How a title stands after it was switched.
enum class Schaltstand { Inaktiv, NurBezahlt, MitGeldBrief };

class Titelschaltung {
public:
    explicit Titelschaltung(Bestandsumgebung um) : um_(std::move(um)) {}

    using BeiTitel = std::function<void(const clTitelobjekt& titel, Schaltstand stand)>;

    // Each of these titles, in order: cancelled when it was active, then with the flags, subscribed anew when `aktiv`;
    // one whose subscription fails is inactive. Paced, with events running. Numbers without a title are skipped. Not
    // asked to stop unless `fortschritt` says so; the titles behind it stay as they are.
    void Schalte(const std::vector<std::int32_t>& titelnummern, bool aktiv, bool bidAsk, const BeiTitel& beiTitel = {},
                 const Fortschritt& fortschritt = {});

private:
    std::int32_t BestelleAb(const clTitelobjekt& titel) const;
    std::int32_t Abonniere(clTitelobjekt& titel, bool bidAsk) const;

    Bestandsumgebung um_;
};

}  // namespace zek
