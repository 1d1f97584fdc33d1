#include "titles/titeldatei.h"

#include <cstring>
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

// 0 or -errno. Fills `inhalt` with the whole file.
int LiesAlles(Dateisystem& dateien, Dateihandle handle, std::vector<std::byte>& inhalt) {
    const std::int64_t groesse = dateien.Groesse(handle);
    if (groesse < 0) return static_cast<int>(groesse);
    inhalt.resize(static_cast<std::size_t>(groesse));
    std::size_t gelesen = 0;
    while (gelesen < inhalt.size()) {
        const std::int64_t anzahl = dateien.Lies(handle, std::span(inhalt).subspan(gelesen));
        if (anzahl < 0) return static_cast<int>(anzahl);
        if (anzahl == 0) break;
        gelesen += static_cast<std::size_t>(anzahl);
    }
    inhalt.resize(gelesen);
    return 0;
}

// What a person could still rescue from the file; the next save overwrites the original.
void LegeKopieDaneben(Dateisystem& dateien, const std::string& pfad, std::span<const std::byte> inhalt) {
    const Handle kopie(dateien, pfad + ".defekt");
    if (kopie.Wert() < 0) return;
    if (SchreibeGanz(dateien, kopie.Wert(), inhalt) < 0) return;
    dateien.SetzeLaenge(kopie.Wert(), static_cast<std::int64_t>(inhalt.size()));
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
    std::vector<std::byte> inhalt;
    {
        const Handle datei(dateien, pfad);
        if (datei.Wert() < 0) return {NichtLesbar, SystemText(-datei.Wert()), {}};
        const int fehler = LiesAlles(dateien, datei.Wert(), inhalt);
        if (fehler < 0) return {NichtLesbar, SystemText(-fehler), {}};
    }
    if (inhalt.empty()) return {Leer, {}, {}};
    const std::size_t kopf = TiteldateiKennung.size();
    if (inhalt.size() < kopf || std::memcmp(inhalt.data(), TiteldateiKennung.data(), kopf) != 0) {
        LegeKopieDaneben(dateien, pfad, inhalt);
        return {Fremd, {}, {}};
    }
    try {
        return {Gelesen, {}, LiesWertbaum(std::span(inhalt).subspan(kopf))};
    } catch (const WertbaumFehler& fehler) {
        LegeKopieDaneben(dateien, pfad, inhalt);
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
