#include "datafiles/reparatur.h"

#include "datafiles/dateikopf.h"
#include "datafiles/dateinamen.h"
#include "datafiles/datensatz.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstddef>
#include <span>
#include <utility>

namespace zek {

namespace {

// File systems write whole blocks, of this many bytes or a multiple.
constexpr std::int64_t Block = 512;
constexpr std::int64_t Saetze = 4096;  // read at a time

struct Schliesser {
    Dateisystem& Dateien;
    Dateihandle Handle;
    ~Schliesser() { Dateien.Schliesse(Handle); }
};

// Bytes read, fewer only at the file's end, or -errno.
std::int64_t LiesAb(Dateisystem& dateien, Dateihandle handle, std::int64_t stelle, std::span<std::byte> ziel) {
    std::int64_t gelesen = 0;
    while (!ziel.empty()) {
        const std::int64_t teil = dateien.LiesAn(handle, stelle + gelesen, ziel);
        if (teil < 0) return teil;
        if (teil == 0) break;
        gelesen += teil;
        ziel = ziel.subspan(static_cast<std::size_t>(teil));
    }
    return gelesen;
}

bool NurNullen(std::span<const std::byte> bytes) {
    return std::ranges::all_of(bytes, [](std::byte b) { return b == std::byte{}; });
}

// One look at a file's end.
class Endsuche {
public:
    Endsuche(Dateisystem& dateien, Dateihandle handle) : dateien_(dateien), handle_(handle) {}

    Dateiende Fuehre() {
        ende_.Groesse = dateien_.Groesse(handle_);
        if (ende_.Groesse < 0) return Fehlschlag(ende_.Groesse);
        ende_.Schnitt = ende_.Groesse;
        if (ende_.Groesse == 0) return ende_;
        if (!LiesKopf()) return ende_;
        if (ende_.Groesse < DateikopfBytes) {
            ende_.RestBytes = ende_.Groesse;
            ende_.Schnitt = 0;
            return ende_;
        }
        ende_.RestBytes = (ende_.Groesse - DateikopfBytes) % DatensatzBytes;
        ende_.Schnitt = ende_.Groesse - ende_.RestBytes;
        SucheNullsaetze();
        return ende_;
    }

private:
    Dateiende Fehlschlag(std::int64_t ergebnis) {
        ende_ = {};
        ende_.Fehler = static_cast<int>(-ergebnis);
        return ende_;
    }

    bool LiesKopf() {
        DatenDateikopf kopf{};
        const std::int64_t gelesen = LiesAb(dateien_, handle_, 0, KopfBytes(kopf));
        if (gelesen < 0) return Fehlschlag(gelesen), false;
        ende_.Eigen = KennungStimmt(kopf) || NurNullen(KopfBytes(std::as_const(kopf)));
        return true;
    }

    // Back over the records of zeros. A file of nothing else keeps them: its next append has a rule of its own.
    void SucheNullsaetze() {
        std::array<KursDatensatz, static_cast<std::size_t>(Saetze)> puffer;
        std::int64_t hier = ende_.Schnitt;
        while (hier > DateikopfBytes) {
            const std::int64_t anzahl = std::min(Saetze, (hier - DateikopfBytes) / DatensatzBytes);
            const auto teil = std::span(puffer).first(static_cast<std::size_t>(anzahl));
            const std::int64_t ab = hier - anzahl * DatensatzBytes;
            const std::int64_t gelesen = LiesAb(dateien_, handle_, ab, std::as_writable_bytes(teil));
            if (gelesen < std::ssize(std::as_bytes(teil))) return void(Fehlschlag(gelesen < 0 ? gelesen : -EIO));
            const auto letzter =
                std::find_if(teil.rbegin(), teil.rend(), [](const KursDatensatz& satz) { return satz.Datum != 0.0; });
            hier -= (letzter - teil.rbegin()) * DatensatzBytes;
            if (letzter == teil.rend()) continue;
            Setze(hier, *letzter);
            return;
        }
    }

    void Setze(std::int64_t hier, const KursDatensatz& letzter) {
        ende_.Nullsaetze = (ende_.Schnitt - hier) / DatensatzBytes;
        ende_.HalberSatz = ende_.Nullsaetze > 0 && (hier - DatensatzBytes / 2) % Block == 0 &&
                           NurNullen(std::as_bytes(std::span(&letzter, 1)).subspan(offsetof(KursDatensatz, Kurs)));
        ende_.Schnitt = ende_.HalberSatz ? hier - DatensatzBytes : hier;
    }

    Dateisystem& dateien_;
    Dateihandle handle_;
    Dateiende ende_;
};

std::string Anzahl(std::int64_t zahl, const char* eins, const char* viele) {
    return std::to_string(zahl) + " " + (zahl == 1 ? eins : viele);
}

class Bestandspruefung {
public:
    Bestandspruefung(Dateisystem& dateien, bool nachAbsturz, const std::function<void()>& warte)
        : dateien_(dateien), nachAbsturz_(nachAbsturz), warte_(warte) {}

    void Pruefe(const std::string& ordner, bool auchKataloge) {
        auto eintraege = dateien_.Liste(ordner);
        std::ranges::sort(eintraege, {}, &Verzeichniseintrag::Name);
        for (const auto& eintrag : eintraege) {
            const std::string pfad = ordner + eintrag.Name;
            if (eintrag.IstOrdner) {
                if (auchKataloge) Pruefe(pfad + "/", false);
            } else if (eintrag.Name.ends_with(Journalendung)) {
                SchliesseAb(pfad.substr(0, pfad.size() - Journalendung.size()));
            }
        }
        if (!nachAbsturz_) return;
        for (const auto& eintrag : eintraege)
            if (!eintrag.IstOrdner && ZerlegeDateiname(eintrag.Name)) PruefeEnde(ordner + eintrag.Name);
    }

    std::vector<Bestandsbefund> Befunde;

private:
    void SchliesseAb(const std::string& pfad) {
        Journalstand stand = SchliesseEinarbeitungAb(dateien_, pfad, Anderswo::Keine);
        for (; stand == Journalstand::Belegt && warte_ && wartezahl_ < Bestandswartezahl; ++wartezahl_) {
            warte_();
            stand = SchliesseEinarbeitungAb(dateien_, pfad, Anderswo::Keine);
        }
        if (const std::string text = Journaltext(stand); !text.empty()) Befunde.push_back({pfad, text, IstGut(stand)});
    }

    void PruefeEnde(const std::string& pfad) {
        if (!KoennteAbgerissenSein(pfad)) return;
        const Dateiende ende = UntersucheEnde(dateien_, pfad);
        if (ende.Fehler != 0 || !ende.IstAbgerissen()) return;
        if (ende.VomDateisystem() && SchneideEnde(dateien_, pfad, ende) == 0) {
            Befunde.push_back({pfad, Schnitttext(ende) + " am Ende abgeschnitten", true});
            return;
        }
        Befunde.push_back(
            {pfad, "beschädigt (abgerissenes Ende), nimmt keine Kurse an; mit zek repariere zu beheben", false});
    }

    // By the size alone, so that sound files cost no more than that.
    bool KoennteAbgerissenSein(const std::string& pfad) {
        const Dateihandle handle = dateien_.Oeffne(pfad, Oeffnen::LesenSchreiben);
        if (handle < 0) return false;
        const std::int64_t groesse = dateien_.Groesse(handle);
        dateien_.Schliesse(handle);
        if (groesse <= 0) return false;
        return groesse < DateikopfBytes || (groesse - DateikopfBytes) % DatensatzBytes != 0;
    }

    Dateisystem& dateien_;
    bool nachAbsturz_;
    const std::function<void()>& warte_;
    int wartezahl_ = 0;
};

}  // namespace

bool Dateiende::VomDateisystem() const {
    return Fehler == 0 && Eigen && IstAbgerissen() && Groesse % Block == 0;
}

Dateiende UntersucheEnde(Dateisystem& dateien, const std::string& pfad) {
    // For writing as well: a pipe in the place of a file gives no wait then.
    const Dateihandle handle = dateien.Oeffne(pfad, Oeffnen::LesenSchreiben);
    if (handle < 0) {
        Dateiende ende;
        ende.Fehler = -handle;
        return ende;
    }
    const Schliesser schluss{dateien, handle};
    return Endsuche(dateien, handle).Fuehre();
}

int SchneideEnde(Dateisystem& dateien, const std::string& pfad, const Dateiende& ende) {
    const Dateihandle handle = dateien.Oeffne(pfad, Oeffnen::LesenSchreiben);
    if (handle < 0) return handle;
    const Schliesser schluss{dateien, handle};
    const std::int64_t groesse = dateien.Groesse(handle);
    if (groesse < 0) return static_cast<int>(groesse);
    if (groesse != ende.Groesse) return -EBUSY;
    if (const int fehler = dateien.SetzeLaenge(handle, ende.Schnitt); fehler < 0) return fehler;
    return dateien.Leere(handle);
}

std::string Schnitttext(const Dateiende& ende) {
    const std::int64_t saetze = ende.Nullsaetze;
    std::string text;
    if (ende.RestBytes > 0) text = Anzahl(ende.RestBytes, "Byte", "Bytes");
    const auto fuege = [&text](const std::string& teil) { text += (text.empty() ? "" : " und ") + teil; };
    if (saetze > 0) fuege(Anzahl(saetze, "leerer Datensatz", "leere Datensätze"));
    if (ende.HalberSatz) fuege("ein halber Datensatz");
    return text;
}

std::string Journaltext(Journalstand stand) {
    switch (stand) {
        case Journalstand::Abgeschlossen:
            return "unterbrochene Einarbeitung abgeschlossen";
        case Journalstand::Verworfen:
            return "unterbrochene Einarbeitung verworfen, die Datei ist wie vorher";
        case Journalstand::Unlesbar:
            return "unterbrochene Einarbeitung nicht lesbar, als .defekt beiseitegelegt";
        case Journalstand::Gescheitert:
            return "unterbrochene Einarbeitung noch nicht abgeschlossen (kein Zugriff oder Schreibfehler)";
        case Journalstand::Keines:
        case Journalstand::Belegt:
            break;
    }
    return {};
}

std::vector<Bestandsbefund> StelleBestandWiederHer(Dateisystem& dateien, const std::string& datenordner,
                                                   bool nachAbsturz, const std::function<void()>& warte) {
    Bestandspruefung pruefung(dateien, nachAbsturz, warte);
    pruefung.Pruefe(datenordner.ends_with('/') ? datenordner : datenordner + "/", true);
    return pruefung.Befunde;
}

}  // namespace zek
