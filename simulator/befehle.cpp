#include "simulator/befehle.h"

#include "platform/text.h"
#include "simulator/drahtform.h"
#include "simulator/simulator.h"

#include <algorithm>
#include <charconv>
#include <random>

namespace zek::simulator {

namespace {

// What stands behind a command's name.
class Angaben {
public:
    explicit Angaben(std::string_view text) : rest_(Getrimmt(text)) {}

    bool Leer() const { return rest_.empty(); }
    std::string_view Rest() const { return rest_; }
    std::string_view Wort() {
        const std::size_t ende = rest_.find_first_of(" \t");
        const std::string_view wort = rest_.substr(0, ende);
        rest_ = ende == std::string_view::npos ? std::string_view() : Getrimmt(rest_.substr(ende));
        return wort;
    }
    // The next word as a number, `vorgabe` when there is none; sets Falsch when it isn't a number.
    double Zahl(double vorgabe) {
        if (Leer()) return vorgabe;
        const std::string_view wort = Wort();
        double wert = 0;
        const auto [ende, fehler] = std::from_chars(wort.data(), wort.data() + wort.size(), wert);
        if (fehler != std::errc{} || ende != wort.data() + wort.size()) Falsch = true;
        return wert;
    }
    // True when the next word is a whole number; it stays.
    bool ZahlVoraus() const { return Ganzzahl(rest_.substr(0, rest_.find(' '))).has_value(); }

    bool Falsch = false;

private:
    std::string_view rest_;
};

using Handlung = bool (*)(Simulator&, Angaben&);

struct Befehlszeile {
    std::string_view Name;
    std::string_view Hilfe;  // arguments, two blanks, effect; empty: explained with the command before
    Handlung Tue;
};

std::string Rahmen(std::initializer_list<std::string_view> felder) {
    std::string ziel;
    {
        Nachricht n(ziel);
        for (const std::string_view f : felder) n(f);
    }
    return ziel;
}

std::string Kopf(std::uint32_t laenge) {
    std::string kopf;
    for (int bit = 24; bit >= 0; bit -= 8) kopf += static_cast<char>((laenge >> bit) & 0xFF);
    return kopf;
}

template <int Code>
bool NurCode(Simulator& s, const char* text) {
    s.SendeCode(-1, Code, text);
    return true;
}

bool BeliebigerCode(Simulator& s, Angaben& a) {
    if (a.Leer()) return false;
    const int code = static_cast<int>(a.Zahl(0));
    const int id = a.ZahlVoraus() ? static_cast<int>(a.Zahl(-1)) : -1;
    if (a.Falsch) return false;
    s.SendeCode(id, code, a.Rest());
    return true;
}

bool Abwurf(Simulator& s, Angaben& a) {
    const std::string_view wo = a.Wort();
    const int anzahl = static_cast<int>(a.Zahl(1));
    if (a.Falsch) return false;
    if (wo == "accept") return s.SchliesseBei(Simulator::Abschnitt::Annahme, anzahl), true;
    if (wo == "version") return s.SchliesseBei(Simulator::Abschnitt::Version, anzahl), true;
    if (wo == "start") return s.SchliesseBei(Simulator::Abschnitt::Start, anzahl), true;
    return false;
}

bool Uhrbefehl(Simulator& s, Angaben& a) {
    if (a.Rest() == "off" || a.Rest() == "on") return s.VerschweigeZeit(a.Rest() == "off"), true;
    const double sekunden = a.Zahl(0);
    if (!a.Falsch) s.StelleZeitVor(sekunden);
    return !a.Falsch;
}

bool Zufallsbytes(Simulator& s, Angaben& a) {
    const double anzahl = a.Zahl(64);
    if (a.Falsch || anzahl < 0 || anzahl > 1e8) return false;
    std::mt19937_64 wuerfel(s.Setze().Pfad.Saat);
    std::string bytes(static_cast<std::size_t>(anzahl), '\0');
    for (char& c : bytes) c = static_cast<char>(wuerfel());
    s.SendeRoh(bytes);
    return true;
}

bool Hexbytes(Simulator& s, Angaben& a) {
    std::string bytes;
    while (!a.Leer()) {
        const std::string_view wort = a.Wort();
        unsigned wert = 0;
        const auto [ende, fehler] = std::from_chars(wort.data(), wort.data() + wort.size(), wert, 16);
        if (fehler != std::errc{} || ende != wort.data() + wort.size() || wert > 0xFF) return false;
        bytes += static_cast<char>(wert);
    }
    s.SendeRoh(bytes);
    return true;
}

// Messages that a recorder must pass over without a trace.
void Rauschen(Simulator& s) {
    s.SendeRoh(Rahmen({"47", "6", "1", "38", "0.5", "0.50%", "185.2", "30", "20250620", "0.1", "0.2"}));
    s.SendeRoh(Rahmen({"21", "1", "13", "1", "0.25", "0.5", "4.1", "0", "0.02", "0.3", "-0.04", "185.5"}));
    s.SendeRoh(Rahmen({"84", "1", "1744742310000", "BRFG", "BRFG$1", "A headline | with a bar; and more", "A:1"}));
    s.SendeRoh(Rahmen({"77", "1", "0"}));
    s.SendeRoh(Rahmen({"100", "1", "2", "3"}));
    s.SendeRoh(Rahmen({"101", "0", "ES"}));
    s.SendeRoh(Rahmen({"102"}));
    s.SendeRoh(Rahmen({"110", "x"}));
    s.SendeRoh(Rahmen({"1", "6", "987654", "1", "10.5", "7", "1"}));  // an id that was never asked for
}

// A price frame whose length also covers the size message behind it.
std::string Verschachtelt() {
    const std::string innen = Rahmen({"2", "6", "1", "0", "7"});
    std::string felder(
        "1\0"
        "6\0"
        "1\0"
        "1\0"
        "10.5\0"
        "7\0"
        "1\0",
        17);
    felder += innen;
    return Kopf(static_cast<std::uint32_t>(felder.size())) + felder;
}

using S = Simulator;
using A = Angaben;

// Calls `tue` with the one number that the command takes.
template <typename Tue>
bool MitZahl(Angaben& a, double vorgabe, Tue tue) {
    const double wert = a.Zahl(vorgabe);
    if (a.Falsch || wert < 0) return false;
    tue(wert);
    return true;
}

constexpr Befehlszeile Befehle[] = {
    {"1100", "[n]  connectivity lost, repeated every n seconds; no ticks, no history, until 1101 or 1102",
     [](S& s, A& a) { return MitZahl(a, 0, [&](double n) { s.VerbindungVerloren(n); }); }},
    {"1101", "  restored, streams dead until they are asked for again",
     [](S& s, A&) { return s.VerbindungWiederDatenWeg(), true; }},
    {"1102", "  restored, streams go on", [](S& s, A&) { return s.VerbindungWieder(), true; }},
    {"2103", "  market data farm broken: ticks stop", [](S& s, A&) { return s.FarmGestoert(), true; }},
    {"2104", "  market data farm OK: they go on", [](S& s, A&) { return s.FarmOk(), true; }},
    {"2105", "  history farm broken: requests get 162", [](S& s, A&) { return s.HistoriefarmGestoert(), true; }},
    {"2106", "  history farm OK", [](S& s, A&) { return s.HistoriefarmOk(), true; }},
    {"2107", "  history farm inactive, the message alone; so are 2108, 2110, 2119, 2157, 2158",
     [](S& s, A&) { return s.HistoriefarmInaktiv(), true; }},
    {"2108", "",
     [](S& s, A&) {
         return NurCode<2108>(s, "Market data farm connection is inactive but should be available upon demand.usfarm");
     }},
    {"2110", "",
     [](S& s, A&) {
         return NurCode<2110>(s,
                              "Connectivity between Trader Workstation and server is broken. It will be restored "
                              "automatically.");
     }},
    {"2119", "", [](S& s, A&) { return NurCode<2119>(s, "Market data farm is connecting:usfarm"); }},
    {"2157", "", [](S& s, A&) { return NurCode<2157>(s, "Sec-def data farm connection is broken:secdefil"); }},
    {"2158", "", [](S& s, A&) { return NurCode<2158>(s, "Sec-def data farm connection is OK:secdefil"); }},
    {"162", "[text]  the open history requests, or the next one, fail with 162; without text: pacing violation",
     [](S& s, A& a) { return s.NaechsteHistorieScheitert(162, std::string(a.Rest())), true; }},
    {"10197", "  competing session: sent for each subscription, ticks stop until \"resume\"",
     [](S& s, A&) { return s.KonkurrierendeSitzung(), true; }},
    {"100", "  message rate exceeded, the message alone",
     [](S& s, A&) { return NurCode<100>(s, "Max rate of messages per second has been exceeded:max=50 rec=108 (1)"); }},
    {"1300", "  socket port reset, then closed",
     [](S& s, A&) {
         s.SendeCode(-1, 1300,
                     "TWS socket port has been reset and this connection is being dropped. Please "
                     "reconnect on the new port -4002");
         return s.SchliesseAlle(), true;
     }},
    {"316", "  depth halted for every depth stream; the streams end",
     [](S& s, A&) {
         s.SendeCodeJeAbonnement(316, "Market depth data has been HALTED. Please re-subscribe.", true);
         return s.BeendeTiefe(), true;
     }},
    {"317", "  depth reset for every depth stream; they go on",
     [](S& s, A&) {
         s.SendeCodeJeAbonnement(317,
                                 "Market depth data has been RESET. Please empty deep book contents before "
                                 "applying any new entries.",
                                 true);
         return true;
     }},
    {"354", "  not subscribed, for every subscription; 10090, 10167 likewise",
     [](S& s, A&) { return s.SendeCodeJeAbonnement(354, "Requested market data is not subscribed."), true; }},
    {"10090", "",
     [](S& s, A&) {
         s.SendeCodeJeAbonnement(10090,
                                 "Part of requested market data is not subscribed. Subscription-independent "
                                 "ticks are still active.Delayed market data is not available.");
         return true;
     }},
    {"10167", "",
     [](S& s, A&) {
         s.SendeCodeJeAbonnement(10167, "Requested market data is not subscribed. Displaying delayed market data.");
         return true;
     }},
    {"326", "[n]  the next n logins (1) are refused with 326",
     [](S& s, A& a) { return MitZahl(a, 1, [&](double n) { s.AnmeldungenVerweigern(static_cast<int>(n)); }); }},
    {"code", "n [id] [text]  any code", BeliebigerCode},
    {"close", "  ends every session in order", [](S& s, A&) { return s.SchliesseAlle(), true; }},
    {"reset", "  ends every session by a reset", [](S& s, A&) { return s.BrichAlleAb(), true; }},
    {"halfframe", "  ends every session in the middle of a frame",
     [](S& s, A&) { return s.SchliesseMittenImRahmen(), true; }},
    {"refuse", "s  daily restart: close, refuse connections for s seconds (60), come back",
     [](S& s, A& a) { return MitZahl(a, 60, [&](double n) { s.WeiseAb(n); }); }},
    {"deaf", "s  accepts, but answers nothing for s seconds (30)",
     [](S& s, A& a) { return MitZahl(a, 30, [&](double n) { s.Taub(n); }); }},
    {"drop", "accept|version|start [n]  closes the next n connections (1) at that point of the handshake", Abwurf},
    {"stall", "s  sends nothing for s seconds (10); then all of it",
     [](S& s, A& a) { return MitZahl(a, 10, [&](double n) { s.Stau(n); }); }},
    {"bytes", "  delivery byte by byte", [](S& s, A&) { return s.SetzeZustellung(Zustellung::Einzelbytes), true; }},
    {"cuts", "  delivery in random pieces",
     [](S& s, A&) { return s.SetzeZustellung(Zustellung::Zufallsstuecke), true; }},
    {"slow", "n  delivery of n bytes a second (1000)",
     [](S& s, A& a) { return MitZahl(a, 1000, [&](double n) { s.SetzeZustellung(Zustellung::Langsam, n); }); }},
    {"whole", "  delivery as it comes, again", [](S& s, A&) { return s.SetzeZustellung(Zustellung::Ganz), true; }},
    {"silence", "[s]  no ticks, for s seconds or until \"resume\"",
     [](S& s, A& a) { return MitZahl(a, 0, [&](double n) { s.Stille(n); }); }},
    {"resume", "  ticks again, whatever stopped them", [](S& s, A&) { return s.Weiter(), true; }},
    {"flood", "n  n ticks (100000) at once, over all subscriptions",
     [](S& s, A& a) { return MitZahl(a, 1e5, [&](double n) { s.Flut(static_cast<std::uint64_t>(n)); }); }},
    {"garbage", "[n]  n random bytes (64)", Zufallsbytes},
    {"oversize", "  a frame length of 16777216", [](S& s, A&) { return s.SendeRoh(Kopf(16777216)), true; }},
    {"zero", "  a frame length of 0", [](S& s, A&) { return s.SendeRoh(Kopf(0)), true; }},
    {"http", "  an HTTP answer",
     [](S& s, A&) { return s.SendeRoh("HTTP/1.1 400 Bad Request\r\nContent-Length: 0\r\n\r\n"), true; }},
    {"unknown", "  a message with an unknown id",
     [](S& s, A&) {
         return s.SendeRoh(Rahmen({"9999", "1", "x"})), true;
     }},
    {"short", "  a price message that ends early",
     [](S& s, A&) {
         return s.SendeRoh(Rahmen({"1", "6", "1", "1"})), true;
     }},
    {"long", "  a size message with more fields than it has",
     [](S& s, A&) {
         return s.SendeRoh(Rahmen({"2", "6", "1", "0", "7", "8", "nine", ""})), true;
     }},
    {"badnumber", "  a price message with a price that is no number",
     [](S& s, A&) {
         return s.SendeRoh(Rahmen({"1", "6", "1", "1", "?", "1,5", "x"})), true;
     }},
    {"nested", "  a frame whose length also covers the next one",
     [](S& s, A&) { return s.SendeRoh(Verschachtelt()), true; }},
    {"noise", "  messages that are of no use to a recorder", [](S& s, A&) { return Rauschen(s), true; }},
    {"hex", "xx xx ...  raw bytes", Hexbytes},
    {"hold", "s  history answers come s seconds late",
     [](S& s, A& a) { return MitZahl(a, 0, [&](double n) { s.HistorieVerzoegern(n); }); }},
    {"mute", "[n]  the next n history requests (1) get no answer",
     [](S& s, A& a) { return MitZahl(a, 1, [&](double n) { s.NaechsteHistorieStumm(static_cast<int>(n)); }); }},
    {"clock", "s|off|on  the current time that is told is s seconds off; isn't told; is told again", Uhrbefehl},
};

const Befehlszeile* Finde(std::string_view name) {
    const auto treffer =
        std::find_if(std::begin(Befehle), std::end(Befehle), [&](const Befehlszeile& b) { return b.Name == name; });
    return treffer == std::end(Befehle) ? nullptr : &*treffer;
}

}  // namespace

bool FuehreAus(Simulator& simulator, std::string_view zeile) {
    Angaben angaben(zeile);
    const Befehlszeile* befehl = Finde(angaben.Wort());
    return befehl != nullptr && befehl->Tue(simulator, angaben);
}

bool IstBefehl(std::string_view zeile) {
    return Finde(Angaben(zeile).Wort()) != nullptr;
}

std::string Befehlsliste() {
    std::string liste;
    for (const Befehlszeile& b : Befehle) {
        if (b.Hilfe.empty()) continue;
        const std::size_t trenner = b.Hilfe.find("  ");
        std::string links = "  " + std::string(b.Name) + ' ' + std::string(b.Hilfe.substr(0, trenner));
        links.resize(std::max<std::size_t>(links.size() + 1, 32), ' ');
        liste += links + std::string(b.Hilfe.substr(trenner + 2)) + '\n';
    }
    return liste;
}

Drehbuch LiesDrehbuch(std::string_view text) {
    Drehbuch drehbuch;
    int nummer = 0;
    while (!text.empty()) {
        const std::size_t ende = text.find('\n');
        std::string_view zeile = text.substr(0, ende);
        text.remove_prefix(ende == std::string_view::npos ? text.size() : ende + 1);
        ++nummer;
        zeile = Getrimmt(zeile.substr(0, zeile.find_first_of("#\r")));
        if (zeile.empty()) continue;
        Angaben angaben(zeile);
        const double sekunden = angaben.Zahl(0);
        if (angaben.Falsch || sekunden < 0 || !IstBefehl(angaben.Rest())) {
            drehbuch.Fehlerzeile = nummer;
            return drehbuch;
        }
        drehbuch.Zeilen.push_back({sekunden, std::string(angaben.Rest())});
    }
    return drehbuch;
}

}  // namespace zek::simulator
