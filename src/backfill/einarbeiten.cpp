#include "backfill/einarbeiten.h"

#include "datafiles/anhaengen.h"
#include "datafiles/dateinamen.h"
#include "datafiles/reparatur.h"

#include <algorithm>
#include <cerrno>
#include <functional>
#include <iterator>
#include <stdexcept>
#include <utility>

namespace zek {
namespace {

constexpr std::int64_t Sprung = static_cast<std::int64_t>(Einarbeiter::Blocksaetze) * DatensatzBytes;
// Records that are read or written in one call.
constexpr std::size_t Stueck = 64 * Einarbeiter::Blocksaetze;

std::int64_t Bytes(std::size_t saetze) {
    return static_cast<std::int64_t>(saetze) * DatensatzBytes;
}

[[noreturn]] void WirfSystemfehler(std::int64_t fehler) {
    const std::string text = SystemText(static_cast<int>(-fehler));
    throw std::runtime_error(text.empty() ? "Unbekannter Fehler." : text);
}

}  // namespace

// What one merge holds. Positions and sizes in bytes.
struct Einarbeiter::Merge {
    Form& Fenster;
    clTitelobjekt& Titel;
    std::span<const KursDatensatz> Saetze;
    std::int32_t Kursart;
    std::string Pfad;
    clDateiIO Datei;
    Einarbeitungsjournal Journal;
    DatenDateikopf Kopf{};
    bool Filter = false;
    std::int64_t Ende = 0;                        // behind the last whole record; a torn one isn't a record
    std::int32_t ImJournal = 0;                   // records of the block
    std::int32_t Anzahl = 0;                      // in the file
    std::int64_t Stand = -1;                      // position of the handle; below 0 it isn't known
    std::int64_t Schreibstelle = DateikopfBytes;  // where the block goes
    std::int64_t SchwanzVon = 0;                  // the records newer than the block, from here to Ende

    double Erstes() const { return Saetze.front().Datum; }
    double Letztes() const { return Saetze.back().Datum; }
    bool Bleibt(const KursDatensatz& satz) const { return !Filter || !(satz.Volume <= 0); }
    bool IstNeuer(const KursDatensatz& satz) const { return satz.Datum > Letztes(); }
    void MerkeGroesse() {
        const std::int64_t groesse = Datei.FileSize().Bytes();
        const std::int64_t saetze = std::max<std::int64_t>(groesse - DateikopfBytes, 0) / DatensatzBytes;
        Ende = DateikopfBytes + saetze * DatensatzBytes;
    }
    bool HatSaetze() const { return Ende > DateikopfBytes; }
};

Einarbeiter::Einarbeiter(const IBModul& modul, Dateisystem& dateien, const Uhr& uhr, Pumpe& pumpe,
                         Statusausgabe& status, std::int64_t journalstueck)
    : modul_(modul), dateien_(dateien), uhr_(uhr), pumpe_(pumpe), status_(status), journalstueck_(journalstueck) {}

std::int32_t Einarbeiter::DatenEinarbeiten(Form& form, clTitelobjekt& titel, std::span<const KursDatensatz> saetze,
                                           std::int32_t kursart) {
    gescheitert_ = false;
    if (saetze.empty()) return 0;
    const Ergebnis ergebnis = Versuche(form, titel, saetze, kursart);
    form.AbbruchMoeglich(true);
    if (!ergebnis.JournalBleibt) return ergebnis.Anzahl;
    // Where the fault has passed, the journal finishes the work at once; otherwise it waits for the next opening.
    if (SchliesseEinarbeitungAb(dateien_, ergebnis.Pfad, Anderswo::Keine) != Journalstand::Abgeschlossen)
        return ergebnis.Anzahl;
    gescheitert_ = false;
    return ergebnis.ImJournal;
}

Einarbeiter::Ergebnis Einarbeiter::Versuche(Form& form, clTitelobjekt& titel, std::span<const KursDatensatz> saetze,
                                            std::int32_t kursart) {
    Merge merge{
        form, titel, saetze, kursart, {}, clDateiIO(dateien_), Einarbeitungsjournal(dateien_, journalstueck_, &pumpe_)};
    merge.Filter = kursart == kursart::Bezahlt ? modul_.Einstellungen.IBBezahlt : modul_.Einstellungen.IBAndere;
    try {
        FuehreAus(merge);
    } catch (const std::exception& fehler) {
        gescheitert_ = true;
        status_.Statusmeldung("Fehler beim Einarbeiten von Daten aufgetreten: " + Fehlertext(fehler), true);
    }
    return {merge.Pfad, merge.Anzahl, merge.ImJournal, merge.Journal.Bleibt()};
}

void Einarbeiter::FuehreAus(Merge& merge) {
    Oeffne(merge);
    if (!LiesKopf(merge)) return;
    if (merge.HatSaetze()) PruefeKonsistenz(merge);
    BestimmeStellen(merge);
    PruefePlatz(merge);

    pumpe_.Ereignisse();
    merge.Fenster.AbbruchMoeglich(false);
    merge.Fenster.FortschrittMaximum(static_cast<int>(merge.Saetze.size()));
    merge.Journal.Beginne(merge.Pfad);
    merge.ImJournal = SchreibeBlock(merge);
    // Where older records lie among the newer ones, what is newer belongs to the content, and the rest is what has come
    // since.
    const bool restBleibt = AllesNeuer(merge);
    if (!restBleibt) SchreibeSchwanz(merge);
    const std::int64_t ersetzt = restBleibt ? merge.SchwanzVon : merge.Ende;
    merge.MerkeGroesse();
    if (merge.Ende < ersetzt) WirfSystemfehler(-EIO);
    // What the journal is about to name as the file's end must be there after a power failure too.
    merge.Journal.Sichere(merge.Datei.FileHandle());
    SetzeLetztePflege(merge.Kopf, uhr_.Jetzt());
    merge.Journal.MacheFest(merge.Schreibstelle, ersetzt, merge.Ende, merge.Kopf);
    // From here on it happens, whoever finishes it.
    if (merge.ImJournal == 0 && (merge.Schreibstelle < merge.SchwanzVon || !restBleibt))
        merge.Fenster.SpanneGeht(merge.Titel, merge.Kursart, merge.Erstes(), merge.Letztes());
    merge.Journal.Uebertrage(merge.Datei.FileHandle(),
                             restBleibt && !merge.Filter ? merge.Saetze : std::span<const KursDatensatz>());
    merge.Anzahl = merge.ImJournal;
    SchreibeKopf(merge);
}

// The file may be held by another process at the moment.
void Einarbeiter::Oeffne(Merge& merge) {
    merge.Pfad = Dateipfad(modul_, dateien_, merge.Titel, merge.Kursart);
    for (int versuch = 1;; ++versuch) {
        try {
            SchliesseVorigeAb(merge);
            merge.Datei.OpenFile(merge.Pfad, false);
            return;
        } catch (const std::exception&) {
            if (versuch == Oeffnungsversuche) throw;
        }
        WarteHalbeSekunde();
    }
}

// An earlier merge that was broken off comes first.
void Einarbeiter::SchliesseVorigeAb(const Merge& merge) {
    const Journalstand stand = SchliesseEinarbeitungAb(dateien_, merge.Pfad, Anderswo::Keine);
    if (const std::string text = Journaltext(stand); !text.empty() && stand != Journalstand::Gescheitert)
        status_.Statusmeldung("Datendatei " + merge.Pfad + ": " + text, !IstGut(stand));
    if (stand == Journalstand::Belegt || stand == Journalstand::Gescheitert)
        throw std::runtime_error("Error opening '" + merge.Pfad + std::string(Journalendung) + "'.");
}

// The timer's wrap at midnight ends the wait.
void Einarbeiter::WarteHalbeSekunde() {
    const float beginn = uhr_.Timer();
    for (float jetzt = beginn; jetzt >= beginn && jetzt - beginn < VersuchspauseSekunden; jetzt = uhr_.Timer())
        pumpe_.Warte(std::chrono::milliseconds(50));
}

// False for a file of a foreign magic.
bool Einarbeiter::LiesKopf(Merge& merge) {
    if (merge.Datei.FileSize().Bytes() == 0) LegeKopfAn(merge);
    merge.Stand = -1;
    Gehe(merge, 0);
    Lies(merge, KopfBytes(merge.Kopf));
    merge.Fenster.FortschrittWert(0);
    merge.MerkeGroesse();
    return KennungStimmt(merge.Kopf);
}

// A header that isn't whole would leave a file that never takes a tick.
void Einarbeiter::LegeKopfAn(Merge& merge) {
    const std::int64_t bewegt = merge.Datei.WriteNewHeader(merge.Titel, merge.Kursart);
    if (bewegt == DateikopfBytes) return;
    dateien_.SetzeLaenge(merge.Datei.FileHandle(), 0);
    WirfSystemfehler(bewegt < 0 ? bewegt : -ENOSPC);
}

void Einarbeiter::PruefeKonsistenz(Merge& merge) {
    if (merge.Titel.KonsistenzGecheckt(merge.Kursart)) return;
    if (DateiEndeBereinigen(merge.Datei, merge.Pfad)) merge.MerkeGroesse();
    merge.Stand = -1;
    merge.Titel.KonsistenzGecheckt(merge.Kursart, true);
}

// Steps back from `ab` in jumps of 1000 records until halt(record there). Gives that record's place, or the first
// record's less one when the jumps would pass it.
template <typename Halt>
std::int64_t Einarbeiter::SpringeZurueck(Merge& merge, std::int64_t ab, Halt halt) {
    for (std::int64_t stelle = ab - Sprung; stelle >= DateikopfBytes; stelle -= Sprung) {
        if (halt(LiesSatz(merge, stelle))) return stelle;
    }
    return DateikopfBytes - DatensatzBytes;
}

// The place of the first record from `ab` on with halt(record), or the end.
template <typename Halt>
std::int64_t Einarbeiter::LiesWeiter(Merge& merge, std::int64_t ab, Halt halt) {
    for (std::int64_t stelle = ab; stelle < merge.Ende;) {
        const auto teil = LiesSaetze(merge, stelle, Blocksaetze);
        const auto treffer = std::ranges::find_if(teil, halt);
        stelle += Bytes(static_cast<std::size_t>(treffer - teil.begin()));
        if (treffer != teil.end()) return stelle;
    }
    return merge.Ende;
}

// Where the tail begins and where the block goes.
void Einarbeiter::BestimmeStellen(Merge& merge) {
    merge.SchwanzVon = merge.Ende;
    if (!merge.HatSaetze()) return;
    const double erstes = merge.Erstes(), letztes = merge.Letztes();
    // A jump that ended within some tolerance behind the block would pass over newer records.
    const auto neuer = [=](const auto& satz) { return satz.Datum > letztes; };
    const std::int64_t sprung = SpringeZurueck(merge, merge.Ende, std::not_fn(neuer));
    merge.SchwanzVon = LiesWeiter(merge, sprung + DatensatzBytes, neuer);
    // No jump behind the one that ended the search above can be earlier than the block.
    const auto zuFrueh = [=](const auto& satz) { return satz.Datum < erstes; };
    const bool amAnfang = sprung < DateikopfBytes;
    const std::int64_t ab = amAnfang ? sprung : SpringeZurueck(merge, sprung + Sprung, zuFrueh);
    merge.Schreibstelle = LiesWeiter(merge, ab + DatensatzBytes, std::not_fn(zuFrueh));
}

// On a full disk the merge isn't begun. It needs room for its journal and for what the file grows by.
void Einarbeiter::PruefePlatz(const Merge& merge) {
    const std::int64_t laenge = Bytes(merge.Saetze.size());
    const std::int64_t zuwachs = std::max<std::int64_t>(merge.Schreibstelle + laenge - merge.SchwanzVon, 0);
    const std::int64_t bedarf =
        Einarbeitungsjournal::Platzbedarf(laenge, merge.Ende - merge.SchwanzVon, journalstueck_) + zuwachs;
    const std::int64_t frei = dateien_.FreierPlatz(merge.Pfad.substr(0, merge.Pfad.rfind('/')));
    if (frei >= 0 && frei < bedarf) WirfSystemfehler(-ENOSPC);
}

// Several thousand records go out in one write; the events of each thousand run behind it.
std::int32_t Einarbeiter::SchreibeBlock(Merge& merge) {
    std::int32_t anzahl = 0;
    for (std::size_t fertig = 0; fertig < merge.Saetze.size();) {
        auto teil = merge.Saetze.subspan(fertig, std::min(Stueck, merge.Saetze.size() - fertig));
        const std::size_t ende = fertig + teil.size();
        if (merge.Filter) {
            puffer_.clear();
            std::ranges::copy_if(teil, std::back_inserter(puffer_),
                                 [&](const auto& satz) { return merge.Bleibt(satz); });
            teil = puffer_;
        }
        merge.Journal.Schreibe(teil);
        anzahl += static_cast<std::int32_t>(teil.size());
        for (fertig += Blocksaetze; fertig <= ende; fertig += Blocksaetze) {
            merge.Fenster.FortschrittWert(static_cast<int>(fertig));
            pumpe_.Ereignisse();
        }
        fertig = ende;
    }
    return anzahl;
}

// False when older records lie among the newer ones: they go.
bool Einarbeiter::AllesNeuer(Merge& merge) {
    for (std::int64_t stelle = merge.SchwanzVon; stelle < merge.Ende; pumpe_.Ereignisse()) {
        const auto teil = LiesSaetze(merge, stelle, Stueck);
        if (!std::ranges::all_of(teil, [&](const auto& satz) { return merge.IstNeuer(satz); })) return false;
        stelle += Bytes(teil.size());
    }
    return true;
}

void Einarbeiter::SchreibeSchwanz(Merge& merge) {
    for (std::int64_t stelle = merge.SchwanzVon; stelle < merge.Ende; pumpe_.Ereignisse()) {
        const auto teil = LiesSaetze(merge, stelle, Stueck);
        stelle += Bytes(teil.size());
        const auto rest = std::ranges::remove_if(teil, [&](const auto& satz) { return !merge.IstNeuer(satz); });
        merge.Journal.Schreibe(std::span<const KursDatensatz>(teil.begin(), rest.begin()));
    }
}

void Einarbeiter::SchreibeKopf(Merge& merge) {
    if (!dateien_.DateiExistiert(merge.Pfad)) {
        merge.Journal.Loesche();
        throw std::runtime_error("Error opening '" + merge.Pfad + "'.");
    }
    merge.Stand = -1;
    Gehe(merge, 0);
    SetzeLetztePflege(merge.Kopf, uhr_.Jetzt());
    const int fehler = SchreibeGanz(dateien_, merge.Datei.FileHandle(), KopfBytes(std::as_const(merge.Kopf)));
    if (fehler < 0) WirfSystemfehler(fehler);
    merge.Journal.Loesche();
    merge.Datei.CloseFile();
}

void Einarbeiter::Gehe(Merge& merge, std::int64_t stelle) {
    if (merge.Stand == stelle) return;
    merge.Stand = -1;
    const std::int64_t erreicht = dateien_.Suche(merge.Datei.FileHandle(), stelle, Ab::Anfang);
    if (erreicht < 0) WirfSystemfehler(erreicht);
    merge.Stand = stelle;
}

// Bytes read; fewer than asked for only at the end of the file.
std::size_t Einarbeiter::Lies(Merge& merge, std::span<std::byte> ziel) {
    std::size_t gelesen = 0;
    while (gelesen < ziel.size()) {
        const std::int64_t bewegt = merge.Datei.Lies(ziel.subspan(gelesen));
        if (bewegt < 0) WirfSystemfehler(bewegt);
        if (bewegt == 0) break;
        gelesen += static_cast<std::size_t>(bewegt);
    }
    merge.Stand += static_cast<std::int64_t>(gelesen);
    return gelesen;
}

// One record by one call: a search jumps over a big file in thousands of steps.
KursDatensatz Einarbeiter::LiesSatz(Merge& merge, std::int64_t stelle) {
    KursDatensatz satz;
    merge.Stand = -1;
    for (auto ziel = std::as_writable_bytes(std::span(&satz, 1)); !ziel.empty();) {
        const std::int64_t bewegt = dateien_.LiesAn(merge.Datei.FileHandle(), stelle, ziel);
        if (bewegt <= 0) WirfSystemfehler(bewegt < 0 ? bewegt : -EIO);
        stelle += bewegt;
        ziel = ziel.subspan(static_cast<std::size_t>(bewegt));
    }
    return satz;
}

// Records from a place on, at most up to Ende; the next call overwrites them.
std::span<KursDatensatz> Einarbeiter::LiesSaetze(Merge& merge, std::int64_t stelle, std::size_t hoechstens) {
    const auto rest = static_cast<std::size_t>((merge.Ende - stelle) / DatensatzBytes);
    puffer_.resize(std::min(rest, hoechstens));
    Gehe(merge, stelle);
    const auto bytes = std::as_writable_bytes(std::span(puffer_));
    if (Lies(merge, bytes) < bytes.size()) WirfSystemfehler(-EIO);
    return puffer_;
}

}  // namespace zek
