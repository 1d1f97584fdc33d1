#include "backfill/einarbeiten.h"

#include "datafiles/anhaengen.h"
#include "datafiles/dateinamen.h"

#include <algorithm>
#include <cerrno>
#include <deque>
#include <functional>
#include <iterator>
#include <memory>
#include <stdexcept>
#include <utility>

namespace zek {
namespace {

constexpr std::int64_t Sprung = static_cast<std::int64_t>(Einarbeiter::Blocksaetze) * DatensatzBytes;
// Records of the tail that are read at a time; small enough for the processor's cache.
constexpr std::size_t Schwanzblock = 16384;
// Records of the block that go out in one write.
constexpr std::size_t Schreibblock = 16 * Einarbeiter::Blocksaetze;

std::int64_t Bytes(std::size_t saetze) {
    return static_cast<std::int64_t>(saetze) * DatensatzBytes;
}

[[noreturn]] void WirfSystemfehler(std::int64_t fehler) {
    const std::string text = SystemText(static_cast<int>(-fehler));
    throw std::runtime_error(text.empty() ? "Unbekannter Fehler." : text);
}

void OeffneWieder(clDateiIO& datei, const std::string& pfad) {
    // A file that was deleted meanwhile isn't made anew.
    if (!datei.OeffneVorhandene(pfad)) throw std::runtime_error("Error opening '" + pfad + "'.");
}

}  // namespace

// What one merge holds. Positions and sizes in bytes.
struct Einarbeiter::Merge {
    Form& Fenster;
    clTitelobjekt& Titel;
    std::span<const KursDatensatz> Saetze;
    std::int32_t Kursart;
    std::string Pfad;
    std::unique_ptr<clDateiIO> Datei;
    DatenDateikopf Kopf;
    bool Filter = false;
    bool WarLeer = false;      // the file got its header here
    bool Geschrieben = false;  // bytes of the file have been touched
    bool Angefangen = false;   // bytes of the block have been
    bool BlockSteht = false;
    std::int64_t Ende = 0;  // behind the last whole record; a torn one isn't a record
    std::int32_t Anzahl = 0;
    std::int64_t Stand = -1;  // position of the handle; below 0 it isn't known
    std::int64_t Schreibstelle = DateikopfBytes;
    // The tail: the records newer than the block, from SchwanzVon to Ende as they stood before the block was written.
    // What is about to be overwritten waits in Gerettet; the rest is still in the file, from SchwanzVon on.
    std::int64_t SchwanzVon = 0;
    std::deque<std::vector<KursDatensatz>> Gerettet{};
    std::vector<std::vector<KursDatensatz>> Frei{};  // used buffers

    double Erstes() const { return Saetze.front().Datum; }
    double Letztes() const { return Saetze.back().Datum; }
    void MerkeGroesse() {
        const std::int64_t groesse = Datei->FileSize().Bytes();
        const std::int64_t saetze = std::max<std::int64_t>(groesse - DateikopfBytes, 0) / DatensatzBytes;
        Ende = DateikopfBytes + saetze * DatensatzBytes;
    }
    bool HatSaetze() const { return Ende > DateikopfBytes; }
};

Einarbeiter::Einarbeiter(IBModul& modul, Dateisystem& dateien, const Uhr& uhr, Pumpe& pumpe, Statusausgabe& status)
    : modul_(modul), dateien_(dateien), uhr_(uhr), pumpe_(pumpe), status_(status) {}

std::int32_t Einarbeiter::DatenEinarbeiten(Form& form, clTitelobjekt& titel, std::span<const KursDatensatz> saetze,
                                           std::int32_t kursart) {
    verlustAb_ = 0;
    if (saetze.empty()) return 0;
    Merge merge{form, titel, saetze, kursart, {}, std::make_unique<clDateiIO>(dateien_), {}};
    merge.Filter = kursart == kursart::Bezahlt ? modul_.Einstellungen.IBBezahlt : modul_.Einstellungen.IBAndere;
    try {
        FuehreAus(merge);
    } catch (const std::exception& fehler) {
        status_.Statusmeldung("Fehler beim Einarbeiten von Daten aufgetreten: " + Fehlertext(fehler), true);
        // With the block in place only what is newer can be missing.
        if (merge.Angefangen) verlustAb_ = (merge.BlockSteht ? merge.Letztes() : merge.Erstes()) - titel.ZeitKorrektur;
        MacheSaetzeGanz(merge);
    }
    form.AbbruchMoeglich(true);
    return merge.Anzahl;
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
    merge.Anzahl = SchreibeBlock(merge);
    merge.BlockSteht = true;
    SchreibeSchwanz(merge);
    KuerzeDatei(merge);
    SchreibeKopf(merge);
}

// The file may be held by another process at the moment.
void Einarbeiter::Oeffne(Merge& merge) {
    merge.Pfad = Dateipfad(modul_, dateien_, merge.Titel, merge.Kursart);
    for (int versuch = 1;; ++versuch) {
        try {
            merge.Datei->OpenFile(merge.Pfad, false);
            return;
        } catch (const DateiFehler&) {
            if (versuch == Oeffnungsversuche) throw;
        }
        WarteHalbeSekunde();
    }
}

// The timer's wrap at midnight ends the wait.
void Einarbeiter::WarteHalbeSekunde() {
    const float beginn = uhr_.Timer();
    for (float jetzt = beginn; jetzt >= beginn && jetzt - beginn < VersuchspauseSekunden; jetzt = uhr_.Timer())
        pumpe_.Warte(std::chrono::milliseconds(50));
}

// False for a file of a foreign magic.
bool Einarbeiter::LiesKopf(Merge& merge) {
    if (merge.Datei->FileSize().Bytes() == 0) {
        merge.WarLeer = merge.Geschrieben = true;
        const std::int64_t bewegt = merge.Datei->WriteNewHeader(merge.Titel, merge.Kursart);
        if (bewegt < 0) WirfSystemfehler(bewegt);
    }
    merge.Stand = -1;
    Gehe(merge, 0);
    const std::size_t gelesen = Lies(merge, KopfBytes(merge.Kopf));
    if (merge.WarLeer && gelesen < sizeof(DatenDateikopf)) WirfSystemfehler(-ENOSPC);
    merge.Fenster.FortschrittWert(0);
    merge.MerkeGroesse();
    return KennungStimmt(merge.Kopf);
}

void Einarbeiter::PruefeKonsistenz(Merge& merge) {
    if (merge.Titel.KonsistenzGecheckt(merge.Kursart)) return;
    if (DateiEndeBereinigen(*merge.Datei, merge.Pfad)) merge.MerkeGroesse();
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
    puffer_.resize(Blocksaetze);
    for (std::int64_t stelle = ab; stelle < merge.Ende;) {
        const auto rest = static_cast<std::size_t>((merge.Ende - stelle) / DatensatzBytes);
        const auto teil = std::span(puffer_).first(std::min(rest, Blocksaetze));
        if (LiesSaetze(merge, stelle, teil) < teil.size()) WirfSystemfehler(-EIO);
        const auto treffer = std::find_if(teil.begin(), teil.end(), halt);
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

// On a full disk the merge would fail half way and take good records with it; it isn't begun.
void Einarbeiter::PruefePlatz(const Merge& merge) {
    const std::int64_t zuwachs = merge.Schreibstelle + Bytes(merge.Saetze.size()) - merge.SchwanzVon;
    if (zuwachs <= 0) return;
    const std::int64_t frei = dateien_.FreierPlatz(merge.Pfad.substr(0, merge.Pfad.rfind('/')));
    if (frei >= 0 && frei < zuwachs) WirfSystemfehler(-ENOSPC);
}

// Several thousand records go out in one write; the events of each thousand run behind it. For a tick that arrives in
// between that makes no difference: it lands at the end of the file and is overwritten or cut.
std::int32_t Einarbeiter::SchreibeBlock(Merge& merge) {
    std::int32_t anzahl = 0;
    for (std::size_t fertig = 0; fertig < merge.Saetze.size();) {
        auto teil = merge.Saetze.subspan(fertig, std::min(Schreibblock, merge.Saetze.size() - fertig));
        const std::size_t ende = fertig + teil.size();
        if (merge.Filter) {
            puffer_.clear();
            std::copy_if(teil.begin(), teil.end(), std::back_inserter(puffer_),
                         [](const KursDatensatz& satz) { return !(satz.Volume <= 0); });
            teil = puffer_;
        }
        Schreibe(merge, teil);
        anzahl += static_cast<std::int32_t>(teil.size());
        for (fertig += Blocksaetze; fertig <= ende; fertig += Blocksaetze) {
            merge.Fenster.FortschrittWert(static_cast<int>(fertig));
            pumpe_.Ereignisse();
        }
        fertig = ende;
    }
    return anzahl;
}

// Takes the tail up to a place into memory.
void Einarbeiter::RetteSchwanz(Merge& merge, std::int64_t bis) {
    while (merge.SchwanzVon < std::min(bis, merge.Ende)) LiesSchwanzblock(merge);
}

// Puts the next records of the tail behind those in memory.
void Einarbeiter::LiesSchwanzblock(Merge& merge) {
    std::vector<KursDatensatz> block;
    if (!merge.Frei.empty()) {
        block = std::move(merge.Frei.back());
        merge.Frei.pop_back();
    }
    const auto rest = static_cast<std::size_t>((merge.Ende - merge.SchwanzVon) / DatensatzBytes);
    block.resize(std::min(rest, Schwanzblock));
    if (LiesSaetze(merge, merge.SchwanzVon, block) < block.size()) WirfSystemfehler(-EIO);
    merge.SchwanzVon += Bytes(block.size());
    merge.Gerettet.push_back(std::move(block));
}

void Einarbeiter::SchreibeSchwanz(Merge& merge) {
    for (;;) {
        if (merge.Gerettet.empty()) RetteSchwanz(merge, merge.SchwanzVon + 1);
        if (merge.Gerettet.empty()) return;
        std::int64_t gelesen = 0;
        for (const auto& block : merge.Gerettet) gelesen += Bytes(block.size());
        std::vector<KursDatensatz> block = std::move(merge.Gerettet.front());
        merge.Gerettet.pop_front();
        SchreibeNeuere(merge, block, merge.SchwanzVon - gelesen);
        merge.Frei.push_back(std::move(block));
    }
}

// Runs of newer records go out in one write each; what stands at its place already isn't written. `herkunft`: the
// place that the records come from.
void Einarbeiter::SchreibeNeuere(Merge& merge, std::span<const KursDatensatz> saetze, std::int64_t herkunft) {
    const auto neuer = [letztes = merge.Letztes()](const KursDatensatz& satz) { return satz.Datum > letztes; };
    for (auto von = saetze.begin(); von != saetze.end();) {
        von = std::find_if(von, saetze.end(), neuer);
        const auto bis = std::find_if_not(von, saetze.end(), neuer);
        if (merge.Schreibstelle == herkunft + Bytes(static_cast<std::size_t>(von - saetze.begin())))
            merge.Schreibstelle += Bytes(static_cast<std::size_t>(bis - von));
        else
            Schreibe(merge, {von, bis});
        von = bis;
    }
}

void Einarbeiter::KuerzeDatei(Merge& merge) {
    const Dateiposition stelle = Dateiposition::AusBytes(merge.Schreibstelle);
    if (stelle >= merge.Datei->FileSize()) return;
    merge.Datei->CloseFile();
    clDateiIO datei(dateien_);
    OeffneWieder(datei, merge.Pfad);
    datei.SeekAbsolute(stelle);
    if (datei.GetFilePointer() == stelle) datei.SetzeDateiEnde();
    if (datei.FileSize() != stelle) WirfSystemfehler(-EIO);
    datei.CloseFile();
}

void Einarbeiter::SchreibeKopf(Merge& merge) {
    if (!merge.Datei->IsOpen()) OeffneWieder(*merge.Datei, merge.Pfad);
    merge.Stand = -1;
    Gehe(merge, 0);
    SetzeLetztePflege(merge.Kopf, uhr_.Jetzt());
    const int fehler = SchreibeGanz(dateien_, merge.Datei->FileHandle(), KopfBytes(merge.Kopf));
    if (fehler < 0) WirfSystemfehler(fehler);
    merge.Datei->CloseFile();
}

// A write that failed in the middle of a record or of a new header would leave a file that takes no ticks any more.
void Einarbeiter::MacheSaetzeGanz(Merge& merge) noexcept {
    if (!merge.Geschrieben) return;
    try {
        if (!merge.Datei->IsOpen()) OeffneWieder(*merge.Datei, merge.Pfad);
        const std::int64_t groesse = merge.Datei->FileSize().Bytes();
        merge.MerkeGroesse();
        if (groesse < DateikopfBytes && merge.WarLeer)
            dateien_.SetzeLaenge(merge.Datei->FileHandle(), 0);
        else if (groesse > merge.Ende)
            dateien_.SetzeLaenge(merge.Datei->FileHandle(), merge.Ende);
        merge.Datei->CloseFile();
    } catch (const std::exception&) {
        // The file stays as it is.
    }
}

void Einarbeiter::Gehe(Merge& merge, std::int64_t stelle) {
    if (merge.Stand == stelle) return;
    merge.Stand = -1;
    const std::int64_t erreicht = dateien_.Suche(merge.Datei->FileHandle(), stelle, Ab::Anfang);
    if (erreicht < 0) WirfSystemfehler(erreicht);
    merge.Stand = stelle;
}

// Bytes read; fewer than asked for only at the end of the file.
std::size_t Einarbeiter::Lies(Merge& merge, std::span<std::byte> ziel) {
    std::size_t gelesen = 0;
    while (gelesen < ziel.size()) {
        const std::int64_t bewegt = merge.Datei->Lies(ziel.subspan(gelesen));
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
        const std::int64_t bewegt = dateien_.LiesAn(merge.Datei->FileHandle(), stelle, ziel);
        if (bewegt <= 0) WirfSystemfehler(bewegt < 0 ? bewegt : -EIO);
        stelle += bewegt;
        ziel = ziel.subspan(static_cast<std::size_t>(bewegt));
    }
    return satz;
}

// Whole records read from a place on; fewer than asked for only at the end of the file.
std::size_t Einarbeiter::LiesSaetze(Merge& merge, std::int64_t stelle, std::span<KursDatensatz> ziel) {
    Gehe(merge, stelle);
    return Lies(merge, std::as_writable_bytes(ziel)) / sizeof(KursDatensatz);
}

// Writes at the present place and goes on behind it.
void Einarbeiter::Schreibe(Merge& merge, std::span<const KursDatensatz> saetze) {
    if (saetze.empty()) return;
    const std::int64_t bis = merge.Schreibstelle + Bytes(saetze.size());
    RetteSchwanz(merge, bis);
    Gehe(merge, merge.Schreibstelle);
    merge.Geschrieben = merge.Angefangen = true;
    const int fehler = SchreibeGanz(dateien_, merge.Datei->FileHandle(), std::as_bytes(saetze));
    if (fehler < 0) WirfSystemfehler(fehler);
    merge.Stand = merge.Schreibstelle = bis;
}

}  // namespace zek
