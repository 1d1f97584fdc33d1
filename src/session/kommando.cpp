#include "session/kommando.h"

#include "platform/dateisystem.h"
#include "platform/ohnefehler.h"

#include <cerrno>

namespace zek {

void KommandosLoeschen(Einstellungsspeicher& einstellungen) {
    const Einstellungsspeicher::Buendel buendel(einstellungen);
    for (const auto kommando : {"DoQuit", "Restart"})
        OhneFehler("Kommando löschen",
                   [&] { einstellungen.LoescheRegistry(Programmtitel, abschnitt::Kommando, kommando); });
}

std::optional<std::string> KommandoHinterlegen(Einstellungsspeicher& einstellungen, Pumpe& pumpe,
                                               const Befehlszeile& befehle) {
    int ergebnis =
        einstellungen.SchreibeRegistry(Programmtitel, abschnitt::Kommando, befehle.Quit ? "DoQuit" : "Restart", "1");
    if (ergebnis == -EBUSY) ergebnis = einstellungen.WarteBisGeschrieben(pumpe);
    if (ergebnis == 0) return std::nullopt;
    return std::string("Der Befehl ") + (befehle.Quit ? "/Quit" : "/Restart") +
           " konnte der laufenden Instanz nicht übergeben werden (" + SystemText(-ergebnis) + ").";
}

}  // namespace zek
