// Where a stream draws its ticks from: the price path, or a recording.
#pragma once

#include "simulator/pfad.h"

#include <memory>
#include <optional>
#include <vector>

namespace zek::simulator {

class Tickquelle {
public:
    virtual ~Tickquelle() = default;
    // All times are of the path's time line. Ticks of one second, in order.
    virtual std::vector<Pfadtick> Ticks(Sekunde s) = 0;
    // The first second at or behind `s` that has ticks.
    virtual std::optional<Sekunde> NaechsteAktive(Sekunde s) = 0;
    // What stands when second `s` is over.
    virtual Kursstand Stand(Sekunde s) = 0;
    virtual bool Offen(Sekunde s) = 0;
};

class Pfadquelle : public Tickquelle {
public:
    explicit Pfadquelle(Pfad pfad) : pfad_(std::move(pfad)) {}

    std::vector<Pfadtick> Ticks(Sekunde s) override { return pfad_.Ticks(s); }
    std::optional<Sekunde> NaechsteAktive(Sekunde s) override { return pfad_.NaechsteAktive(s); }
    Kursstand Stand(Sekunde s) override { return pfad_.Stand(s); }
    bool Offen(Sekunde s) override { return pfad_.Offen(s); }

private:
    Pfad pfad_;
};

// Chooses another source than the path.
class Quellenwahl {
public:
    virtual ~Quellenwahl() = default;
    // The source for a contract as a client asked for it; null: none, the path serves. `pfadzeit`: now.
    virtual std::unique_ptr<Tickquelle> QuelleFuer(const Kontraktsuche& suche, double pfadzeit) = 0;
};

}  // namespace zek::simulator
