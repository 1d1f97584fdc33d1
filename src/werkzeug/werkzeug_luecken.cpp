#include "werkzeug/werkzeug_luecken.h"

#include "luecken/lebenszeichen.h"
#include "luecken/lueckenbuch.h"
#include "luecken/zeitspannen.h"
#include "platform/datum.h"
#include "platform/text.h"
#include "titles/titeldatei.h"
#include "werkzeug/lueckenbericht.h"
#include "werkzeug/titelakten.h"

#include <fnmatch.h>

#include <algorithm>
#include <map>
#include <optional>

namespace zek::werkzeug {

namespace {

// At rest the recorder gives a sign each minute.
constexpr milliseconds ZeichenFrist = 3min;
// So far the clock may be set back at the end of summer time.
constexpr milliseconds Umstellung = 70min;
constexpr std::string_view OhneZeichen = "Kein Lebenszeichen";
constexpr std::size_t GenannteTitel = 5;

// True when the text is of the form of the pattern, in which only * and ? stand for others.
bool Passt(std::string_view muster, const std::string& text) {
    std::string woertlich;
    for (const char c : muster) woertlich += c == '[' ? "[[]" : std::string(1, c);
    return ::fnmatch(woertlich.c_str(), text.c_str(), FNM_NOESCAPE) == 0;
}

std::string MitStrich(const std::string& ordner) {
    return ordner.ends_with('/') ? ordner : ordner + "/";
}

// The folder of the recorder that writes into a data folder; "" when it can't be told.
std::string Programmordner(const Lueckenfrage& frage, Dateisystem& dateien) {
    if (!frage.Programmordner.empty()) return MitStrich(frage.Programmordner);
    std::string ordner = frage.Ordner;
    while (ordner.size() > 1 && ordner.ends_with('/')) ordner.pop_back();
    const std::size_t strich = ordner.rfind('/');
    if (ordner == "." || ordner == "..")
        ordner += "/../";
    else
        ordner = strich == std::string::npos ? "./" : ordner.substr(0, strich + 1);
    return dateien.DateiExistiert(ordner + std::string(TiteldateiName)) ? ordner : std::string();
}

class Lueckenbefehl {
public:
    Lueckenbefehl(const Lueckenfrage& frage, const Umgebung& umgebung, std::ostream& ausgabe, std::ostream& fehler)
        : frage_(frage),
          umgebung_(umgebung),
          dateien_(umgebung.Dateien),
          ausgabe_(ausgabe),
          fehler_(fehler),
          jetzt_(AufMillisekunde(umgebung.Jetzt)),
          rahmen_{frage.Von ? Zeit(*frage.Von) : KeineZeit, frage.Bis ? *frage.Bis + days(1) : Buchzeile::OhneEnde},
          programmordner_(Programmordner(frage, dateien_)),
          akten_(dateien_, frage.Ordner, programmordner_),
          buch_(LiesBuchauszug(dateien_, frage.Ordner, rahmen_, LiesReserve())) {}

    int Fuehre() {
        if (!LiesBuch()) return Fehlgeschlagen;
        StelleLageFest();
        const auto titel = Auswahl();
        if (titel.empty()) {
            fehler_ << "zek: Kein Titel gefunden.\n";
            return Fehlgeschlagen;
        }
        const Urteil urteil(buch_, stand_);
        const auto form = frage_.Csv     ? Lueckenbericht::Form::Csv
                          : frage_.Alles ? Lueckenbericht::Form::Ganz
                                         : Lueckenbericht::Form::Gefaltet;
        Lueckenbericht bericht(buch_, urteil, form, ausgabe_);
        const bool mitErstem = rahmen_.Von < buch_.AngabenAb() && buch_.Beginn < buch_.AngabenAb();
        const bool sagtAktive = buch_.ErsteAngabe != Buchzeile::OhneEnde && jetzt_ < rahmen_.Bis;
        for (const auto& [schluessel, name] : titel) {
            const std::uint32_t nummer = buch_.Titelnummer(name);
            const Titelakte akte = akten_.Von(name, mitErstem, KorrekturVon(nummer));
            if (akte.Definiert && buch_.Zeilen(nummer).empty() && sagtAktive) unbekannte_.push_back(name);
            bericht.Nimm(nummer, urteil.Ueber(nummer, akte));
        }
        bericht.Drucke(lagetext_ + Unbekanntentext());
        if (!buch_.Lesbar) return Fehlgeschlagen;
        return bericht.EtwasFehlt() || fehlt_ || !unbekannte_.empty() ? Beanstandet : Gut;
    }

private:
    std::string LiesReserve() {
        return programmordner_.empty() ? std::string() : LiesLueckenreserve(dateien_, programmordner_);
    }

    bool LiesBuch() {
        if (!buch_.Lesbar) fehler_ << "zek: Ein Teil des Lückennachweises kann nicht gelesen werden.\n";
        if (buch_.Vorzeitige > 0)
            fehler_ << "zek: " << MitTausenderpunkten(static_cast<double>(buch_.Vorzeitige))
                    << " Zeilen des Lückennachweises beginnen vor dem Jahr 2000 und zählen nicht.\n";
        if (buch_.Beginn != Buchzeile::OhneEnde) return true;
        fehler_ << "zek: " << frage_.Ordner << ": kein Lückennachweis (Ordner „" << Lueckenordner << "“)\n";
        return false;
    }

    // Whether a recorder lives, and up to which moment that lets the book speak.
    void StelleLageFest() {
        const auto zeichen = LiesLebenszeichen(dateien_, Lueckenpfad(frage_.Ordner));
        std::optional<bool> gehalten;
        if (!programmordner_.empty()) gehalten = umgebung_.OrdnerGehalten(programmordner_);
        const milliseconds alter = zeichen ? jetzt_ - zeichen->Moment : 0ms;
        const bool frisch = zeichen && alter <= ZeichenFrist && alter >= -Umstellung;
        Zeit spur = std::min(buch_.Letzte, jetzt_);
        if (zeichen && zeichen->Moment <= jetzt_) spur = std::max(spur, zeichen->Moment);
        stand_ = jetzt_;
        for (const Buchzeile& zeile : buch_.Zeilen(Buchauszug::Alle)) {
            if (!zeile.IstOffen() || !buch_.IstUrsache(zeile, ursache::ProgrammBeendet) || gehalten == true) continue;
            stand_ = zeile.Von;
            lagetext_ = "Das Programm ist seit " + Lueckenzeittext(zeile.Von) + " ordentlich beendet.\n";
            return;
        }
        if (!zeichen && !gehalten) {
            stand_ = std::min(std::max(spur, akten_.LetzterSatz() + 1ms), jetzt_);
            lagetext_ = "Ob das Programm läuft, ist nicht bekannt.\n";
        } else if (gehalten == false || (!gehalten && !frisch)) {
            lagetext_ = "Das Programm läuft nicht mehr und wurde nicht ordentlich beendet; letzte Spur: " +
                        Lueckenzeittext(spur) + ".\n";
            Vermisse(spur, ursache::ProgrammNichtAktiv);
        } else if (zeichen && !frisch) {
            lagetext_ =
                "Das Programm läuft, gibt aber seit " + Lueckenzeittext(zeichen->Moment) + " kein Lebenszeichen.\n";
            Vermisse(std::min(zeichen->Moment, jetzt_), OhneZeichen);
        } else {
            lagetext_ = "Das Programm läuft.\n";
        }
    }

    void Vermisse(Zeit ab, std::string_view ursache) {
        if (jetzt_ < rahmen_.Bis) fehlt_ = true;
        Zeilenteile zeile;
        zeile.Von = zeile.Bis = ab;
        zeile.Offen = true;
        zeile.Titel = AlleTitelZeichen;
        zeile.Ursache = ursache;
        buch_.Nimm(zeile);
        buch_.Ordne();
    }

    // By key, so that they stand in that order.
    std::map<std::string, std::string> Auswahl() {
        std::map<std::string, std::string> titel = akten_.Definierte();
        for (std::uint32_t i = Buchauszug::Alle + 1; i < buch_.Titelzahl(); ++i)
            titel.try_emplace(Kleinbuchstaben(buch_.Titelname(i)), buch_.Titelname(i));
        // What the book doesn't say of a title its files may.
        if (rahmen_.Von < buch_.AngabenAb() && buch_.Beginn < buch_.AngabenAb()) titel.merge(akten_.MitDateien());
        const std::string muster = Kleinbuchstaben(frage_.Muster);
        if (!muster.empty()) std::erase_if(titel, [&](const auto& t) { return !Passt(muster, t.first); });
        return titel;
    }

    milliseconds KorrekturVon(std::uint32_t titel) const {
        for (const Buchzeile& zeile : buch_.Zeilen(titel))
            if (buch_.IstUrsache(zeile, ursache::TitelAktiv)) return LiesWeise(buch_.Ergaenzung(zeile)).Zeitkorrektur;
        return 0ms;
    }

    std::string Unbekanntentext() const {
        if (unbekannte_.empty()) return {};
        std::string text =
            "Von " + std::to_string(unbekannte_.size()) + " aktiven Titeln weiß der Lückennachweis nichts:";
        for (std::size_t i = 0; i < std::min(unbekannte_.size(), GenannteTitel); ++i) text += " " + unbekannte_[i];
        return text + (unbekannte_.size() > GenannteTitel ? " …\n" : "\n");
    }

    const Lueckenfrage& frage_;
    const Umgebung& umgebung_;
    Dateisystem& dateien_;
    std::ostream& ausgabe_;
    std::ostream& fehler_;
    const Zeit jetzt_;
    const Zeitspanne rahmen_;
    const std::string programmordner_;
    const Titelakten akten_;
    Buchauszug buch_;
    Zeit stand_ = KeineZeit;
    std::string lagetext_;
    std::vector<std::string> unbekannte_;  // active, but the book says nothing of them
    bool fehlt_ = false;                   // nobody records
};

}  // namespace

int Luecken(const Lueckenfrage& frage, const Umgebung& umgebung, std::ostream& ausgabe, std::ostream& fehler) {
    if (!umgebung.Dateien.OrdnerExistiert(frage.Ordner)) {
        fehler << "zek: " << frage.Ordner << ": nicht gefunden\n";
        return Fehlgeschlagen;
    }
    return Lueckenbefehl(frage, umgebung, ausgabe, fehler).Fuehre();
}

}  // namespace zek::werkzeug
