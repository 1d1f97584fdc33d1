#include "datafiles/einarbeitungsjournal.h"

#include "platform/systemtext.h"

#define XXH_STATIC_LINKING_ONLY  // for the size of its state
#include <xxhash.h>
#ifdef __x86_64__
#include <xxh_x86dispatch.h>  // the widest instructions that this machine has
#endif

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <utility>

namespace zek {

namespace {

constexpr std::string_view Kennung("Tessaron ZEK Einarbeitung 01.00\0", 32);
constexpr std::int64_t KopfPlatz = 1024;
// Room for additions that is there before the data file is touched.
constexpr std::int64_t Vorrat = 16384;
constexpr std::int64_t Lesestueck = std::int64_t{1} << 20;
// Zeros where the live records of a cut go, and behind the file before it: more than a block of any disk, and more than
// comes within a sync.
constexpr std::int64_t Schnittplatz = 16384;

std::int64_t Gelungen(std::int64_t ergebnis) {
    if (ergebnis < 0) throw Journalfehler(ergebnis);
    return ergebnis;
}

void SchreibeAn(Dateisystem& dateien, Dateihandle handle, std::int64_t stelle, std::span<const std::byte> daten) {
    if (daten.empty()) return;
    Gelungen(dateien.Suche(handle, stelle, Ab::Anfang));
    Gelungen(SchreibeGanz(dateien, handle, daten));
}

// False when the file ends before.
bool LiesAn(Dateisystem& dateien, Dateihandle handle, std::int64_t stelle, std::span<std::byte> ziel) {
    while (!ziel.empty()) {
        const std::int64_t gelesen = Gelungen(dateien.LiesAn(handle, stelle, ziel));
        if (gelesen == 0) return false;
        stelle += gelesen;
        ziel = ziel.subspan(static_cast<std::size_t>(gelesen));
    }
    return true;
}

// The size without the bytes of a torn record.
std::int64_t GanzeSaetze(std::int64_t groesse) {
    return groesse <= DateikopfBytes ? groesse : groesse - (groesse - DateikopfBytes) % DatensatzBytes;
}

std::int64_t Bytes(std::size_t saetze) {
    return static_cast<std::int64_t>(saetze) * DatensatzBytes;
}

bool IstNull(const KursDatensatz& satz) {
    static constexpr std::array<std::byte, DatensatzBytes> Nullen{};
    return std::memcmp(&satz, Nullen.data(), Nullen.size()) == 0;
}

std::uint64_t Summe(std::span<const std::byte> daten) {
    return XXH3_64bits(daten.data(), daten.size());
}

struct Kopfsatz {
    std::array<char, 32> Kennung{};
    std::int64_t Stelle = 0, Laenge = 0, Ersetzt = 0, Ende = 0, Fenster = 0;
    std::uint64_t InhaltSumme = 0;
    std::array<std::byte, sizeof(DatenDateikopf)> Kopf{};
    std::uint64_t KopfSumme = 0;
};
static_assert(sizeof(Kopfsatz) == 944);
static_assert(offsetof(Kopfsatz, Kopf) == 80);

// The head of a window and of an addition.
struct Teilkopf {
    std::array<std::int64_t, 3> Werte{};
    std::uint64_t Summe = 0;
};
static_assert(sizeof(Teilkopf) == 32);
constexpr std::int64_t TeilkopfBytes = sizeof(Teilkopf);

std::uint64_t Teilsumme(const Teilkopf& kopf, std::span<const std::byte> daten) {
    const std::uint64_t anfang = Summe(std::as_bytes(std::span(&kopf, 1)).first(offsetof(Teilkopf, Summe)));
    return XXH3_64bits_withSeed(daten.data(), daten.size(), anfang);
}

}  // namespace

struct Einarbeitungsjournal::Pruefsumme {
    Pruefsumme() { XXH3_64bits_reset(&Zustand); }
    void Nimm(std::span<const std::byte> daten) { XXH3_64bits_update(&Zustand, daten.data(), daten.size()); }
    std::uint64_t Wert() const { return XXH3_64bits_digest(&Zustand); }
    XXH3_state_t Zustand;
};

Journalfehler::Journalfehler(std::int64_t ergebnis)
    : std::runtime_error(SystemText(static_cast<int>(-ergebnis))), Nummer(static_cast<int>(-ergebnis)) {}

Einarbeitungsjournal::Einarbeitungsjournal(Dateisystem& dateien, std::int64_t stueck, Pumpe* pumpe)
    : dateien_(dateien), stueck_(stueck), pumpe_(pumpe), journalweg_(dateien, pumpe), dateiweg_(dateien, pumpe) {}

Einarbeitungsjournal::~Einarbeitungsjournal() {
    if (handle_ < 0) return;
    if (!fest_) dateien_.Loesche(pfad_);
    dateien_.Schliesse(handle_);
}

std::int64_t Einarbeitungsjournal::Platzbedarf(std::int64_t laenge, std::int64_t rest, std::int64_t stueck) {
    return KopfPlatz + laenge + 2 * (TeilkopfBytes + std::min(rest, stueck)) + Vorrat;
}

void Einarbeitungsjournal::LassEreignisseZu() {
    if (pumpe_ != nullptr) pumpe_->Ereignisse();
}

void Einarbeitungsjournal::SichereJournal() {
    Gelungen(journalweg_.Leere(handle_));
}

void Einarbeitungsjournal::Sichere(Dateihandle datei) {
    Gelungen(dateiweg_.Leere(datei));
}

// ---- a merge

void Einarbeitungsjournal::Beginne(const std::string& dateipfad) {
    pfad_ = dateipfad + std::string(Journalendung);
    handle_ = static_cast<Dateihandle>(Gelungen(dateien_.Oeffne(pfad_, Oeffnen::Anlegen)));
    fest_ = true;  // somebody else's, as long as it isn't locked
    if (const int fehler = dateien_.Sperre(handle_); fehler != -ENOLCK) Gelungen(fehler);
    // Somebody who finished an older one may have deleted it between the two calls.
    if (!dateien_.DateiExistiert(pfad_)) throw Journalfehler(-EWOULDBLOCK);
    fest_ = false;
    Gelungen(dateien_.SetzeLaenge(handle_, 0));
    journalweg_.Beginne(pfad_);
    dateiweg_.Beginne(dateipfad);
    summe_ = std::make_unique<Pruefsumme>();
    laenge_ = ungesichert_ = 0;
}

void Einarbeitungsjournal::Schreibe(std::span<const KursDatensatz> saetze) {
    const auto daten = std::as_bytes(saetze);
    SchreibeAn(dateien_, handle_, KopfPlatz + laenge_, daten);
    summe_->Nimm(daten);
    laenge_ += std::ssize(daten);
    ungesichert_ += std::ssize(daten);
    // In portions, so that no single sync takes long.
    if (ungesichert_ < stueck_) return;
    SichereJournal();
    ungesichert_ = 0;
}

void Einarbeitungsjournal::MacheFest(std::int64_t stelle, std::int64_t ersetzt, std::int64_t ende,
                                     const DatenDateikopf& kopf) {
    Kopfsatz satz;
    std::ranges::copy(Kennung, satz.Kennung.begin());
    satz.Stelle = stelle_ = stelle;
    satz.Laenge = laenge_;
    satz.Ersetzt = ersetzt_ = ersetzt;
    satz.Ende = ende_ = grenze_ = ende;
    satz.Fenster = fenster_ = std::min(stueck_, std::max(ende - ersetzt, DatensatzBytes));
    satz.InhaltSumme = summe_->Wert();
    kopf_ = kopf;
    std::ranges::copy(KopfBytes(kopf), satz.Kopf.begin());
    phase_ = Anfangsphase();
    nachtragsstelle_ = KopfPlatz + laenge_ + Fensterplatz();
    // All room that later steps need is there before the data file is touched.
    const std::vector<std::byte> nullen(static_cast<std::size_t>(Fensterplatz() + Vorrat));
    SchreibeAn(dateien_, handle_, KopfPlatz + laenge_, nullen);
    const auto bytes = std::as_bytes(std::span(&satz, 1));
    satz.KopfSumme = Summe(bytes.first(offsetof(Kopfsatz, KopfSumme)));
    SchreibeAn(dateien_, handle_, 0, bytes);
    SichereJournal();
    fest_ = true;
}

std::int64_t Einarbeitungsjournal::NeuesEnde() const {
    return ende_ + Schub() + Bytes(angehaengte_.size());
}

Einarbeitungsjournal::Phase Einarbeitungsjournal::Anfangsphase() const {
    if (Schub() > 0) return Phase::Waechst;
    return Schub() < 0 && ersetzt_ < ende_ ? Phase::Verschiebt : Phase::Schreibt;
}

bool Einarbeitungsjournal::FensterMitDaten() const {
    return std::abs(Schub()) < fenster_;
}

std::int64_t Einarbeitungsjournal::Fensterplatz() const {
    if (Schub() == 0 || ersetzt_ == ende_) return 0;
    return 2 * (TeilkopfBytes + (FensterMitDaten() ? fenster_ : 0));
}

void Einarbeitungsjournal::Uebertrage(Dateihandle datei, std::span<const KursDatensatz> inhalt) {
    if (std::ssize(std::as_bytes(inhalt)) == laenge_) inhalt_ = std::as_bytes(inhalt);
    const std::int64_t groesse = Gelungen(dateien_.Groesse(datei));
    if (GanzeSaetze(groesse) != groesse) Gelungen(dateien_.SetzeLaenge(datei, GanzeSaetze(groesse)));
    if (phase_ == Phase::Waechst) Wachse(datei);
    if (phase_ == Phase::Verschiebt) Verschiebe(datei);
    SchreibeInhalt(datei);
    SchneideAb(datei);
    Sichere(datei);
}

// Live records that lie where the file grows are on the disk elsewhere before they are overwritten.
void Einarbeitungsjournal::Wachse(Dateihandle datei) {
    try {
        for (NimmAuf(datei); grenze_ < NeuesEnde(); NimmAuf(datei)) {
            const std::int64_t bis = std::min(grenze_ + stueck_, NeuesEnde());
            Gelungen(dateien_.Verlaengere(datei, grenze_, bis));
            grenze_ = bis;
            if (grenze_ < NeuesEnde()) LassEreignisseZu();
        }
        TrageNach(Phase::Waechst);
        const std::int64_t ende = NeuesEnde();
        for (std::int64_t hier = ende_; hier < ende;) {
            const std::int64_t bis = std::min(hier + stueck_, ende);
            UebertrageStueck(datei, hier, bis);
            Sichere(datei);
            hier = bis;
            if (hier < ende) LassEreignisseZu();
        }
        if (stelle_ < ende_) TrageNach(stelle_ + laenge_ < ende_ ? Phase::Verschiebt : Phase::Schreibt);
    } catch (const Journalfehler&) {
        NimmWachstumZurueck(datei);
        throw;
    }
}

void Einarbeitungsjournal::NimmWachstumZurueck(Dateihandle datei) {
    BeendeEreignisse();
    NimmAuf(datei);
    try {
        TrageNach(Phase::Waechst);  // over an addition of the next phase that failed half way
    } catch (const Journalfehler&) {
        if (nachgetragen_ < angehaengte_.size()) throw;
        // Then there is none either.
    }
    Gelungen(dateien_.SetzeLaenge(datei, ende_));
    SchreibeAn(dateien_, datei, ende_, std::as_bytes(std::span<const KursDatensatz>(angehaengte_)));
    Gelungen(dateien_.Leere(datei));
    Loesche();
}

// Up: from the end on, as far as the file was before it grew. Down: from the beginning on.
void Einarbeitungsjournal::Verschiebe(Dateihandle datei) {
    const bool auf = Schub() > 0;
    const std::int64_t anfang = stelle_ + laenge_, ende = auf ? ende_ : ende_ + Schub();
    std::int64_t hier = auf ? ende : anfang;
    if (letztes_.Nummer > 0) hier = auf ? letztes_.Dort : letztes_.Dort + letztes_.Laenge;
    while (auf ? hier > anfang : hier < ende) {
        const std::int64_t laenge = std::min(fenster_, auf ? hier - anfang : ende - hier);
        letztes_ = {letztes_.Nummer + 1, auf ? hier - laenge : hier, laenge};
        VerschiebeFenster(datei, letztes_, true);
        // A window is made fast before the next one overwrites its source.
        Sichere(datei);
        hier = auf ? letztes_.Dort : letztes_.Dort + laenge;
        LassEreignisseZu();
    }
    TrageNach(Phase::Schreibt);
}

// `merken`: into the journal first.
void Einarbeitungsjournal::VerschiebeFenster(Dateihandle datei, const Fensterstand& fenster, bool merken) {
    const std::int64_t hier =
        KopfPlatz + laenge_ + (fenster.Nummer % 2) * (TeilkopfBytes + (FensterMitDaten() ? fenster_ : 0));
    const std::int64_t quelle = fenster.Dort - Schub();
    if (merken) {
        std::vector<std::byte> daten(FensterMitDaten() ? static_cast<std::size_t>(fenster.Laenge) : 0);
        if (!LiesAn(dateien_, datei, quelle, daten)) throw Journalfehler(-EIO);
        Teilkopf kopf{{fenster.Nummer, fenster.Dort, fenster.Laenge}};
        kopf.Summe = Teilsumme(kopf, daten);
        SchreibeAn(dateien_, handle_, hier + TeilkopfBytes, daten);
        SchreibeAn(dateien_, handle_, hier, std::as_bytes(std::span(&kopf, 1)));
        SichereJournal();
    }
    if (FensterMitDaten())
        Kopiere(handle_, hier + TeilkopfBytes, datei, fenster.Dort, fenster.Laenge);
    else
        Kopiere(datei, quelle, datei, fenster.Dort, fenster.Laenge);
}

void Einarbeitungsjournal::SchreibeInhalt(Dateihandle datei) {
    // Behind the old end the growth has written it.
    const std::int64_t bis = std::min(ende_, stelle_ + laenge_);
    for (std::int64_t stelle = stelle_; stelle < bis;) {
        const std::int64_t naechste = std::min(stelle + stueck_, bis);
        UebertrageStueck(datei, stelle, naechste);
        stelle = naechste;
        if (stelle == bis) break;
        Sichere(datei);
        LassEreignisseZu();
    }
}

// What has been appended since the file was as long as the journal knows. Zeros aren't records: they are the journal's
// own, or what a power failure has left of some.
std::vector<KursDatensatz> Einarbeitungsjournal::LiesAngehaengte(Dateihandle datei) {
    const std::int64_t ende = GanzeSaetze(Gelungen(dateien_.Groesse(datei)));
    std::vector<KursDatensatz> saetze, teil;
    for (std::int64_t hier = grenze_; hier < ende; hier += Bytes(teil.size())) {
        teil.resize(static_cast<std::size_t>(std::min(Lesestueck, ende - hier) / DatensatzBytes));
        if (!LiesAn(dateien_, datei, hier, std::as_writable_bytes(std::span(teil)))) throw Journalfehler(-EIO);
        std::ranges::remove_copy_if(teil, std::back_inserter(saetze), IstNull);
    }
    return saetze;
}

// No events between this and what rests on it: behind it all live records are known.
void Einarbeitungsjournal::NimmAuf(Dateihandle datei) {
    const auto neue = LiesAngehaengte(datei);
    angehaengte_.insert(angehaengte_.end(), neue.begin(), neue.end());
    grenze_ = std::max(grenze_, GanzeSaetze(Gelungen(dateien_.Groesse(datei))));
}

void Einarbeitungsjournal::SchneideAb(Dateihandle datei) {
    if (Schub() >= 0) return;  // what has come meanwhile stands where it belongs
    const auto letzte = BereiteSchnittVor(datei);
    SchreibeAn(dateien_, datei, NeuesEnde(), std::as_bytes(std::span(letzte)));
    Gelungen(dateien_.SetzeLaenge(datei, NeuesEnde() + Bytes(letzte.size())));
    if (phase_ == Phase::Schneidet) return;
    Sichere(datei);
    // From here on the next record is appended before the old limit.
    grenze_ = NeuesEnde();
    TrageNach(Phase::Schreibt);
}

// Gives the live records that the file has got since the additions of before. Without a helper, or without room for the
// zeros, no events run any more, there are none, and the phase of the cut isn't used.
std::vector<KursDatensatz> Einarbeitungsjournal::BereiteSchnittVor(Dateihandle datei) {
    for (std::int64_t platz = Schnittplatz;; platz *= 2) {
        std::int64_t hier = NeuesEnde();
        NimmAuf(datei);
        const std::int64_t ende = grenze_;
        const bool nebenher = journalweg_.IstNebenher() && dateiweg_.IstNebenher() && LegeNullenAn(datei, platz);
        if (!nebenher) BeendeEreignisse();
        TrageNach(Phase::Schreibt);
        UebertrageStueck(datei, hier, NeuesEnde());
        if (!nebenher) return {};
        hier = NeuesEnde();
        const std::vector<std::byte> nullen(static_cast<std::size_t>(std::min(platz, ende - hier)));
        SchreibeAn(dateien_, datei, hier, nullen);
        Sichere(datei);
        SchreibeNachtrag(Phase::Schneidet, LiesAngehaengte(datei));
        auto letzte = LiesAngehaengte(datei);
        if (Bytes(letzte.size()) < platz) return letzte;
    }
}

// Behind the end of the file; false on a full disk.
bool Einarbeitungsjournal::LegeNullenAn(Dateihandle datei, std::int64_t bytes) {
    if (dateien_.Verlaengere(datei, grenze_, grenze_ + bytes) < 0) {
        Gelungen(dateien_.SetzeLaenge(datei, grenze_));
        return false;
    }
    grenze_ += bytes;
    return true;
}

// Each sync is made in place from here on.
void Einarbeitungsjournal::BeendeEreignisse() {
    journalweg_.Ende();
    dateiweg_.Ende();
}

// In the phase of the cut.
bool Einarbeitungsjournal::IstGeschnitten(Dateihandle datei) {
    KursDatensatz satz;
    return !LiesAn(dateien_, datei, grenze_ - DatensatzBytes, std::as_writable_bytes(std::span(&satz, 1))) ||
           !IstNull(satz);
}

// The new bytes of some places of the data file: content, the rest from where it still stands, the live records that
// were taken over.
void Einarbeitungsjournal::UebertrageStueck(Dateihandle datei, std::int64_t von, std::int64_t bis) {
    const std::int64_t inhaltsende = stelle_ + laenge_, restende = ende_ + Schub();
    if (const std::int64_t ende = std::min(bis, inhaltsende); von < ende) {
        if (inhalt_.empty())
            Kopiere(handle_, KopfPlatz + von - stelle_, datei, von, ende - von);
        else
            SchreibeAn(dateien_, datei, von,
                       inhalt_.subspan(static_cast<std::size_t>(von - stelle_), static_cast<std::size_t>(ende - von)));
        von = ende;
    }
    if (const std::int64_t ende = std::min(bis, restende); von < ende) {
        Kopiere(datei, von - Schub(), datei, von, ende - von);
        von = ende;
    }
    if (von >= bis) return;
    const auto angehaengt = std::as_bytes(std::span<const KursDatensatz>(angehaengte_));
    SchreibeAn(dateien_, datei, von,
               angehaengt.subspan(static_cast<std::size_t>(von - restende), static_cast<std::size_t>(bis - von)));
}

void Einarbeitungsjournal::Kopiere(Dateihandle quelle, std::int64_t ab, Dateihandle datei, std::int64_t dort,
                                   std::int64_t bytes) {
    puffer_.resize(static_cast<std::size_t>(std::min(bytes, Lesestueck)));
    for (std::int64_t fertig = 0; fertig < bytes;) {
        const auto teil = std::span(puffer_).first(static_cast<std::size_t>(std::min(Lesestueck, bytes - fertig)));
        if (!LiesAn(dateien_, quelle, ab + fertig, teil)) throw Journalfehler(-EIO);
        SchreibeAn(dateien_, datei, dort + fertig, teil);
        fertig += std::ssize(teil);
    }
}

// The live records that stand in no addition yet.
void Einarbeitungsjournal::TrageNach(Phase phase) {
    SchreibeNachtrag(phase, std::span<const KursDatensatz>(angehaengte_).subspan(nachgetragen_));
    nachgetragen_ = angehaengte_.size();
}

void Einarbeitungsjournal::SchreibeNachtrag(Phase phase, std::span<const KursDatensatz> saetze) {
    Teilkopf kopf{{grenze_, static_cast<std::int64_t>(phase), std::ssize(saetze)}};
    kopf.Summe = Teilsumme(kopf, std::as_bytes(saetze));
    std::vector<std::byte> bytes(sizeof kopf + saetze.size_bytes());
    std::memcpy(bytes.data(), &kopf, sizeof kopf);
    if (!saetze.empty()) std::memcpy(bytes.data() + sizeof kopf, saetze.data(), saetze.size_bytes());
    SchreibeAn(dateien_, handle_, nachtragsstelle_, bytes);
    SichereJournal();
    nachtragsstelle_ += std::ssize(bytes);
    phase_ = phase;
}

void Einarbeitungsjournal::Loesche() {
    Gelungen(dateien_.Loesche(pfad_));
    BeendeEreignisse();
    dateien_.Schliesse(handle_);
    handle_ = KeinHandle;
}

// ---- the journal that a crash has left

int Einarbeitungsjournal::Uebernimm(const std::string& dateipfad, Anderswo anderswo) {
    pfad_ = dateipfad + std::string(Journalendung);
    fest_ = true;
    handle_ = dateien_.Oeffne(pfad_, Oeffnen::LesenSchreiben);
    if (handle_ < 0) return handle_;
    int fehler = dateien_.Sperre(handle_);
    if (fehler == -ENOLCK) fehler = anderswo == Anderswo::Keine ? 0 : -EWOULDBLOCK;
    if (fehler < 0) return fehler;
    return dateien_.DateiExistiert(pfad_) ? 0 : -ENOENT;  // done by somebody else meanwhile
}

Einarbeitungsjournal::Befund Einarbeitungsjournal::Lies() {
    Kopfsatz satz;
    const auto bytes = std::as_writable_bytes(std::span(&satz, 1));
    // A head that was torn as it was written has no sum yet.
    if (!LiesAn(dateien_, handle_, 0, bytes) || satz.KopfSumme == 0) return Befund::NichtFest;
    const bool gueltig = std::ranges::equal(satz.Kennung, Kennung) &&
                         satz.KopfSumme == Summe(bytes.first(offsetof(Kopfsatz, KopfSumme)));
    if (!gueltig) return Befund::Unlesbar;
    stelle_ = satz.Stelle, laenge_ = satz.Laenge, ersetzt_ = satz.Ersetzt, fenster_ = satz.Fenster;
    ende_ = grenze_ = satz.Ende;
    std::memcpy(&kopf_, satz.Kopf.data(), sizeof kopf_);
    Pruefsumme summe;
    puffer_.resize(static_cast<std::size_t>(Lesestueck));
    for (std::int64_t fertig = 0; fertig < laenge_;) {
        const auto teil = std::span(puffer_).first(static_cast<std::size_t>(std::min(Lesestueck, laenge_ - fertig)));
        if (!LiesAn(dateien_, handle_, KopfPlatz + fertig, teil)) return Befund::Unlesbar;
        summe.Nimm(teil);
        fertig += std::ssize(teil);
    }
    if (summe.Wert() != satz.InhaltSumme) return Befund::Unlesbar;
    phase_ = Anfangsphase();
    LiesFenster();
    nachtragsstelle_ = KopfPlatz + laenge_ + Fensterplatz();
    while (LiesNachtrag()) {
    }
    return Befund::Gueltig;
}

bool Einarbeitungsjournal::GehoertZu(Dateihandle datei) {
    DatenDateikopf kopf;
    return Gelungen(dateien_.Groesse(datei)) >= std::min(ende_, ende_ + Schub()) &&
           LiesAn(dateien_, datei, 0, KopfBytes(kopf)) && KennungStimmt(kopf);
}

void Einarbeitungsjournal::LiesFenster() {
    if (Fensterplatz() == 0) return;
    for (int i = 0; i < 2; ++i) {
        const std::int64_t hier = KopfPlatz + laenge_ + i * (Fensterplatz() / 2);
        Teilkopf kopf;
        if (!LiesAn(dateien_, handle_, hier, std::as_writable_bytes(std::span(&kopf, 1)))) continue;
        const auto [nummer, dort, laenge] = kopf.Werte;
        if (nummer <= letztes_.Nummer || laenge <= 0 || laenge > fenster_) continue;
        std::vector<std::byte> daten(FensterMitDaten() ? static_cast<std::size_t>(laenge) : 0);
        if (!LiesAn(dateien_, handle_, hier + TeilkopfBytes, daten) || kopf.Summe != Teilsumme(kopf, daten)) continue;
        letztes_ = {nummer, dort, laenge};
    }
}

// False behind the last whole one.
bool Einarbeitungsjournal::LiesNachtrag() {
    Teilkopf kopf;
    if (!LiesAn(dateien_, handle_, nachtragsstelle_, std::as_writable_bytes(std::span(&kopf, 1)))) return false;
    const std::int64_t platz = Gelungen(dateien_.Groesse(handle_)) - nachtragsstelle_;
    const auto [grenze, phase, anzahl] = kopf.Werte;
    if (grenze < DateikopfBytes || anzahl < 0 || anzahl > platz / DatensatzBytes) return false;
    std::vector<KursDatensatz> saetze(static_cast<std::size_t>(anzahl));
    const std::int64_t stelle = nachtragsstelle_ + TeilkopfBytes;
    if (!LiesAn(dateien_, handle_, stelle, std::as_writable_bytes(std::span(saetze)))) return false;
    if (kopf.Summe != Teilsumme(kopf, std::as_bytes(std::span(saetze)))) return false;
    grenze_ = grenze;
    phase_ = static_cast<Phase>(phase);
    beimSchnitt_.clear();
    auto& ziel = phase_ == Phase::Schneidet ? beimSchnitt_ : angehaengte_;
    ziel.insert(ziel.end(), saetze.begin(), saetze.end());
    nachgetragen_ = angehaengte_.size();
    nachtragsstelle_ = stelle + Bytes(saetze.size());
    return true;
}

bool Einarbeitungsjournal::Vollende(Dateihandle datei) {
    if (phase_ == Phase::Schneidet) {
        const bool geschnitten = IstGeschnitten(datei);
        angehaengte_.insert(angehaengte_.end(), beimSchnitt_.begin(), beimSchnitt_.end());
        grenze_ = geschnitten ? NeuesEnde() : grenze_ + Bytes(beimSchnitt_.size());
    }
    NimmAuf(datei);
    grenze_ = std::max(grenze_, NeuesEnde());
    TrageNach(phase_ == Phase::Schneidet ? Phase::Schreibt : phase_);
    if (phase_ == Phase::Waechst) {
        try {
            UebertrageStueck(datei, ende_, NeuesEnde());
            Gelungen(dateien_.Leere(datei));
            TrageNach(Phase::Verschiebt);
        } catch (const Journalfehler&) {
            NimmWachstumZurueck(datei);
            return false;
        }
        letztes_ = {};
    }
    if (phase_ == Phase::Verschiebt) {
        if (letztes_.Nummer > 0) VerschiebeFenster(datei, letztes_, false);
        Gelungen(dateien_.Leere(datei));
        Verschiebe(datei);
    }
    UebertrageStueck(datei, stelle_, stelle_ + laenge_);
    UebertrageStueck(datei, ende_ + Schub(), NeuesEnde());
    Gelungen(dateien_.SetzeLaenge(datei, NeuesEnde()));
    SchreibeAn(dateien_, datei, 0, KopfBytes(std::as_const(kopf_)));
    Gelungen(dateien_.Leere(datei));
    Loesche();
    return true;
}

void Einarbeitungsjournal::LegeBeiseite() {
    Gelungen(dateien_.BenenneUm(pfad_, pfad_ + ".defekt"));
}

namespace {

struct Dateischluss {
    Dateisystem& Dateien;
    Dateihandle Handle;
    ~Dateischluss() { Dateien.Schliesse(Handle); }
};

Journalstand SchliesseAb(Dateisystem& dateien, const std::string& dateipfad, Anderswo anderswo) {
    Einarbeitungsjournal journal(dateien);
    const int ergebnis = journal.Uebernimm(dateipfad, anderswo);
    if (ergebnis == -ENOENT) return Journalstand::Keines;
    if (ergebnis == -EWOULDBLOCK) return Journalstand::Belegt;
    if (ergebnis < 0) return Journalstand::Gescheitert;
    const auto befund = journal.Lies();
    if (befund == Einarbeitungsjournal::Befund::NichtFest) {
        journal.Loesche();
        return Journalstand::Verworfen;
    }
    const Dateihandle datei = dateien.Oeffne(dateipfad, Oeffnen::LesenSchreiben);
    if (datei == -ENOENT) {  // deleted meanwhile
        journal.Loesche();
        return Journalstand::Verworfen;
    }
    if (datei < 0) return Journalstand::Gescheitert;
    const Dateischluss schluss{dateien, datei};
    if (befund == Einarbeitungsjournal::Befund::Unlesbar || !journal.GehoertZu(datei)) {
        journal.LegeBeiseite();
        return Journalstand::Unlesbar;
    }
    return journal.Vollende(datei) ? Journalstand::Abgeschlossen : Journalstand::Verworfen;
}

}  // namespace

Journalstand SchliesseEinarbeitungAb(Dateisystem& dateien, const std::string& dateipfad, Anderswo anderswo) {
    try {
        return SchliesseAb(dateien, dateipfad, anderswo);
    } catch (const std::exception&) {
        return Journalstand::Gescheitert;
    }
}

}  // namespace zek
