#include "luecken/buchauszug.h"

#include "luecken/buchdateien.h"
#include "luecken/lueckenbuch.h"
#include "luecken/zwischenstand.h"
#include "platform/text.h"

#include <algorithm>
#include <tuple>

namespace zek {

namespace {

// What belongs to a day may have been written a little before it: a clock that was set back.
constexpr std::chrono::days Vorlauf(1);

}  // namespace

std::uint32_t Textnummern::Nummer(std::string_view text) {
    if (const auto ort = nummern_.find(text); ort != nummern_.end()) return ort->second;
    const auto neu = static_cast<std::uint32_t>(texte_.size());
    texte_.push_back(&nummern_.emplace(text, neu).first->first);
    return neu;
}

Buchauszug::Buchauszug(Zeitspanne rahmen) : rahmen_(rahmen), titel_(1) {
    titel_[Alle].Name.append(AlleTitelZeichen);  // assign() makes this compiler warn
    geschrieben_.Nummer(AlleTitelZeichen);
    nachNamen_.push_back(Alle);
    ergaenzungen_.Nummer({});
}

std::uint32_t Buchauszug::Titelnummer(std::string_view name) {
    const std::uint32_t nummer = geschrieben_.Nummer(name);
    if (nummer < nachNamen_.size()) return nachNamen_[nummer];
    const auto [ort, neu] =
        nachSchluessel_.try_emplace(Kleinbuchstaben(name), static_cast<std::uint32_t>(titel_.size()));
    if (neu) titel_.push_back({std::string(name)});
    nachNamen_.push_back(ort->second);
    return ort->second;
}

std::uint32_t Buchauszug::Ursachennummer(std::string_view text) {
    const std::uint32_t nummer = ursachen_.Nummer(text);
    if (nummer == angaben_.size()) {
        const Ursachenangabe* angabe = FindeUrsache(text);
        angaben_.push_back({angabe == nullptr ? std::string_view() : angabe->Name, WertungVon(text), ArtenVon(text)});
    }
    return nummer;
}

void Buchauszug::Nimm(const Zeilenteile& teile) {
    Buchzeile zeile;
    zeile.Von = teile.Von;
    zeile.Bis = teile.Offen ? Buchzeile::OhneEnde : teile.Bis;
    zeile.Titel = Titelnummer(teile.Titel);
    zeile.Ursache = Ursachennummer(teile.Ursache);
    const Wertung wertung = Bedeutung(zeile);
    if (wertung != Wertung::Pflege) Beginn = std::min(Beginn, teile.Von);
    if (IstUrsache(zeile, ursache::TitelAktiv)) ErsteAngabe = std::min(ErsteAngabe, teile.Von);
    if (wertung != Wertung::Pflege && wertung != Wertung::Angabe)
        titel_[zeile.Titel].Genannt = std::min(titel_[zeile.Titel].Genannt, teile.Von);
    Letzte = std::max(Letzte, teile.Bis);

    zeile.IstErgaenzt = wertung == Wertung::Pflege && teile.Ergaenzung.starts_with(ergaenzung::Ergaenzt);
    const bool gesagt = wertung == Wertung::Angabe || (wertung == Wertung::Pflege && !zeile.IstErgaenzt);
    if (gesagt) zeile.Ergaenzung = ergaenzungen_.Nummer(teile.Ergaenzung);
    const Schluessel schluessel{zeile.Von, zeile.Titel, zeile.Ursache};
    if (teile.Offen) {
        offen_.insert_or_assign(schluessel, zeile);
        return;
    }
    offen_.erase(schluessel);
    if (zeile.Von < rahmen_.Bis && zeile.Bis > rahmen_.Von) zeilen_.push_back(zeile);
}

void Buchauszug::Ordne() {
    const auto ordnung = [](const Buchzeile& z) { return std::tie(z.Titel, z.Von, z.Ursache, z.Bis); };
    for (const auto& [wovon, zeile] : offen_)
        if (zeile.Von < rahmen_.Bis) zeilen_.push_back(zeile);
    offen_.clear();
    std::ranges::sort(zeilen_, {}, ordnung);
    const auto doppelt = std::ranges::unique(zeilen_);
    zeilen_.erase(doppelt.begin(), doppelt.end());
    for (Titel& titel : titel_) titel.Ab = titel.Bis = 0;
    for (std::size_t i = 0; i < zeilen_.size(); ++i) {
        Titel& titel = titel_[zeilen_[i].Titel];
        if (titel.Bis == 0) titel.Ab = i;
        titel.Bis = i + 1;
    }
}

std::span<const Buchzeile> Buchauszug::Zeilen(std::uint32_t titel) const {
    return std::span(zeilen_).subspan(titel_[titel].Ab, titel_[titel].Bis - titel_[titel].Ab);
}

Buchauszug LiesBuchauszug(Dateisystem& dateien, const std::string& datenordner, Zeitspanne rahmen,
                          std::string_view reserve) {
    Buchauszug auszug(rahmen);
    const std::string ordner = Lueckenpfad(datenordner);
    const std::vector<Buchdatei> buch = Buchdateien(dateien, ordner);
    const auto nimm = [&](const Zeilenteile& teile, std::string_view) { auszug.Nimm(teile); };
    std::optional<Zwischenstand> stand;
    const bool teilweise = std::ranges::any_of(
        buch, [&](const Buchdatei& d) { return d.Ende + Vorlauf <= rahmen.Von || d.Beginn >= rahmen.Bis; });
    if (teilweise) stand = GespeicherterZwischenstand(dateien, ordner, buch);
    if (stand) {
        if (stand->Beginn != KeineZeit) auszug.Beginn = stand->Beginn;
        auszug.Letzte = stand->Letzte;
        for (const Lueckenzeile& zeile : stand->Offen.Alle())
            auszug.Nimm({zeile.Von, zeile.Von, true, zeile.Titel, zeile.Ursache, zeile.Ergaenzung});
    }
    for (const Buchdatei& datei : buch) {
        std::int64_t ab = 0;
        if (stand) {
            // Of what the checkpoint has seen, only what may touch the span has to be seen once more.
            const auto gelesen = stand->Dateien.find(datei.Name);
            const bool vorher = datei.Ende + Vorlauf <= rahmen.Von;
            if (gelesen != stand->Dateien.end() && (vorher || gelesen->second.Ab >= rahmen.Bis))
                ab = gelesen->second.Bytes;
        }
        const Dateilesung lesung = LiesBuchdatei(dateien, ordner + datei.Name, ab, nimm);
        auszug.Lesbar = auszug.Lesbar && lesung.Lesbar;
        auszug.Vorzeitige += lesung.Vorzeitige;
        auszug.Bytes += lesung.Ende - ab;
    }
    LiesBuchtext(reserve, auszug.Vorzeitige, nimm);
    auszug.Ordne();
    return auszug;
}

}  // namespace zek
