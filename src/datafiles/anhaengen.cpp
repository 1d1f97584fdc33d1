#include "datafiles/anhaengen.h"

#include "datafiles/dateikopf.h"
#include "datafiles/dateinamen.h"
#include "datafiles/reparatur.h"
#include "platform/datum.h"
#include "platform/ohnefehler.h"

#include <algorithm>
#include <cerrno>
#include <optional>
#include <span>
#include <stdexcept>
#include <utility>
#include <vector>

namespace zek {

namespace {

// Records that are read at once on the way back over zeros.
constexpr std::int64_t Nullblock = 4096;

// A call that the system refused, with its errno.
struct Systemfehler : std::runtime_error {
    explicit Systemfehler(std::int64_t ergebnis)
        : std::runtime_error(SystemText(static_cast<int>(-ergebnis))), Nummer(static_cast<int>(-ergebnis)) {}
    int Nummer;
};

bool NurNullen(std::span<const char> feld) {
    return std::ranges::all_of(feld, [](char zeichen) { return zeichen == '\0'; });
}

// The result of a call, unless the system refused it.
std::int64_t OhneSystemfehler(std::int64_t ergebnis) {
    if (ergebnis < 0) throw Systemfehler(ergebnis);
    return ergebnis;
}

// A write at a place that wasn't reached would destroy records.
void Setze(clDateiIO& datei, std::int64_t stelle) {
    OhneSystemfehler(datei.SeekAbsolute(Dateiposition::AusBytes(stelle)));
}

// Fills `saetze` from a place on; false when the file ends before.
bool LiesSaetze(clDateiIO& datei, std::int64_t stelle, std::span<KursDatensatz> saetze) {
    Setze(datei, stelle);
    auto rest = std::as_writable_bytes(saetze);
    while (!rest.empty()) {
        const std::int64_t gelesen = OhneSystemfehler(datei.Lies(rest));
        if (gelesen == 0) return false;
        rest = rest.subspan(static_cast<std::size_t>(gelesen));
    }
    return true;
}

// Where the records with a Datum of 0 at the very end begin; 16 bytes before the header's end when there are no
// others. Nothing when the last record is a good one, or when the file ends before its size.
std::optional<std::int64_t> NullsaetzeAb(clDateiIO& datei, std::int64_t groesse) {
    std::int64_t ende = groesse;  // what lies behind is zero
    std::int64_t anzahl = (groesse - DateikopfBytes) / DatensatzBytes;
    std::int64_t hoechstens = 1;  // nearly always the last record is good
    std::vector<KursDatensatz> block;
    while (anzahl > 0) {
        const std::int64_t menge = std::min(anzahl, hoechstens);
        block.resize(static_cast<std::size_t>(menge));
        if (!LiesSaetze(datei, ende - menge * DatensatzBytes, block)) return std::nullopt;
        const auto gut = std::find_if(block.rbegin(), block.rend(), [](const auto& satz) { return satz.Datum != 0.0; });
        ende -= (gut - block.rbegin()) * DatensatzBytes;
        if (gut != block.rend()) return ende < groesse ? std::optional(ende) : std::nullopt;
        anzahl -= menge;
        hoechstens = Nullblock;
    }
    return ende < groesse ? std::optional(ende - DatensatzBytes) : std::nullopt;
}

// What a short write left behind goes, so that the file stays whole and takes the next record.
void NimmZurueck(clDateiIO& datei, std::int64_t groesse) {
    Setze(datei, groesse);
    datei.SetzeDateiEnde();
}

}  // namespace

bool DateiEndeBereinigen(clDateiIO& datei, const std::string& name) {
    bool gefunden = false;
    // An error on the way leaves it false: nothing is cut then.
    OhneFehler("Nullsätze suchen", [&] {
        const auto ab = NullsaetzeAb(datei, datei.FileSize().Bytes());
        if (ab) Setze(datei, *ab);
        gefunden = ab.has_value();
    });
    if (!gefunden) return false;
    datei.SetzeDateiEnde();
    datei.CloseFile();
    OhneFehler("Datei nach Nullsätzen öffnen", [&] { datei.OpenFile(name, false); });
    return true;
}

Datensatzschreiber::Datensatzschreiber(const IBModul& modul, Dateisystem& dateien, Statusausgabe& status,
                                       Volumenfrage vorzeichenVolumen, Ablagewache* wache)
    : modul_(modul),
      dateien_(dateien),
      status_(status),
      vorzeichenVolumen_(std::move(vorzeichenVolumen)),
      wache_(wache),
      datei_(dateien),
      wissen_(dateien) {}

void Datensatzschreiber::DatensatzAnhaengen(clTitelobjekt& titel, std::int32_t kursart, float kurs, float volume,
                                            bool kontodaten, Zeitpunkt jetzt) noexcept {
    Ausgang ausgang = Ausgang::Gescheitert;
    OhneFehler("Datensatz anhängen", [&] {
        try {
            BildePfad(titel, kursart, kontodaten);
            Oeffne(titel, kursart, kontodaten);
            ausgang = Anhaengen(titel, kursart, kurs, volume, jetzt);
        } catch (const DateiFehler& fehler) {
            systemfehler_ = fehler.Systemfehler();
            MeldeFehler(fehler.Nummer(), fehler.what());
        } catch (const Systemfehler& fehler) {
            systemfehler_ = fehler.Nummer;
            MeldeFehler(fehler.Nummer, fehler.what());
        } catch (const std::exception& fehler) {
            systemfehler_ = 0;
            MeldeFehler(0, fehler.what());
        }
    });
    if (datei_.IsOpen()) datei_.CloseFile();
    if (ausgang != Ausgang::Gespeichert || !gescheitert_.empty()) Unterrichte(titel, kursart, ausgang);
}

void Datensatzschreiber::Unterrichte(const clTitelobjekt& titel, std::int32_t kursart, Ausgang ausgang) {
    if (wache_ == nullptr) return;
    OhneFehler("Wache über das Speichern", [&] {
        if (ausgang == Ausgang::Gespeichert) {
            if (gescheitert_.erase(pfad_) > 0)
                wache_->WiederGespeichert(titel, kursart);
            else
                wache_->AnderesGespeichert();
            return;
        }
        gescheitert_.insert(pfad_);
        if (ausgang == Ausgang::Beschaedigt)
            wache_->DateiBeschaedigt(titel, kursart);
        else
            wache_->SpeichernGescheitert(titel, kursart, systemfehler_);
    });
}

void Datensatzschreiber::BildePfad(clTitelobjekt& titel, std::int32_t kursart, bool kontodaten) {
    pfad_.clear();
    const std::string_view eigener = kontodaten ? Kontodatenordner(modul_) : std::string_view();
    if (eigener.empty()) {
        OrdnertextAnhaengen(modul_, titel, pfad_);
    } else {
        pfad_ += eigener;
        if (!pfad_.ends_with('/')) pfad_ += '/';
    }
    DateinameAnhaengen(titel, kursart, pfad_);
}

void Datensatzschreiber::Oeffne(clTitelobjekt& titel, std::int32_t kursart, bool kontodaten) {
    if (!andereSchreibweise_.empty()) {
        const auto fund = andereSchreibweise_.find(pfad_);
        if (fund != andereSchreibweise_.end() && datei_.OeffneVorhandene(fund->second)) return;
    }
    if (datei_.OeffneVorhandene(pfad_)) return;
    std::string wirklich = Dateipfad(modul_, dateien_, titel, kursart, kontodaten, &wissen_);
    datei_.OpenFile(wirklich, false);
    wissen_.Angelegt(wirklich);
    if (wirklich != pfad_) andereSchreibweise_.insert_or_assign(pfad_, std::move(wirklich));
}

Datensatzschreiber::Ausgang Datensatzschreiber::Anhaengen(clTitelobjekt& titel, std::int32_t kursart, float kurs,
                                                          float volume, Zeitpunkt jetzt) {
    std::int64_t groesse = datei_.FileSize().Bytes();
    bool beiEinarbeitung = false;
    if (groesse != 0 && !titel.KonsistenzGecheckt(kursart))
        groesse = NachUnterbrochenerEinarbeitung(groesse, beiEinarbeitung);
    if (groesse == 0) {
        LegeKopfAn(titel, kursart);
        groesse = DateikopfBytes;
    } else if (groesse < DateikopfBytes || (groesse - DateikopfBytes) % DatensatzBytes != 0) {
        return Ausgang::Beschaedigt;  // left as it is
    } else if (!titel.KonsistenzGecheckt(kursart) && !beiEinarbeitung) {
        groesse = Erstpruefung(titel, kursart, groesse);
    }
    Setze(datei_, groesse);
    KursDatensatz satz{DatumAus(jetzt) + titel.ZeitKorrektur, kurs, volume};
    if (kursart == kursart::BAVolume) satz.Volume = vorzeichenVolumen_(titel);
    const std::int64_t geschrieben = OhneSystemfehler(datei_.Schreibe(std::as_bytes(std::span(&satz, 1))));
    if (geschrieben == DatensatzBytes) return Ausgang::Gespeichert;
    NimmZurueck(datei_, groesse);
    systemfehler_ = ENOSPC;  // what a short write means
    return Ausgang::Gescheitert;
}

// A merge that was broken off is finished before the first write of a run; one that is going on takes the record along,
// and has zeros of its own at the file's end.
std::int64_t Datensatzschreiber::NachUnterbrochenerEinarbeitung(std::int64_t groesse, bool& imGange) {
    const Journalstand stand = SchliesseEinarbeitungAb(dateien_, datei_.FileName());
    // One that the system keeps from being finished is met again with each tick.
    if (const std::string text = Journaltext(stand); !text.empty() && stand != Journalstand::Gescheitert)
        status_.Statusmeldung("Datendatei " + datei_.FileName() + ": " + text, !IstGut(stand));
    imGange = stand == Journalstand::Belegt;
    const bool geaendert = stand == Journalstand::Abgeschlossen || stand == Journalstand::Verworfen;
    return geaendert ? datei_.FileSize().Bytes() : groesse;
}

// The check at the first write of a run; returns the size to go on with.
std::int64_t Datensatzschreiber::Erstpruefung(clTitelobjekt& titel, std::int32_t kursart, std::int64_t groesse) {
    DatenDateikopf kopf;
    if (datei_.Lies(KopfBytes(kopf)) > 0 && NurNullen(kopf.KurzName) && NurNullen(kopf.LangSymbol)) {
        Setze(datei_, 0);
        datei_.WriteNewHeader(titel, kursart);
    }
    const std::string name = datei_.FileName();
    if (DateiEndeBereinigen(datei_, name)) groesse = datei_.FileSize().Bytes();
    titel.KonsistenzGecheckt(kursart, true);
    return groesse;
}

void Datensatzschreiber::LegeKopfAn(clTitelobjekt& titel, std::int32_t kursart) {
    const std::int64_t geschrieben = datei_.WriteNewHeader(titel, kursart);
    if (geschrieben == DateikopfBytes) return;
    NimmZurueck(datei_, 0);
    throw Systemfehler(geschrieben < 0 ? geschrieben : -ENOSPC);
}

void Datensatzschreiber::MeldeFehler(int nummer, const char* text) {
    status_.Statusmeldung("Fehler Nr. " + std::to_string(nummer) + " beim Speichern von " + pfad_ + " (" + text + ")");
}

}  // namespace zek
