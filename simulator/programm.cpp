#include "simulator/programm.h"

#include "platform/datum.h"
#include "platform/text.h"
#include "simulator/befehle.h"
#include "simulator/drahtform.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <optional>
#include <utility>

namespace zek::simulator {

namespace {

// Reads one value of an option into the options; false when it doesn't fit.
using Uebernahme = bool (*)(Programmoptionen&, std::string_view);

struct Option {
    std::string_view Name;
    std::string_view Hilfe;  // value, two blanks, meaning
    Uebernahme Nimm;
};

std::optional<double> Zahl(std::string_view text, double mindestens, double hoechstens) {
    double wert = 0;
    const auto [ende, fehler] = std::from_chars(text.data(), text.data() + text.size(), wert);
    if (fehler != std::errc{} || ende != text.data() + text.size()) return std::nullopt;
    if (!(wert >= mindestens && wert <= hoechstens)) return std::nullopt;
    return wert;
}

template <typename Feld>
bool Setze(Feld& feld, std::string_view text, double mindestens, double hoechstens) {
    const auto wert = Zahl(text, mindestens, hoechstens);
    if (wert) feld = static_cast<Feld>(*wert);
    return wert.has_value();
}

bool SetzeAnAus(bool& feld, std::string_view text) {
    feld = text == "on";
    return text == "on" || text == "off";
}

// "hh:mm", up to 24:00, as seconds of the day.
std::optional<int> Uhrzeit(std::string_view text) {
    if (text.size() != 5 || text[2] != ':') return std::nullopt;
    const auto stunde = Ganzzahl(text.substr(0, 2));
    const auto minute = Ganzzahl(text.substr(3));
    if (!stunde || !minute || *stunde < 0 || *stunde > 24 || *minute < 0 || *minute > 59) return std::nullopt;
    return static_cast<int>(std::min(*stunde * 3600 + *minute * 60, 86400LL));
}

bool SetzeStunden(Handelszeiten& zeiten, std::string_view text) {
    const std::size_t strich = text.find('-');
    const auto von = Uhrzeit(text.substr(0, strich));
    const auto bis = strich == std::string_view::npos ? std::nullopt : Uhrzeit(text.substr(strich + 1));
    if (!von || !bis || *von >= *bis) return false;
    zeiten.Von = *von;
    zeiten.Bis = *bis;
    return true;
}

bool SetzeEcho(Echo& echo, std::string_view text) {
    static constexpr std::array<std::pair<std::string_view, Echo>, 4> Namen{
        {{"always", Echo::Immer}, {"never", Echo::Nie}, {"random", Echo::Zufall}, {"delayed", Echo::Verzoegert}}};
    const auto treffer = std::find_if(Namen.begin(), Namen.end(), [&](const auto& n) { return n.first == text; });
    if (treffer == Namen.end()) return false;
    echo = treffer->second;
    return true;
}

using P = Programmoptionen;
using T = std::string_view;

constexpr Option Optionen[] = {
    {"--port", "N  port to listen on (7497); 0 picks a free one",
     [](P& p, T t) { return Setze(p.Wahl.Port, t, 0, 65535); }},
    {"--port-file", "FILE  writes the port into this file", [](P& p, T t) { return p.Portdatei = t, true; }},
    {"--seed", "N  seed of the price paths (1)", [](P& p, T t) { return Setze(p.Wahl.Pfad.Saat, t, 0, 1e15); }},
    {"--density", "D  mean ticks a second of each contract's own path (2)",
     [](P& p, T t) { return Setze(p.Wahl.Pfad.Dichte, t, 0.0001, 1e6); }},
    {"--rate", "R  ticks a second over all subscriptions: size changes fill up what the paths don't give (0)",
     [](P& p, T t) { return Setze(p.Wahl.Rate, t, 0, 1e7); }},
    {"--speed", "F  seconds of the path, or of a recording, in one second of the clock (1)",
     [](P& p, T t) { return Setze(p.Wahl.Tempo, t, 0.001, 10000); }},
    {"--slice", "S  seconds for which ticks are gathered before they are written (0.01)",
     [](P& p, T t) { return Setze(p.Wahl.Scheibe, t, 0.001, 1); }},
    {"--version-max", "N  own server version, 100 to 200 (187)",
     [](P& p, T t) { return Setze(p.Wahl.ServerVersion, t, 100, 200); }},
    {"--account", "NAME  account, several with commas (DU1234567)", [](P& p, T t) { return p.Wahl.Konto = t, true; }},
    {"--echo", "always|never|random|delayed  when a price's size comes once more by itself (always)",
     [](P& p, T t) { return SetzeEcho(p.Wahl.EchoRegel, t); }},
    {"--hours", "hh:mm-hh:mm  open hours, in the time of --offset (00:00-24:00)",
     [](P& p, T t) { return SetzeStunden(p.Wahl.Pfad.Zeiten, t); }},
    {"--offset", "MINUTES  of the market's time to UTC (60)",
     [](P& p, T t) { return Setze(p.Wahl.Pfad.Zeiten.VersatzMinuten, t, -1440, 1440); }},
    {"--weekend", "on|off  trading on Saturday and Sunday (on)",
     [](P& p, T t) { return SetzeAnAus(p.Wahl.Pfad.Zeiten.Tage[5], t) && SetzeAnAus(p.Wahl.Pfad.Zeiten.Tage[6], t); }},
    {"--lines", "N  market data lines, beyond: error 101 (100)",
     [](P& p, T t) { return Setze(p.Wahl.MaxZeilen, t, 0, 1e6); }},
    {"--pacing", "on|off  the limits on history requests (on)", [](P& p, T t) { return SetzeAnAus(p.Wahl.Pacing, t); }},
    {"--message-limit", "on|off  error 100 beyond 50 messages a second (on)",
     [](P& p, T t) {
         bool an = false;
         if (!SetzeAnAus(an, t)) return false;
         p.Wahl.Rateregel = an ? Ratenregel::Fehler100 : Ratenregel::Egal;
         return true;
     }},
    {"--l2", "on|off  depth of stocks as message 13 (off)",
     [](P& p, T t) { return SetzeAnAus(p.Wahl.TiefeL2FuerAktien, t); }},
    {"--log", "FILE  every payload of both directions: time, version, direction, payload",
     [](P& p, T t) { return p.Protokoll = t, true; }},
    {"--script", "FILE  commands with times: lines \"12.5 1100\", \"#\" begins a comment",
     [](P& p, T t) { return p.Drehbuch = t, true; }},
    {"--replay", "FOLDER  plays the data files of this folder as live ticks where they fit a contract",
     [](P& p, T t) { return p.Wiedergabe = t, true; }},
};

// The options as they are read into `p`.
void Baue(CLI::App& app, Programmoptionen& p) {
    app.set_help_flag();  // the help has the commands behind it
    for (const Option& o : Optionen) {
        const std::size_t trenner = o.Hilfe.find("  ");
        const auto nimm = [&p, &o](const std::string& text) {
            if (!o.Nimm(p, text)) throw CLI::ValidationError(std::string(o.Name), "bad value: " + text);
        };
        app.add_option_function<std::string>(std::string(o.Name), nimm, std::string(o.Hilfe.substr(trenner + 2)))
            ->type_name(std::string(o.Hilfe.substr(0, trenner)));
    }
    app.add_flag("-h,--help", p.Hilfe, "this text");
    app.add_flag("--version", p.Version, "the program's version");
}

}  // namespace

Programmoptionen LiesProgrammoptionen(const std::vector<std::string>& argumente) {
    Programmoptionen p;
    p.Wahl.Port = 7497;
    p.Wahl.MerkeTicks = p.Wahl.MerkeAnfragen = false;
    CLI::App app;
    Baue(app, p);
    try {
        app.parse(std::vector<std::string>(argumente.rbegin(), argumente.rend()));  // from the back
    } catch (const CLI::ParseError& fehler) {
        p.Fehler = fehler.what();
    }
    return p;
}

std::string Programmhilfe() {
    Programmoptionen p;
    CLI::App app("A TWS to develop, test and demonstrate against; it listens on 127.0.0.1 only", "tws-simulator");
    Baue(app, p);
    app.get_formatter()->column_width(32);
    return app.help() + "\ncommands, one per line on standard input or with a time in a script:\n\n" + Befehlsliste();
}

std::string Protokollzeile(Zeitpunkt zeit, int serverVersion, char richtung, std::string_view inhalt) {
    const auto millis = std::chrono::floor<std::chrono::milliseconds>(zeit + 500us);
    const auto bruch = millis - std::chrono::floor<std::chrono::seconds>(millis);
    return Felderstempel(millis, '-').substr(0, 10) + " " + NurZeittext(millis) + "." +
           std::to_string(1000 + bruch.count()).substr(1) + " " + std::to_string(serverVersion) + " " + richtung + " " +
           AlsZeile(inhalt);
}

Programm::Programm(TcpServerfabrik& netz, Zeitgeberfabrik& zeitgeber, const Uhr& uhr, Dateisystem& dateien,
                   Programmoptionen optionen, std::function<void(const std::string&)> melde)
    : dateien_(dateien),
      optionen_(std::move(optionen)),
      melde_(std::move(melde)),
      simulator_(netz, zeitgeber, uhr, MitProtokoll(optionen_.Wahl)) {}

Einstellungen Programm::MitProtokoll(Einstellungen wahl) {
    if (optionen_.Protokoll.empty()) return wahl;
    wahl.Protokoll = [this](Zeitpunkt zeit, int sv, char richtung, std::string_view inhalt) {
        protokoll_ << Protokollzeile(zeit, sv, richtung, inhalt) << '\n' << std::flush;
    };
    return wahl;
}

bool Programm::Starte() {
    std::string drehbuch;
    if (!optionen_.Drehbuch.empty() && !LiesGanz(dateien_, optionen_.Drehbuch, drehbuch)) {
        return melde_("can't read " + optionen_.Drehbuch), false;
    }
    if (!optionen_.Protokoll.empty()) {
        protokoll_.open(optionen_.Protokoll, std::ios::binary | std::ios::app);
        if (!protokoll_) return melde_("can't write " + optionen_.Protokoll), false;
    }
    if (!optionen_.Wiedergabe.empty()) {
        wiedergabe_ = std::make_unique<Wiedergabe>(dateien_, optionen_.Wiedergabe);
        melde_(std::to_string(wiedergabe_->Dateien()) + " data files in " + optionen_.Wiedergabe);
        simulator_.SetzeAndereQuelle(wiedergabe_.get());
    }
    if (!simulator_.Starte()) {
        return melde_("can't listen on port " + std::to_string(optionen_.Wahl.Port)), false;
    }
    if (const int zeile = simulator_.Spiele(drehbuch); zeile != 0) {
        return melde_(optionen_.Drehbuch + ", line " + std::to_string(zeile) + ": not understood"), false;
    }
    if (!optionen_.Portdatei.empty()) {
        // Renamed into place, so that whoever waits for the file finds the number whole.
        const std::string vorlaeufig = optionen_.Portdatei + ".neu";
        std::ofstream(vorlaeufig) << simulator_.Port() << '\n';
        if (dateien_.BenenneUm(vorlaeufig, optionen_.Portdatei) != 0) {
            return melde_("can't write " + optionen_.Portdatei), false;
        }
    }
    melde_("listening on 127.0.0.1:" + std::to_string(simulator_.Port()));
    return true;
}

void Programm::Eingabe(std::string_view text) {
    eingabe_ += text;
    for (std::size_t ende = eingabe_.find('\n'); ende != std::string::npos; ende = eingabe_.find('\n')) {
        const std::string zeile(Getrimmt(std::string_view(eingabe_).substr(0, ende)));
        eingabe_.erase(0, ende + 1);
        if (zeile.empty()) continue;
        melde_(simulator_.Befehl(zeile) ? "done: " + zeile : "not understood: " + zeile);
    }
}

void Programm::Beende() {
    simulator_.Beende();
}

}  // namespace zek::simulator
