#include "werkzeug/werkzeug.h"

#include "platform/aufruf.h"
#include "platform/datum.h"
#include "werkzeug/werkzeug_befehle.h"
#include "werkzeug/werkzeug_luecken.h"
#include "werkzeug/werkzeug_reparatur.h"

#include <algorithm>
#include <functional>
#include <string_view>

namespace zek {

namespace {

using werkzeug::Lueckenfrage;
using werkzeug::Zeitform;

constexpr std::string_view Hilfeschalter = "-h,--hilfe,--help";

constexpr const char* HinweiseCsv = R"(Beispiele einer Zeile:
  --zeit deutsch: 15.11.2026 18:21:53,250;5012,25;3
  --zeit iso:     2026-11-15T18:21:53.250,5012.25,3)";
constexpr const char* HinweisePruefe =
    "Rückgabewert 0: alles in Ordnung; 1: beschädigte Dateien; 2: falscher Aufruf oder nicht lesbar.";
constexpr const char* HinweiseRepariere =
    R"(Was am Ende einer Datei kein Datensatz ist, wird abgeschnitten und daneben in DATEI.abgeschnitten aufgehoben.
Rückgabewert 0: alle Dateien sind in Ordnung; 1: eine hat andere Schäden; 2: falscher Aufruf oder nicht lesbar.)";
constexpr const char* HinweiseLuecken =
    R"(Zeigt Anteile je Titel und Tag, alle Lücken mit Ursache und ein Urteil je Woche, nach dem Lückennachweis, den das
Programm neben den Daten führt.
Rückgabewert 0: es fehlt nichts; 1: es fehlt etwas; 2: falscher Aufruf oder nicht lesbar.)";

// What the command line asks for.
struct Wunsch {
    std::vector<std::string> Pfade;
    std::string Datei;
    Zeitform Zeit = Zeitform::Deutsch;
    bool Alles = false;
    Lueckenfrage Luecken;
    std::function<int()> Befehl;
};

class Befehlszeile {
public:
    Befehlszeile(const werkzeug::Umgebung& umgebung, std::ostream& ausgabe, std::ostream& fehler)
        : umgebung_(umgebung), dateien_(umgebung.Dateien), ausgabe_(ausgabe), fehler_(fehler) {
        SprichDeutsch(app_);
        app_.set_help_flag(std::string(Hilfeschalter), "diese Hilfe, hinter einem Befehl die zu diesem");
        app_.add_flag("--version", version_, "die Version");
        app_.require_subcommand(0, 1);
        app_.footer(
            "Nur repariere ändert Dateien; die anderen Befehle lesen sie, auch während sie geschrieben werden. Wurde "
            "eine Datenpflege mitten im Einarbeiten abgebrochen, so schließt jeder Befehl das zuerst ab.\nMehr zu "
            "einem "
            "Befehl: zek BEFEHL --hilfe");
        Alles(Liste("info", "Kopf, Datensätze, Zeitraum und Zustand jeder Datei; von vielen die Summen",
                    [this](auto&&... was) { return werkzeug::Info(wunsch_.Pfade, wunsch_.Alles, was...); }));
        Alles(Liste("tabelle", "eine Zeile je Datei, mit dem letzten Kurs; von vielen die Summen",
                    [this](auto&&... was) { return werkzeug::Tabelle(wunsch_.Pfade, wunsch_.Alles, was...); }));
        Csv();
        Liste("pruefe", "alle Dateien *.ZEK unterhalb der Ordner prüfen",
              [this](auto&&... was) { return werkzeug::Check(wunsch_.Pfade, was...); })
            ->alias("check")
            ->alias("prüfe")
            ->footer(HinweisePruefe);
        Liste("repariere", "abgerissene und leere Enden von Dateien abschneiden", [this](auto&&... was) {
            return werkzeug::Repariere(wunsch_.Pfade, was...);
        })->footer(HinweiseRepariere);
        Luecken();
    }

    int Fuehre(std::vector<std::string> argumente, const std::string& version) {
        if (argumente.empty()) return FalscherAufruf("Es fehlt ein Befehl.");
        std::ranges::reverse(argumente);  // the library takes them from the back
        try {
            app_.parse(std::move(argumente));
        } catch (const CLI::CallForHelp&) {
            const auto befehle = app_.get_subcommands();
            ausgabe_ << (befehle.empty() ? app_.help() : befehle.front()->help("zek"));
            return werkzeug::Gut;
        } catch (const CLI::ParseError& fehler) {
            return FalscherAufruf(Grund(fehler));
        }
        if (version_) return ausgabe_ << "zek " << version << "\n", werkzeug::Gut;
        return wunsch_.Befehl ? wunsch_.Befehl() : FalscherAufruf("Es fehlt ein Befehl.");
    }

private:
    using Listenbefehl = std::function<int(Dateisystem&, std::ostream&, std::ostream&)>;

    void Alles(CLI::App* befehl) { befehl->add_flag("--alles", wunsch_.Alles, "jede Datei, so viele es sind"); }

    CLI::App* Befehl(const char* name, const char* hilfe, std::function<int()> was) {
        CLI::App* befehl = app_.add_subcommand(name, hilfe);
        befehl->group("Befehle");
        befehl->get_help_ptr()->group("Schalter");
        befehl->callback([this, was = std::move(was)] { wunsch_.Befehl = was; });
        return befehl;
    }

    CLI::App* Liste(const char* name, const char* hilfe, Listenbefehl was) {
        CLI::App* befehl =
            Befehl(name, hilfe, [this, was = std::move(was)] { return was(dateien_, ausgabe_, fehler_); });
        befehl->add_option("DATEI|ORDNER", wunsch_.Pfade, "Datendateien, oder Ordner mit allen darunter")
            ->required()
            ->type_name("");
        return befehl;
    }

    void Csv() {
        CLI::App* befehl = Befehl("csv", "alle Datensätze einer Datei als CSV auf die Standardausgabe", [this] {
            return werkzeug::Csv(wunsch_.Datei, wunsch_.Zeit, dateien_, ausgabe_, fehler_);
        });
        const std::map<std::string, Zeitform> formen{{"deutsch", Zeitform::Deutsch}, {"iso", Zeitform::Iso}};
        befehl
            ->add_option_function<std::string>(
                "--zeit", [this, formen](const std::string& text) { wunsch_.Zeit = formen.at(text); },
                "Form der Zeiten und Zahlen: deutsch (Vorgabe) oder iso")
            ->type_name("FORM")
            ->check([formen](const std::string& text) {
                return formen.count(text) == 1 ? std::string() : "nur „deutsch“ oder „iso“, nicht „" + text + "“";
            });
        befehl->add_option("DATEI", wunsch_.Datei, "die Datendatei")->required()->type_name("");
        befehl->footer(HinweiseCsv);
    }

    void Luecken() {
        Lueckenfrage& frage = wunsch_.Luecken;
        CLI::App* befehl = Befehl("luecken", "was ein Datenordner lückenlos hat, was ergänzt wurde und was fehlt",
                                  [this] { return SieheLueckenAn(); });
        befehl->alias("gaps")->alias("lücken");
        befehl->add_flag("--csv", frage.Csv, "als CSV statt als Bericht");
        befehl->add_flag("--alles", frage.Alles, "alle Titel, Tage und Lücken einzeln, so viele es sind");
        Tag(*befehl, "--von", frage.Von, "erster Tag, der zählt");
        Tag(*befehl, "--bis", frage.Bis, "letzter Tag, der zählt");
        befehl->add_option("--titel", frage.Muster, "nur Titel, deren Dateiname passt; * und ? sind erlaubt")
            ->type_name("MUSTER");
        befehl
            ->add_option("--programm", frage.Programmordner,
                         "der Programmordner, wenn er nicht über dem Datenordner liegt")
            ->type_name("ORDNER");
        befehl->add_option("ORDNER", frage.Ordner, "der Datenordner")->required()->type_name("");
        befehl->footer(HinweiseLuecken);
    }

    static void Tag(CLI::App& befehl, const char* name, std::optional<Kalendertag>& ziel, const char* hilfe) {
        befehl
            .add_option_function<std::string>(
                name, [&ziel](const std::string& text) { ziel = TagVon(*ZeitpunktAusText(text)); }, hilfe)
            ->type_name("DATUM")
            ->check([](const std::string& text) {
                return ZeitpunktAusText(text).value_or(Tagesnull) >= Tagesnull + 24h ? std::string()
                                                                                     : "kein Datum: „" + text + "“";
            });
    }

    int SieheLueckenAn() {
        const Lueckenfrage& frage = wunsch_.Luecken;
        if (frage.Von && frage.Bis && *frage.Bis < *frage.Von) return FalscherAufruf("--bis liegt vor --von.");
        return werkzeug::Luecken(frage, umgebung_, ausgabe_, fehler_);
    }

    std::string Grund(const CLI::ParseError& fehler) const {
        const auto uebrig = app_.remaining(true);
        const bool befehl = app_.get_subcommands().empty() && !uebrig.empty() && uebrig.front().front() != '-';
        return befehl ? "Unbekannter Befehl: " + uebrig.front() : AufDeutsch(fehler, app_);
    }

    int FalscherAufruf(const std::string& grund) {
        fehler_ << "zek: " << grund << "\nHilfe: zek --hilfe\n";
        return werkzeug::Fehlgeschlagen;
    }

    const werkzeug::Umgebung& umgebung_;
    Dateisystem& dateien_;
    std::ostream& ausgabe_;
    std::ostream& fehler_;
    CLI::App app_{"zek - Datendateien von Tessaron ZEK ansehen und prüfen", "zek"};
    Wunsch wunsch_;
    bool version_ = false;
};

}  // namespace

int Werkzeug(const std::vector<std::string>& argumente, const std::string& version, const werkzeug::Umgebung& umgebung,
             std::ostream& ausgabe, std::ostream& fehler) {
    const int ergebnis = Befehlszeile(umgebung, ausgabe, fehler).Fuehre(argumente, version);
    ausgabe.flush();
    if (ausgabe.good()) return ergebnis;
    fehler << "zek: Die Ausgabe kann nicht geschrieben werden.\n";
    return werkzeug::Fehlgeschlagen;
}

}  // namespace zek
