#include "datafiles/einarbeitungsjournal.h"

#include "platform/systemtext.h"

#define XXH_INLINE_ALL
#include <xxhash.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstddef>
#include <cstring>
#include <utility>

namespace zek {

namespace {

constexpr std::string_view Kennung("Tessaron ZEK Einarbeitung 01.00\0", 32);
constexpr std::int64_t KopfPlatz = 1024;
// Room for additions that is there before the data file is touched.
constexpr std::int64_t Vorrat = 16384;
constexpr std::int64_t Waechst = 0, Ueberschreibt = 1;
constexpr std::int64_t Lesestueck = std::int64_t{1} << 20;

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

std::uint64_t Summe(std::span<const std::byte> daten) {
    return XXH3_64bits(daten.data(), daten.size());
}

struct Kopfsatz {
    std::array<char, 32> Kennung{};
    std::int64_t Stelle = 0, Laenge = 0, Ende = 0, RestBleibt = 0;
    std::uint64_t InhaltSumme = 0;
    std::array<std::byte, sizeof(DatenDateikopf)> Kopf{};
    std::uint64_t KopfSumme = 0;
};
static_assert(sizeof(Kopfsatz) == 936);
static_assert(offsetof(Kopfsatz, Kopf) == 72);

struct Nachtragskopf {
    std::int64_t Grenze = 0, Phase = 0, Anzahl = 0;
    std::uint64_t Summe = 0;
};
static_assert(sizeof(Nachtragskopf) == 32);

std::uint64_t Nachtragssumme(const Nachtragskopf& kopf, std::span<const KursDatensatz> saetze) {
    const auto anfang = std::as_bytes(std::span(&kopf, 1)).first(offsetof(Nachtragskopf, Summe));
    const auto daten = std::as_bytes(saetze);
    return XXH3_64bits_withSeed(daten.data(), daten.size(), Summe(anfang));
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

Einarbeitungsjournal::Einarbeitungsjournal(Dateisystem& dateien, std::int64_t stueck)
    : dateien_(dateien), stueck_(stueck) {}

Einarbeitungsjournal::~Einarbeitungsjournal() {
    if (handle_ < 0) return;
    if (!fest_) dateien_.Loesche(pfad_);
    dateien_.Schliesse(handle_);
}

std::int64_t Einarbeitungsjournal::Platzbedarf(std::int64_t saetze) {
    return KopfPlatz + saetze * DatensatzBytes + Vorrat;
}

// ---- a merge

void Einarbeitungsjournal::Beginne(const std::string& dateipfad) {
    pfad_ = dateipfad + std::string(Journalendung);
    handle_ = static_cast<Dateihandle>(Gelungen(dateien_.Oeffne(pfad_, Oeffnen::Anlegen)));
    fest_ = true;  // somebody else's, as long as it isn't locked
    Gelungen(dateien_.Sperre(handle_));
    fest_ = false;
    Gelungen(dateien_.SetzeLaenge(handle_, 0));
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
    Gelungen(dateien_.Leere(handle_));
    ungesichert_ = 0;
}

void Einarbeitungsjournal::MacheFest(std::int64_t stelle, std::int64_t ende, bool restBleibt,
                                     const DatenDateikopf& kopf) {
    nachtragsstelle_ = KopfPlatz + laenge_;
    const std::vector<std::byte> nullen(Vorrat);
    SchreibeAn(dateien_, handle_, nachtragsstelle_, nullen);
    Kopfsatz satz;
    std::ranges::copy(Kennung, satz.Kennung.begin());
    satz.Stelle = stelle_ = stelle;
    satz.Laenge = laenge_;
    satz.Ende = ende_ = grenze_ = ende;
    satz.RestBleibt = restBleibt ? 1 : 0;
    restBleibt_ = restBleibt;
    satz.InhaltSumme = summe_->Wert();
    kopf_ = kopf;
    std::ranges::copy(KopfBytes(kopf), satz.Kopf.begin());
    const auto bytes = std::as_bytes(std::span(&satz, 1));
    satz.KopfSumme = Summe(bytes.first(offsetof(Kopfsatz, KopfSumme)));
    SchreibeAn(dateien_, handle_, 0, bytes);
    Gelungen(dateien_.Leere(handle_));
    fest_ = true;
    phase_ = !restBleibt_ && NeuesEnde() > ende_ ? Waechst : Ueberschreibt;
}

std::int64_t Einarbeitungsjournal::NeuesEnde() const {
    return stelle_ + laenge_ + Bytes(angehaengte_.size());
}

void Einarbeitungsjournal::Uebertrage(Dateihandle datei, const Pause& pause) {
    const std::int64_t groesse = Gelungen(dateien_.Groesse(datei));
    if (GanzeSaetze(groesse) != groesse) Gelungen(dateien_.SetzeLaenge(datei, GanzeSaetze(groesse)));
    if (phase_ == Waechst) Wachse(datei, pause);
    const std::int64_t bis = std::min(ende_, NeuesEnde());
    for (std::int64_t stelle = stelle_; stelle < bis;) {
        const std::int64_t naechste = std::min(stelle + stueck_, bis);
        UebertrageStueck(datei, stelle, naechste);
        stelle = naechste;
        if (stelle == bis) break;
        Gelungen(dateien_.Leere(datei));
        if (pause) pause();
    }
    if (!restBleibt_) SchneideAb(datei);
    Gelungen(dateien_.Leere(datei));
}

// Live records that lie where the file grows next are taken over before they are overwritten.
void Einarbeitungsjournal::Wachse(Dateihandle datei, const Pause& pause) {
    try {
        std::vector<KursDatensatz> neue;
        for (std::int64_t hier = ende_; hier < NeuesEnde();) {
            const std::int64_t bis = std::min(std::max(hier + stueck_, hier + Bytes(neue.size())), NeuesEnde());
            TrageNach(bis, Waechst, neue);
            UebertrageStueck(datei, hier, bis);
            hier = bis;
            if (hier == NeuesEnde()) break;
            Gelungen(dateien_.Leere(datei));
            if (pause) pause();
            neue = LiesAngehaengte(datei);
            angehaengte_.insert(angehaengte_.end(), neue.begin(), neue.end());
        }
        if (stelle_ < ende_) TrageNach(grenze_, Ueberschreibt, {});
    } catch (const Journalfehler&) {
        NimmWachstumZurueck(datei);
        throw;
    }
}

void Einarbeitungsjournal::NimmWachstumZurueck(Dateihandle datei) {
    Gelungen(dateien_.SetzeLaenge(datei, ende_));
    SchreibeAn(dateien_, datei, ende_, std::as_bytes(std::span<const KursDatensatz>(angehaengte_)));
    Loesche();
}

// What has been appended since the file was as long as the journal knows.
std::vector<KursDatensatz> Einarbeitungsjournal::LiesAngehaengte(Dateihandle datei) {
    const std::int64_t bytes = GanzeSaetze(Gelungen(dateien_.Groesse(datei))) - grenze_;
    std::vector<KursDatensatz> saetze(static_cast<std::size_t>(std::max<std::int64_t>(bytes, 0) / DatensatzBytes));
    if (!LiesAn(dateien_, datei, grenze_, std::as_writable_bytes(std::span(saetze)))) throw Journalfehler(-EIO);
    return saetze;
}

void Einarbeitungsjournal::SchneideAb(Dateihandle datei) {
    if (NeuesEnde() >= grenze_) return;  // what has come meanwhile stands where it belongs
    const auto neue = LiesAngehaengte(datei);
    if (!neue.empty()) {
        const std::int64_t hierhin = NeuesEnde();
        TrageNach(grenze_ + Bytes(neue.size()), Ueberschreibt, neue);
        angehaengte_.insert(angehaengte_.end(), neue.begin(), neue.end());
        SchreibeAn(dateien_, datei, hierhin, std::as_bytes(std::span(neue)));
    }
    Gelungen(dateien_.SetzeLaenge(datei, NeuesEnde()));
    // From here on the next record is appended before the old limit.
    TrageNach(NeuesEnde(), Ueberschreibt, {});
}

// Content and, behind it, the live records that were taken over; places in the data file.
void Einarbeitungsjournal::UebertrageStueck(Dateihandle datei, std::int64_t von, std::int64_t bis) {
    const std::int64_t inhaltsende = stelle_ + laenge_;
    puffer_.resize(static_cast<std::size_t>(Lesestueck));
    for (std::int64_t stelle = von; stelle < std::min(bis, inhaltsende);) {
        const auto anzahl = static_cast<std::size_t>(std::min({Lesestueck, bis - stelle, inhaltsende - stelle}));
        const auto teil = std::span(puffer_).first(anzahl);
        if (!LiesAn(dateien_, handle_, KopfPlatz + stelle - stelle_, teil)) throw Journalfehler(-EIO);
        SchreibeAn(dateien_, datei, stelle, teil);
        stelle += std::ssize(teil);
    }
    const std::int64_t ab = std::max(von, inhaltsende);
    if (ab >= bis) return;
    SchreibeAn(dateien_, datei, ab,
               std::as_bytes(std::span<const KursDatensatz>(angehaengte_))
                   .subspan(static_cast<std::size_t>(ab - inhaltsende), static_cast<std::size_t>(bis - ab)));
}

void Einarbeitungsjournal::TrageNach(std::int64_t grenze, std::int64_t phase, std::span<const KursDatensatz> saetze) {
    Nachtragskopf kopf{grenze, phase, std::ssize(saetze)};
    kopf.Summe = Nachtragssumme(kopf, saetze);
    std::vector<std::byte> bytes(sizeof kopf + saetze.size_bytes());
    std::memcpy(bytes.data(), &kopf, sizeof kopf);
    if (!saetze.empty()) std::memcpy(bytes.data() + sizeof kopf, saetze.data(), saetze.size_bytes());
    SchreibeAn(dateien_, handle_, nachtragsstelle_, bytes);
    Gelungen(dateien_.Leere(handle_));
    nachtragsstelle_ += std::ssize(bytes);
    grenze_ = grenze;
    phase_ = phase;
}

void Einarbeitungsjournal::Loesche() {
    Gelungen(dateien_.Loesche(pfad_));
    dateien_.Schliesse(handle_);
    handle_ = KeinHandle;
}

// ---- the journal that a crash has left

int Einarbeitungsjournal::Uebernimm(const std::string& dateipfad) {
    pfad_ = dateipfad + std::string(Journalendung);
    fest_ = true;
    handle_ = dateien_.Oeffne(pfad_, Oeffnen::LesenSchreiben);
    if (handle_ < 0) return handle_;
    if (const int fehler = dateien_.Sperre(handle_); fehler < 0) return fehler;
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
    stelle_ = satz.Stelle, laenge_ = satz.Laenge, ende_ = grenze_ = satz.Ende;
    restBleibt_ = satz.RestBleibt != 0;
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
    phase_ = !restBleibt_ && NeuesEnde() > ende_ ? Waechst : Ueberschreibt;
    nachtragsstelle_ = KopfPlatz + laenge_;
    while (LiesNachtrag()) {
    }
    return Befund::Gueltig;
}

bool Einarbeitungsjournal::GehoertZu(Dateihandle datei) {
    DatenDateikopf kopf;
    return Gelungen(dateien_.Groesse(datei)) >= stelle_ && LiesAn(dateien_, datei, 0, KopfBytes(kopf)) &&
           KennungStimmt(kopf);
}

// False behind the last whole one.
bool Einarbeitungsjournal::LiesNachtrag() {
    Nachtragskopf kopf;
    if (!LiesAn(dateien_, handle_, nachtragsstelle_, std::as_writable_bytes(std::span(&kopf, 1)))) return false;
    const std::int64_t platz = Gelungen(dateien_.Groesse(handle_)) - nachtragsstelle_;
    if (kopf.Grenze < DateikopfBytes || kopf.Anzahl < 0 || kopf.Anzahl > platz / DatensatzBytes) return false;
    std::vector<KursDatensatz> saetze(static_cast<std::size_t>(kopf.Anzahl));
    const std::int64_t stelle = nachtragsstelle_ + static_cast<std::int64_t>(sizeof kopf);
    if (!LiesAn(dateien_, handle_, stelle, std::as_writable_bytes(std::span(saetze)))) return false;
    if (kopf.Summe != Nachtragssumme(kopf, saetze)) return false;
    angehaengte_.insert(angehaengte_.end(), saetze.begin(), saetze.end());
    grenze_ = kopf.Grenze;
    phase_ = kopf.Phase;
    nachtragsstelle_ = stelle + Bytes(saetze.size());
    return true;
}

bool Einarbeitungsjournal::Vollende(Dateihandle datei) {
    if (restBleibt_) {
        UebertrageStueck(datei, stelle_, stelle_ + laenge_);
        const std::int64_t groesse = Gelungen(dateien_.Groesse(datei));
        if (GanzeSaetze(groesse) != groesse) Gelungen(dateien_.SetzeLaenge(datei, GanzeSaetze(groesse)));
    } else {
        const auto neue = LiesAngehaengte(datei);
        const std::int64_t ganz = grenze_ + Bytes(neue.size());
        angehaengte_.insert(angehaengte_.end(), neue.begin(), neue.end());
        TrageNach(std::max(ganz, NeuesEnde()), phase_, neue);
        if (phase_ == Waechst) {
            try {
                UebertrageStueck(datei, ende_, NeuesEnde());
            } catch (const Journalfehler&) {
                NimmWachstumZurueck(datei);
                return false;
            }
            TrageNach(grenze_, Ueberschreibt, {});
        }
        UebertrageStueck(datei, stelle_, NeuesEnde());
        Gelungen(dateien_.SetzeLaenge(datei, NeuesEnde()));
    }
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

Journalstand SchliesseAb(Dateisystem& dateien, const std::string& dateipfad) {
    Einarbeitungsjournal journal(dateien);
    const int ergebnis = journal.Uebernimm(dateipfad);
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

Journalstand SchliesseEinarbeitungAb(Dateisystem& dateien, const std::string& dateipfad) {
    try {
        return SchliesseAb(dateien, dateipfad);
    } catch (const std::exception&) {
        return Journalstand::Gescheitert;
    }
}

}  // namespace zek
