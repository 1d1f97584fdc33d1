#include "titles/titeldatei.h"

#include <algorithm>
#include <limits>
#include <span>
#include <vector>

namespace zek {

namespace {

class Handle {
public:
    Handle(Dateisystem& dateien, const std::string& pfad)
        : dateien_(dateien), wert_(dateien.Oeffne(pfad, Oeffnen::Anlegen)) {}
    ~Handle() {
        if (wert_ >= 0) dateien_.Schliesse(wert_);
    }
    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;
    Dateihandle Wert() const { return wert_; }

private:
    Dateisystem& dateien_;
    Dateihandle wert_;
};

std::span<const std::byte> Bytes(std::string_view text) {
    return std::as_bytes(std::span(text.data(), text.size()));
}

// No list of titles comes near it: 32767 of them take some 10 MB. What stands behind isn't read.
constexpr std::int64_t HoechsteLaenge = std::int64_t{64} << 20;
constexpr std::size_t Kopierblock = 65536;

// Reads until `ziel` is full or the file ends. Bytes read, or -errno.
std::int64_t LiesBis(Dateisystem& dateien, Dateihandle handle, std::span<std::byte> ziel) {
    std::size_t gelesen = 0;
    while (gelesen < ziel.size()) {
        const std::int64_t anzahl = dateien.Lies(handle, ziel.subspan(gelesen));
        if (anzahl < 0) return anzahl;
        if (anzahl == 0) break;
        gelesen += static_cast<std::size_t>(anzahl);
    }
    return static_cast<std::int64_t>(gelesen);
}

// Reads `anzahl` bytes, or those that there are, into `inhalt`. 0 or -errno.
int Lies(Dateisystem& dateien, Dateihandle handle, std::int64_t anzahl, std::vector<std::byte>& inhalt) {
    inhalt.resize(static_cast<std::size_t>(anzahl));
    const std::int64_t gelesen = LiesBis(dateien, handle, inhalt);
    inhalt.resize(static_cast<std::size_t>(std::max<std::int64_t>(gelesen, 0)));
    return gelesen < 0 ? static_cast<int>(gelesen) : 0;
}

// What a person could still rescue from the file; the next save overwrites the original. In blocks: a foreign file may
// be of any size.
void LegeKopieDaneben(Dateisystem& dateien, Dateihandle original, const std::string& pfad) {
    const Handle kopie(dateien, pfad + ".defekt");
    if (kopie.Wert() < 0 || dateien.Suche(original, 0, Ab::Anfang) != 0) return;
    std::vector<std::byte> block(Kopierblock);
    std::int64_t laenge = 0;
    for (;;) {
        const std::int64_t gelesen = LiesBis(dateien, original, block);
        if (gelesen <= 0) break;
        if (SchreibeGanz(dateien, kopie.Wert(), std::span(block).first(static_cast<std::size_t>(gelesen))) < 0) return;
        laenge += gelesen;
    }
    dateien.SetzeLaenge(kopie.Wert(), laenge);
}

Werteliste ListeAller(const Titelliste& titel) {
    Werteliste liste;
    liste.Untergrenze = 1;
    liste.Elemente.reserve(titel.Anzahl());
    for (const Titelzeiger& einer : titel) liste.Elemente.push_back(einer->WriteAllPara());
    return liste;
}

}  // namespace

Titeldatei LiesTiteldatei(Dateisystem& dateien, const std::string& ordner) {
    using enum Titeldatei::Zustand;
    const std::string pfad = ordner + std::string(TiteldateiName);
    const Handle datei(dateien, pfad);
    if (datei.Wert() < 0) return {NichtLesbar, SystemText(-datei.Wert()), {}};
    std::vector<std::byte> inhalt;
    const auto kopf = static_cast<std::int64_t>(TiteldateiKennung.size());
    if (const int fehler = Lies(dateien, datei.Wert(), kopf, inhalt); fehler < 0) {
        return {NichtLesbar, SystemText(-fehler), {}};
    }
    if (inhalt.empty()) return {Leer, {}, {}};
    if (!std::ranges::equal(inhalt, Bytes(TiteldateiKennung))) {
        LegeKopieDaneben(dateien, datei.Wert(), pfad);
        return {Fremd, {}, {}};
    }
    const std::int64_t groesse = dateien.Groesse(datei.Wert());
    if (groesse < 0) return {NichtLesbar, SystemText(static_cast<int>(-groesse)), {}};
    const std::int64_t rest = std::clamp<std::int64_t>(groesse - kopf, 0, HoechsteLaenge);
    if (const int fehler = Lies(dateien, datei.Wert(), rest, inhalt); fehler < 0) {
        return {NichtLesbar, SystemText(-fehler), {}};
    }
    try {
        return {Gelesen, {}, LiesWertbaum(inhalt)};
    } catch (const WertbaumFehler& fehler) {
        LegeKopieDaneben(dateien, datei.Wert(), pfad);
        return {Beschaedigt, fehler.what(), {}};
    }
}

std::optional<std::string> SchreibeTiteldatei(Dateisystem& dateien, const std::string& ordner,
                                              const Titelliste& titel) {
    const Handle datei(dateien, ordner + std::string(TiteldateiName));
    if (datei.Wert() < 0) return SystemText(-datei.Wert());
    if (const int fehler = SchreibeGanz(dateien, datei.Wert(), Bytes(TiteldateiKennung)); fehler < 0) {
        return SystemText(-fehler);
    }
    // The elements are counted in 16 bits.
    if (titel.Anzahl() > static_cast<std::size_t>(std::numeric_limits<std::int16_t>::max())) return "Überlauf";
    std::vector<std::byte> bytes;
    SchreibeWertbaum(titel.IstLeer() ? Wert{} : Wert{ListeAller(titel)}, bytes);
    if (const int fehler = SchreibeGanz(dateien, datei.Wert(), bytes); fehler < 0) return SystemText(-fehler);
    return std::nullopt;
}

}  // namespace zek
