#include "backfill/einarbeiten.h"

#include "datafiles/anhaengen.h"
#include "datafiles/dateinamen.h"

#include <algorithm>
#include <cerrno>
#include <iterator>
#include <stdexcept>

namespace zek {
namespace {

// Two times closer together than this (0.09 s) count as one where the tail is looked for in jumps.
constexpr double Zeittoleranz = 0.000001;
constexpr std::int64_t Sprung = static_cast<std::int64_t>(Einarbeiter::Blocksaetze) * DatensatzBytes;

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
    std::int64_t Ende = 0;     // behind the last whole record; a torn one isn't a record
    std::int32_t Anzahl = 0;

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
    if (saetze.empty()) return 0;
    Merge merge{form, titel, saetze, kursart, {}, std::make_unique<clDateiIO>(dateien_), {}};
    merge.Filter = kursart == kursart::Bezahlt ? modul_.Einstellungen.IBBezahlt : modul_.Einstellungen.IBAndere;
    try {
        FuehreAus(merge);
    } catch (const std::exception& fehler) {
        status_.Statusmeldung("Fehler beim Einarbeiten von Daten aufgetreten: " + std::string(fehler.what()), true);
        MacheSaetzeGanz(merge);
    }
    form.AbbruchMoeglich(true);
    return merge.Anzahl;
}

void Einarbeiter::FuehreAus(Merge& merge) {
    Oeffne(merge);
    if (!LiesKopf(merge)) return;

    if (merge.HatSaetze()) PruefeKonsistenz(merge);
    Schwanz schwanz;
    std::int64_t stelle = DateikopfBytes;
    if (merge.HatSaetze()) {
        schwanz = LiesSchwanz(merge);
        stelle = Schreibstelle(merge);
    }
    Gehe(merge, stelle);

    pumpe_.Ereignisse();
    merge.Fenster.AbbruchMoeglich(false);
    merge.Fenster.FortschrittMaximum(static_cast<int>(merge.Saetze.size()));
    merge.Anzahl = SchreibeBlock(merge);
    SchreibeSchwanz(merge, schwanz);
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
    merge.Titel.KonsistenzGecheckt(merge.Kursart, true);
}

// The records newer than the block; the first of them may be one that isn't.
Einarbeiter::Schwanz Einarbeiter::LiesSchwanz(Merge& merge) {
    const double letztes = merge.Letztes();
    std::int64_t stelle = merge.Ende;
    std::int64_t anzahl = 0;
    for (;;) {
        if (stelle - Sprung < DateikopfBytes) {
            stelle = DateikopfBytes;
            anzahl = (merge.Ende - DateikopfBytes) / DatensatzBytes;
            break;
        }
        stelle -= Sprung;
        anzahl += static_cast<std::int64_t>(Blocksaetze);
        KursDatensatz satz;
        Gehe(merge, stelle);
        if (LiesSaetze(merge, {&satz, 1}) == 0) WirfSystemfehler(-EIO);
        if (!(satz.Datum > letztes + Zeittoleranz)) {
            stelle += DatensatzBytes;
            break;
        }
    }

    Gehe(merge, stelle);
    puffer_.resize(Blocksaetze);
    for (bool gefunden = false; !gefunden;) {
        const auto rest = static_cast<std::size_t>((merge.Ende - stelle) / DatensatzBytes);
        const std::size_t gelesen = LiesSaetze(merge, std::span(puffer_).first(std::min(rest, Blocksaetze)));
        if (gelesen == 0) return {};
        stelle += static_cast<std::int64_t>(gelesen) * DatensatzBytes;
        for (std::size_t i = 0; i < gelesen && !gefunden; ++i) {
            gefunden = puffer_[i].Datum > letztes;
            if (!gefunden) --anzahl;
        }
    }

    Schwanz schwanz{std::make_unique_for_overwrite<KursDatensatz[]>(static_cast<std::size_t>(anzahl)),
                    static_cast<std::size_t>(anzahl)};
    Gehe(merge, merge.Ende - anzahl * DatensatzBytes);
    if (LiesSaetze(merge, {schwanz.Saetze.get(), schwanz.Anzahl}) < schwanz.Anzahl) WirfSystemfehler(-EIO);
    return schwanz;
}

// The first record that isn't older than the block.
std::int64_t Einarbeiter::Schreibstelle(Merge& merge) {
    const double erstes = merge.Erstes();
    std::int64_t stelle = merge.Ende;
    for (;;) {
        if (stelle - Sprung < DateikopfBytes) {
            stelle = DateikopfBytes;
            break;
        }
        stelle -= Sprung;
        KursDatensatz satz;
        Gehe(merge, stelle);
        if (LiesSaetze(merge, {&satz, 1}) == 0) WirfSystemfehler(-EIO);
        if (satz.Datum < erstes) {
            stelle += DatensatzBytes;
            break;
        }
    }

    Gehe(merge, stelle);
    puffer_.resize(Blocksaetze);
    for (;;) {
        const auto rest = static_cast<std::size_t>((merge.Ende - stelle) / DatensatzBytes);
        const std::size_t gelesen = LiesSaetze(merge, std::span(puffer_).first(std::min(rest, Blocksaetze)));
        if (gelesen == 0) return stelle;
        for (std::size_t i = 0; i < gelesen; ++i, stelle += DatensatzBytes)
            if (!(puffer_[i].Datum < erstes)) return stelle;
    }
}

std::int32_t Einarbeiter::SchreibeBlock(Merge& merge) {
    std::int32_t anzahl = 0;
    for (std::size_t fertig = 0; fertig < merge.Saetze.size();) {
        auto teil = merge.Saetze.subspan(fertig, std::min(Blocksaetze, merge.Saetze.size() - fertig));
        fertig += teil.size();
        const bool ganzerTeil = teil.size() == Blocksaetze;
        if (merge.Filter) {
            puffer_.clear();
            std::copy_if(teil.begin(), teil.end(), std::back_inserter(puffer_),
                         [](const KursDatensatz& satz) { return !(satz.Volume <= 0); });
            teil = puffer_;
        }
        Schreibe(merge, teil);
        anzahl += static_cast<std::int32_t>(teil.size());
        if (!ganzerTeil) break;
        merge.Fenster.FortschrittWert(static_cast<int>(fertig));
        pumpe_.Ereignisse();
    }
    return anzahl;
}

// Runs of newer records go out in one write each.
void Einarbeiter::SchreibeSchwanz(Merge& merge, const Schwanz& schwanz) {
    const double letztes = merge.Letztes();
    const std::span<const KursDatensatz> saetze(schwanz.Saetze.get(), schwanz.Anzahl);
    const auto neuer = [letztes](const KursDatensatz& satz) { return satz.Datum > letztes; };
    for (auto von = saetze.begin(); von != saetze.end();) {
        von = std::find_if(von, saetze.end(), neuer);
        const auto bis = std::find_if_not(von, saetze.end(), neuer);
        Schreibe(merge, {von, bis});
        von = bis;
    }
}

void Einarbeiter::KuerzeDatei(Merge& merge) {
    const Dateiposition stelle = merge.Datei->GetFilePointer();
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
    const std::int64_t erreicht = dateien_.Suche(merge.Datei->FileHandle(), stelle, Ab::Anfang);
    if (erreicht < 0) WirfSystemfehler(erreicht);
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
    return gelesen;
}

std::size_t Einarbeiter::LiesSaetze(Merge& merge, std::span<KursDatensatz> ziel) {
    return Lies(merge, std::as_writable_bytes(ziel)) / sizeof(KursDatensatz);
}

void Einarbeiter::Schreibe(Merge& merge, std::span<const KursDatensatz> saetze) {
    if (saetze.empty()) return;
    merge.Geschrieben = true;
    const int fehler = SchreibeGanz(dateien_, merge.Datei->FileHandle(), std::as_bytes(saetze));
    if (fehler < 0) WirfSystemfehler(fehler);
}

}  // namespace zek
