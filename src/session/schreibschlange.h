// The changes of settings on their way to their stores: gathered, merged to one write for each file, and kept where
// another instance is writing at this very moment. So a change never waits, and none gets lost.
#pragma once

#include "platform/speicher.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zek {

class Schreibschlange {
public:
    // Which file a change belongs to: the per-user one of an application, or the local file.
    struct Ziel {
        bool LokaleDatei = false;
        std::string Anwendung;  // "" for the local file
    };

    Schreibschlange(Nutzerspeicher& registry, Profildatei& lokaleDatei)
        : registry_(registry), lokaleDatei_(lokaleDatei) {}

    // Takes the place of a waiting change of the same value.
    void Reihe(const Ziel& ziel, Speicheraenderung aenderung, Haltbarkeit haltbarkeit);
    // Each file once. Returns 0 when all are written, -EBUSY while some wait, else the errno value of what is lost.
    int Schreibe();
    // The change of a value that waits; nullptr when there is none.
    const Speicheraenderung* Wartend(const Ziel& ziel, std::string_view abschnitt, std::string_view schluessel) const;

    // While one lives nothing is written; the end of the outermost writes.
    class Buendel {
    public:
        explicit Buendel(Schreibschlange& schlange) : schlange_(schlange) { ++schlange_.buendel_; }
        ~Buendel();
        Buendel(const Buendel&) = delete;
        Buendel& operator=(const Buendel&) = delete;

    private:
        Schreibschlange& schlange_;
    };

private:
    struct Eintrag {
        Ziel Wohin;
        Speicheraenderung Aenderung;
        zek::Haltbarkeit Haltbarkeit;
    };
    int SchreibeDatei(const Ziel& ziel);

    Nutzerspeicher& registry_;
    Profildatei& lokaleDatei_;
    std::vector<Eintrag> wartende_;
    int buendel_ = 0;
};

}  // namespace zek
