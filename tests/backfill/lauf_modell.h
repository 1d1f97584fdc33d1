// One series of a backfill run, said once more: which requests go out, and which records are handed to the merge. Slow
// and literal; it knows nothing of the run.
#pragma once

#include "datafiles/datensatz.h"
#include "platform/datum.h"

#include <functional>
#include <vector>

namespace zek::pflege {

struct Modellbalken {
    Datum Zeit = 0;
    double Schluss = 0;
    double Volumen = 0;
};

// What the service does with one request.
struct Modellantwort {
    enum class Art {
        Fertig,         // all bars, and the end
        KeineDaten,     // an error 162, maybe behind some bars
        Schweigen,      // maybe some bars, and then nothing
        Pacing,         // a pacing violation, and the service is back
        Unterbrechung,  // the connection goes and comes back
    };
    Art Ausgang = Art::Fertig;
    std::vector<Modellbalken> Balken;  // from old to new
};

struct Modellserie {
    std::vector<Datum> Enden;  // of the requests; 0 for the present
    std::vector<KursDatensatz> Saetze;
};

struct Modellauftrag {
    std::int32_t Kursart = 1;
    bool IstIndex = false;
    Datum Start = 0;
    Datum Ende = 0;  // 0 the present
    double ZeitKorrektur = 0;
};

inline std::vector<KursDatensatz> Behaltene(const Modellauftrag& auftrag, const std::vector<Modellbalken>& balken) {
    std::vector<KursDatensatz> puffer;
    for (const auto& b : balken) {
        const auto kurs = static_cast<float>(b.Schluss);
        const bool anders = puffer.empty() || kurs != puffer.back().Kurs;
        const bool behalten = auftrag.IstIndex ? anders : auftrag.Kursart == 1 ? b.Volumen > 0 : anders;
        if (!behalten) continue;
        const double volumen = auftrag.IstIndex || b.Volumen < 0 ? 0 : b.Volumen;
        puffer.push_back({b.Zeit, kurs, static_cast<float>(volumen)});
    }
    return puffer;
}

// `frage`: the service, asked for an end.
inline Modellserie Modell(const Modellauftrag& auftrag, const std::function<Modellantwort(Datum)>& frage) {
    Modellserie serie;
    Datum ende = auftrag.Ende;
    bool keineDaten = false, zeitablauf = false;
    do {
        Modellantwort antwort;
        do {  // the same end again after a violation or a loss
            serie.Enden.push_back(ende);
            antwort = frage(ende);
        } while (antwort.Ausgang == Modellantwort::Art::Pacing || antwort.Ausgang == Modellantwort::Art::Unterbrechung);
        if (antwort.Ausgang == Modellantwort::Art::KeineDaten) keineDaten = true;
        if (antwort.Ausgang == Modellantwort::Art::Schweigen) zeitablauf = true;
        const auto puffer = Behaltene(auftrag, antwort.Balken);
        if (puffer.empty()) {
            if (keineDaten) break;
            ende = DatumAus(ZeitpunktAus(ende) - 2000s);
            continue;
        }
        for (auto satz = puffer.rbegin(); satz != puffer.rend() && satz->Datum >= auftrag.Start; ++satz)
            serie.Saetze.insert(serie.Saetze.begin(), *satz);
        ende = DatumAus(ZeitpunktAus(puffer.front().Datum) - 1s);
    } while (ende >= auftrag.Start && !zeitablauf);
    for (auto& satz : serie.Saetze) satz.Datum += auftrag.ZeitKorrektur;
    return serie;
}

}  // namespace zek::pflege
