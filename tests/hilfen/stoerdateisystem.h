// A file system that fails on demand, around another one. It numbers every call from 1, keeps a log of them, and lets
// single calls fail, write short, or be the last before a crash.
#pragma once

#include "platform/dateisystem.h"

#include <cerrno>
#include <cstddef>
#include <limits>
#include <map>
#include <optional>

namespace zek::hilfen {

enum class Dateiaufruf {
    Oeffne,
    Schliesse,
    Lies,
    Schreibe,
    Suche,
    Groesse,
    SetzeLaenge,
    Leere,
    DateiExistiert,
    OrdnerExistiert,
    LegeOrdnerAn,
    Loesche,
    BenenneUm,
    FreierPlatz,
    Ordnerstand,
    Liste,
    Sperre,
};

std::string_view Name(Dateiaufruf art);

// A disturbance. It concerns the calls that match all given conditions, from the `Ab`-th such call on, `Anzahl` times.
struct Stoerung {
    std::optional<Dateiaufruf> Art = {};  // any call when empty
    std::string Pfadteil = {};            // the call's path contains this text; any path when empty
    std::uint64_t Ab = 1;
    std::uint64_t Anzahl = std::numeric_limits<std::uint64_t>::max();
    // What the call answers: -Fehler. Calls that answer true or a list answer false or an empty one. 0 leaves the call
    // to Kurz. A failing Schliesse has no answer and closes all the same.
    int Fehler = EIO;
    // With Fehler 0: Lies and Schreibe move at most so many bytes, others aren't disturbed.
    std::size_t Kurz = 0;
};

class StoerDateisystem : public Dateisystem {
public:
    struct Eintrag {
        Dateiaufruf Art;
        std::string Pfad;       // of the handle for calls on handles; "von -> nach" for BenenneUm
        std::int64_t Ergebnis;  // as returned; 0 and 1 for bool, number of entries for Liste
        bool Gestoert;
    };

    explicit StoerDateisystem(Dateisystem& darunter) : darunter_(darunter) {}

    Dateihandle Oeffne(const std::string& pfad, Oeffnen art) override;
    void Schliesse(Dateihandle handle) override;
    std::int64_t Lies(Dateihandle handle, std::span<std::byte> ziel) override;
    std::int64_t Schreibe(Dateihandle handle, std::span<const std::byte> daten) override;
    std::int64_t Suche(Dateihandle handle, std::int64_t abstand, Ab ab) override;
    std::int64_t Groesse(Dateihandle handle) override;
    int SetzeLaenge(Dateihandle handle, std::int64_t laenge) override;
    int Leere(Dateihandle handle) override;
    bool LeertNebenher() const override { return helfer_; }
    int BeginneLeeren(Dateihandle handle) override;
    std::optional<int> Leerergebnis() override;
    int Sperre(Dateihandle handle) override;
    bool DateiExistiert(const std::string& pfad) override;
    bool OrdnerExistiert(const std::string& pfad) override;
    int LegeOrdnerAn(const std::string& pfad) override;
    int Loesche(const std::string& pfad) override;
    int BenenneUm(const std::string& von, const std::string& nach) override;
    bool GleicheDatei(const std::string& a, const std::string& b) override { return darunter_.GleicheDatei(a, b); }
    std::int64_t FreierPlatz(const std::string& ordner) override;
    std::int64_t Ordnerstand(const std::string& ordner) override;
    std::vector<Verzeichniseintrag> Liste(const std::string& ordner) override;

    // ---- what a test does
    void Stoere(Stoerung stoerung);
    // Only the n-th call of all from now on (1 is the next one).
    void StoereNten(std::uint64_t n, int fehler) { Stoere({.Ab = n, .Anzahl = 1, .Fehler = fehler}); }
    // Every call of a kind.
    void StoereArt(Dateiaufruf art, int fehler) { Stoere({.Art = art, .Fehler = fehler}); }
    // Every call on paths that contain a text.
    void StoerePfad(const std::string& teil, int fehler) { Stoere({.Pfadteil = teil, .Fehler = fehler}); }
    // The n-th write from now on moves only `bytes` bytes.
    void SchreibeKurz(std::uint64_t n, std::size_t bytes) {
        Stoere({.Art = Dateiaufruf::Schreibe, .Ab = n, .Anzahl = 1, .Fehler = 0, .Kurz = bytes});
    }
    // The process dies with the n-th call from now on: it and all later ones answer -EIO and change nothing. When it is
    // a write, its first `angerissen` bytes still reach the file.
    void StuerzeAb(std::uint64_t n, std::size_t angerissen = 0);
    bool Abgestuerzt() const { return absturz_ != 0 && zaehler_ >= absturz_; }
    // Somebody syncs beside this thread: each takes `fragen` unanswered questions for its result, and is then one call
    // of Leere. One that dies with the n-th sync doesn't make it.
    void SetzeHelfer(bool an, int fragen = 1) { helfer_ = an, helferfragen_ = fragen; }
    void HelferStirbtBeim(std::uint64_t n) { helferTod_ = n; }
    bool LeertGerade() const { return leert_ >= 0; }
    // No disturbance and no crash any more.
    void Heile();

    // Number of calls; all, or of one kind, since the last VergissProtokoll.
    std::uint64_t Anzahl() const { return protokollAnzahl_; }
    std::uint64_t Anzahl(Dateiaufruf art) const;
    const std::vector<Eintrag>& Protokoll() const { return protokoll_; }
    // The log as text, one call per line: "Oeffne /d/ES.ZEK".
    std::string Protokolltext() const;
    // Only the kinds in order: "Oeffne Groesse Suche Schreibe Schliesse".
    std::string Muster() const;
    void VergissProtokoll();
    // Long runs count without keeping a log.
    void SetzeProtokoll(bool an) { protokolliert_ = an; }

private:
    struct Urteil {
        int Fehler = 0;
        std::optional<std::size_t> Kurz;
        bool Tot = false;  // crashed: the call below isn't made
    };

    Urteil Beginne(Dateiaufruf art, const std::string& pfad);
    std::int64_t Beende(Dateiaufruf art, const std::string& pfad, std::int64_t ergebnis, bool gestoert);
    template <typename Aufruf>
    std::int64_t Fuehre(Dateiaufruf art, const std::string& pfad, Aufruf aufruf);
    const std::string& PfadVon(Dateihandle handle) const;

    struct Regel {
        Stoerung Was;
        std::uint64_t Gesehen = 0;
    };

    Dateisystem& darunter_;
    std::vector<Regel> regeln_;
    std::map<Dateihandle, std::string> pfade_;
    std::vector<Eintrag> protokoll_;
    std::map<Dateiaufruf, std::uint64_t> jeArt_;
    std::uint64_t zaehler_ = 0;
    std::uint64_t protokollAnzahl_ = 0;
    std::uint64_t absturz_ = 0;  // number of the call that dies; 0 none
    std::size_t angerissen_ = 0;
    bool helfer_ = false;
    int helferfragen_ = 1, gefragt_ = 0;
    std::uint64_t helferTod_ = 0;
    Dateihandle leert_ = KeinHandle;
    bool protokolliert_ = true;
};

}  // namespace zek::hilfen
