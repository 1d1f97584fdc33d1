#include "datafiles/leser.h"

#include "platform/datum.h"

#include <algorithm>

namespace zek {

Dateileser::Dateileser(Dateisystem& dateien) : dateien_(dateien) {}

Dateileser::~Dateileser() {
    Schliesse();
}

void Dateileser::Schliesse() {
    if (handle_ >= 0) dateien_.Schliesse(handle_);
    handle_ = KeinHandle;
}

Dateileser::Ergebnis Dateileser::Oeffne(const std::string& pfad) {
    Schliesse();
    kopf_ = {};
    fehlernummer_ = 0;
    naechster_ = 0;
    const Dateihandle handle = dateien_.Oeffne(pfad, Oeffnen::NurLesen);
    if (handle < 0) {
        fehlernummer_ = -handle;
        return Ergebnis::NichtLesbar;
    }
    handle_ = handle;
    const std::int64_t gelesen = dateien_.Lies(handle_, KopfBytes(kopf_));
    if (gelesen < 0) {
        fehlernummer_ = static_cast<int>(-gelesen);
        return Ergebnis::NichtLesbar;
    }
    if (gelesen < DateikopfBytes) return Ergebnis::ZuKurz;
    return KennungStimmt(kopf_) ? Ergebnis::Offen : Ergebnis::FremdeKennung;
}

std::int64_t Dateileser::Groesse() {
    if (handle_ < 0) return 0;
    return std::max<std::int64_t>(0, dateien_.Groesse(handle_));
}

std::int64_t Dateileser::Anzahl() {
    return std::max<std::int64_t>(0, Groesse() - DateikopfBytes) / DatensatzBytes;
}

int Dateileser::RestBytes() {
    return static_cast<int>(std::max<std::int64_t>(0, Groesse() - DateikopfBytes) % DatensatzBytes);
}

std::span<const KursDatensatz> Dateileser::NaechsterBlock() {
    if (handle_ < 0) return {};
    block_.resize(BlockSaetze);
    const std::int64_t stelle = DateikopfBytes + naechster_ * DatensatzBytes;
    std::int64_t gelesen = dateien_.Suche(handle_, stelle, Ab::Anfang);
    if (gelesen >= 0) gelesen = dateien_.Lies(handle_, std::as_writable_bytes(std::span(block_)));
    if (gelesen < 0) {
        fehlernummer_ = static_cast<int>(-gelesen);
        return {};
    }
    const std::int64_t anzahl = gelesen / DatensatzBytes;
    naechster_ += anzahl;
    return std::span<const KursDatensatz>(block_).first(static_cast<std::size_t>(anzahl));
}

std::optional<KursDatensatz> Dateileser::Satz(std::int64_t nummer) {
    if (handle_ < 0 || nummer < 0) return std::nullopt;
    if (dateien_.Suche(handle_, DateikopfBytes + nummer * DatensatzBytes, Ab::Anfang) < 0) return std::nullopt;
    KursDatensatz satz;
    if (dateien_.Lies(handle_, std::as_writable_bytes(std::span(&satz, 1))) != DatensatzBytes) return std::nullopt;
    return satz;
}

namespace {

// At the end of summer time the hour from 2 to 3 o'clock of October's last Sunday comes twice. The times of a title may
// be corrected by up to a day; then a leap back by most of an hour is known by its length alone.
bool IstUmstellung(Zeitpunkt vorher, Zeitpunkt danach, std::chrono::year jahr) {
    const Zeitpunkt ab = Kalendertag(jahr / std::chrono::October / std::chrono::Sunday[std::chrono::last]) + 2h;
    const Zeitpunkt bis = ab + 1h;
    if (danach >= ab && vorher <= bis) return true;
    const Dauer sprung = vorher - danach;
    return sprung >= 30min && sprung <= 1h && danach >= ab - 24h && danach <= bis + 24h;
}

// Follows the records of a file from the first to the last.
class Satzpruefung {
public:
    explicit Satzpruefung(Dateibefund& befund) : befund_(befund) {}

    void Nimm(const KursDatensatz& satz) {
        const std::int64_t nummer = befund_.Saetze++;
        if (satz.Datum == 0.0) {
            ++befund_.NullsaetzeAmEnde;
            return;
        }
        // A run of zero records is the file's end only until a good one follows.
        befund_.NullsaetzeInnen += befund_.NullsaetzeAmEnde;
        befund_.NullsaetzeAmEnde = 0;
        if (!begonnen_) befund_.Erstes = satz.Datum;
        if (begonnen_ && satz.Datum < befund_.Letztes) NimmRuecksprung(satz.Datum, nummer);
        begonnen_ = true;
        befund_.Letztes = satz.Datum;
    }

private:
    // Once a year the clock is set back.
    void NimmRuecksprung(double danach, std::int64_t nummer) {
        const Zeitpunkt zeit = ZeitpunktAus(danach);
        const auto jahr = std::chrono::year_month_day(TagVon(zeit)).year();
        if (jahr != umgestelltIm_ && IstUmstellung(ZeitpunktAus(befund_.Letztes), zeit, jahr)) {
            umgestelltIm_ = jahr;
            return;
        }
        if (befund_.Rueckspruenge++ == 0) befund_.ErsterRuecksprung = nummer;
    }

    Dateibefund& befund_;
    bool begonnen_ = false;
    std::chrono::year umgestelltIm_{};
};

}  // namespace

Dateibefund PruefeDatei(Dateisystem& dateien, const std::string& pfad) {
    Dateibefund befund;
    Dateileser leser(dateien);
    befund.Ergebnis = leser.Oeffne(pfad);
    befund.Fehlernummer = leser.Fehlernummer();
    befund.Kopf = leser.Kopf();
    befund.Bytes = leser.Groesse();
    if (befund.Ergebnis != Dateileser::Ergebnis::Offen) return befund;
    Satzpruefung pruefung(befund);
    for (auto block = leser.NaechsterBlock(); !block.empty(); block = leser.NaechsterBlock()) {
        for (const KursDatensatz& satz : block) pruefung.Nimm(satz);
    }
    befund.Fehlernummer = leser.Fehlernummer();
    befund.Bytes = leser.Groesse();
    befund.RestBytes = leser.RestBytes();
    return befund;
}

}  // namespace zek
