// The requests of a session, one by one.
#include "simulator/meldungen.h"
#include "simulator/sitzung.h"
#include "simulator/zonen.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

namespace zek::simulator {

namespace {

constexpr int Hoechstrate = 50;  // messages a second
// Seconds; a client that measures its whole second with a timer of 1/128 s may be that much early.
constexpr double Ratenfenster = 0.99;
constexpr int LetzterRatenverstoss = 3;

constexpr std::string_view Unbekannt = "No security definition has been found for the request";
constexpr std::string_view NichtAbonniert =
    "Requested market data is not subscribed. Check API status by selecting the Account menu then under Management "
    "choose Market Data Subscription Manager and/or availability of the following subscription: Top";

std::string Mehrdeutig(const Kontraktsuche& suche) {
    return "The contract description specified for " + suche.Symbol + " is ambiguous.";
}

const Kontrakt& Beispiel(const std::vector<Kontrakt>& alle, std::string_view typ) {
    const auto treffer = std::find_if(alle.begin(), alle.end(), [&](const Kontrakt& k) { return k.Typ == typ; });
    return treffer != alle.end() ? *treffer : alle.front();
}

}  // namespace

Sitzung::Anfrage Sitzung::AnfrageFuer(std::int64_t nummer) {
    switch (nummer) {
        case 1:
            return &Sitzung::Marktdaten;
        case 2:
            return &Sitzung::MarktdatenEnde;
        case 6:
            return &Sitzung::Kontodaten;
        case 8:
            return &Sitzung::Ordernummer;
        case 9:
            return &Sitzung::Details;
        case 10:
            return &Sitzung::Tiefe;
        case 11:
            return &Sitzung::TiefeEnde;
        case 14:
            return &Sitzung::Nichts;
        case 17:
            return &Sitzung::Kontenliste;
        case 20:
            return &Sitzung::Historie;
        case 25:
            return &Sitzung::HistorieEnde;
        case 49:
            return &Sitzung::Uhrzeit;
        case 59:
            return &Sitzung::Datenart;
        case 71:
            return &Sitzung::Nichts;
        case 105:
            return &Sitzung::UhrzeitInMillis;
        case 5:
        case 7:
        case 16:
        case 61:
        case 62:
        case 63:
        case 64:
        case 76:
        case 77:
        case 99:
            return &Sitzung::LeereAuskunft;
        default:
            return nullptr;
    }
}

void Sitzung::NimmAnfrage(std::string_view inhalt) {
    ++buehne_.Zahlen.Anfragen;
    Felder felder(inhalt);
    if (buehne_.Wahl.MerkeAnfragen) buehne_.Anfragen.push_back({buehne_.Clock.Jetzt(), klient_, felder.Alle()});
    if (!RateErlaubt()) return;
    try {
        anfrageNummer_ = felder.Ganzzahl();
        ++buehne_.Zahlen.JeNachricht[static_cast<int>(anfrageNummer_)];
        const Anfrage anfrage = AnfrageFuer(anfrageNummer_);
        if (anfrage == nullptr) throw Lesefehler{std::to_string(anfrageNummer_)};
        (this->*anfrage)(felder);
    } catch (const Lesefehler& fehler) {
        Fehler(-1, 320,
               "Error reading request:Message type " + std::to_string(anfrageNummer_) +
                   ". Unable to parse data. java.lang.NumberFormatException: For input string: \"" + fehler.Text +
                   "\"");
        Schliesse();
    }
}

bool Sitzung::RateErlaubt() {
    const double jetzt = buehne_.Utc();
    const auto faellt = [&](double zeit) { return zeit <= jetzt - Ratenfenster || zeit > jetzt; };
    while (!anfragezeiten_.empty() && faellt(anfragezeiten_.front())) anfragezeiten_.pop_front();
    anfragezeiten_.push_back(jetzt);
    if (anfragezeiten_.size() <= Hoechstrate) return true;
    if (anfragezeiten_.size() == Hoechstrate + 1) ++buehne_.Zahlen.Ratenverstoesse;
    if (buehne_.Wahl.Rateregel == Ratenregel::Egal) return true;
    ++ratenverstoesse_;
    Fehler(-1, 100,
           "Max rate of messages per second has been exceeded:max=50 rec=" + std::to_string(anfragezeiten_.size()) +
               " (" + std::to_string(ratenverstoesse_) + ")");
    anfragezeiten_.clear();
    if (ratenverstoesse_ >= LetzterRatenverstoss) Schliesse();
    return false;
}

// ---- session

void Sitzung::Uhrzeit(Felder&) {
    if (buehne_.Lage.ZeitStumm) return;
    SendeNachricht(49, 1, static_cast<Sekunde>(std::floor(buehne_.Utc() + buehne_.Lage.Zeitversatz)));
}

void Sitzung::UhrzeitInMillis(Felder&) {
    if (sv_ < ab::ZeitInMillis) throw Lesefehler{"105"};
    if (buehne_.Lage.ZeitStumm) return;
    SendeNachricht(109, static_cast<Sekunde>(std::floor((buehne_.Utc() + buehne_.Lage.Zeitversatz) * 1000)));
}

void Sitzung::Kontenliste(Felder&) {
    SendeNachricht(15, 1, buehne_.Wahl.Konto);
}
void Sitzung::Ordernummer(Felder&) {
    SendeNachricht(9, 1, buehne_.Wahl.NaechsteOrder);
}

void Sitzung::Datenart(Felder& f) {
    f.Ganzzahl();
    datenart_ = static_cast<int>(f.Ganzzahl());
}

// Questions for orders, executions, positions: there are none, so the end comes at once.
void Sitzung::LeereAuskunft(Felder& f) {
    switch (anfrageNummer_) {
        case 5:
        case 16:
            return SendeNachricht(53, 1);
        case 61:
            return SendeNachricht(62, 1);
        case 99:
            return SendeNachricht(102);
        default:
            break;
    }
    f.Ganzzahl();  // version
    const std::int64_t id = f.Uebrig() > 0 ? f.Ganzzahl() : 0;
    if (anfrageNummer_ == 7) SendeNachricht(55, 1, id);
    if (anfrageNummer_ == 62) SendeNachricht(64, 1, id);
    if (anfrageNummer_ == 76) SendeNachricht(74, 1, id);
}

// ---- account

void Sitzung::Kontodaten(Felder& f) {
    f.Ganzzahl();
    if (!f.Wahr()) {
        kontowecker_.Aus();
        return Fehler(-1, 2100, "API client has been unsubscribed from account data.");
    }
    SendeKontostand(true);
}

void Sitzung::SendeKontostand(bool ganz) {
    const std::string konto = buehne_.Wahl.Konto.substr(0, buehne_.Wahl.Konto.find(','));
    const auto jetzt = static_cast<Sekunde>(buehne_.Utc());
    const double wert = 1000000 + static_cast<double>(jetzt % 1000);
    const std::string betrag = Dezimal(wert + 0.53);
    std::vector<Kontozeile> werte{{"NetLiquidation", betrag, "USD"}, {"UnrealizedPnL", Dezimal(wert - 1e6), "BASE"}};
    if (ganz) {
        werte = {{"AccountCode", konto, ""},           {"AccountReady", "true", ""},
                 {"AccountType", "INDIVIDUAL", ""},    {"AvailableFunds", betrag, "USD"},
                 {"BuyingPower", betrag, "USD"},       {"CashBalance", "1000000.00", "BASE"},
                 {"CashBalance", "1000000.00", "EUR"}, {"Cushion", "0.97", ""},
                 {"ExchangeRate", "1.00", "BASE"},     {"NetLiquidation", betrag, "USD"},
                 {"Leverage-S", "0.12", ""},           {"UnrealizedPnL", Dezimal(wert - 1e6), "BASE"}};
    }
    const std::vector<Kontrakt>& alle = buehne_.Wahl.Kontrakte;
    const double pfadzeit = buehne_.Pfadzeit();
    Sende([&](std::string& ziel) {
        for (const Kontozeile& w : werte) SchreibeKontowert(ziel, w, konto);
        struct Bestand {
            const char* Typ;
            double Stueck;
        };
        for (const Bestand& b : {Bestand{"STK", 100}, Bestand{"FUT", -2}, Bestand{"OPT", 5}, Bestand{"CASH", 0}}) {
            if (alle.empty()) break;
            const Kontrakt& k = Beispiel(alle, b.Typ);
            const Kursstand stand = Pfad(buehne_.Wahl.Pfad, k).Stand(static_cast<Sekunde>(pfadzeit) - 1);
            SchreibePortfolio(ziel, {k, b.Stueck, stand.Last != 0 ? stand.Last : stand.Geld, k.Basis}, konto);
        }
        Nachricht{ziel}(8, 1, Datumzeit(jetzt, buehne_.Versatz(), " ").substr(9, 5));
        if (ganz) Nachricht{ziel}(54, 1, konto);
    });
    kontowecker_.Stelle(buehne_.Wahl.Kontoabstand, [this] { SendeKontostand(false); });
}

// ---- market data

std::optional<Kontrakt> Sitzung::Einziger(int id, const Kontraktsuche& suche) {
    const std::vector<Kontrakt> treffer = wirt_.Kontrakte().Finde(suche);
    if (treffer.size() == 1) return treffer.front();
    Fehler(id, 200, treffer.empty() ? std::string(Unbekannt) : Mehrdeutig(suche));
    return std::nullopt;
}

std::unique_ptr<Tickquelle> Sitzung::QuelleFuer(const Kontraktsuche& suche, const Kontrakt& kontrakt) {
    if (buehne_.Andere != nullptr) {
        if (auto andere = buehne_.Andere->QuelleFuer(suche, buehne_.Pfadzeit())) return andere;
    }
    return std::make_unique<Pfadquelle>(Pfad(buehne_.Wahl.Pfad, kontrakt));
}

void Sitzung::Marktdaten(Felder& f) {
    f.Ganzzahl();
    const int id = static_cast<int>(f.Ganzzahl());
    const Kontraktsuche suche = LiesKontrakt(f);
    if (suche.IstKombination()) f.Ueberspringe(static_cast<int>(f.Ganzzahl()) * 4);
    f.Wahr();  // delta neutral
    f.Text();  // generic ticks
    const bool schnappschuss = f.Wahr();
    if (sv_ >= ab::RegulatorySnapshot) f.Wahr();
    if (markt_.count(id) != 0) {
        return Fehler(id, 322, "Error processing request.-'bO' : cause - Duplicate ticker id");
    }
    if (wirt_.Zeilen() >= buehne_.Wahl.MaxZeilen) {
        return Fehler(id, 101, "Max number of tickers has been reached");
    }
    const auto kontrakt = Einziger(id, suche);
    if (!kontrakt) return;
    if (buehne_.Wahl.NichtAbonniert.count(kontrakt->Symbol) != 0) return Fehler(id, 354, NichtAbonniert);
    if (buehne_.Lage.Konkurrenz) return Fehler(id, 10197, "No market data during competing live session");

    SendeNachricht(81, id, kontrakt->MinTick, "9c0001", 3);
    SendeNachricht(58, 1, id, datenart_);
    auto strom = std::make_unique<Marktstrom>(
        id, *kontrakt, QuelleFuer(suche, *kontrakt), [this] { return wirt_.TicksJeStrom(); }, *this,
        buehne_.Wahl.EchoRegel, buehne_.Wuerfel);
    const double pfadzeit = buehne_.Pfadzeit();
    if (!buehne_.Lage.TicksStumm()) strom->SendeBild(pfadzeit);
    if (schnappschuss) return SendeNachricht(57, 1, id);
    Spuele();
    // The stream counts before it begins: its share of a total rate hangs on the number of streams.
    Marktstrom& neuer = *(markt_[id] = std::move(strom));
    neuer.SetzeAuf(pfadzeit);
    wirt_.StroemeGeaendert();
}

void Sitzung::MarktdatenEnde(Felder& f) {
    f.Ganzzahl();
    const int id = static_cast<int>(f.Ganzzahl());
    if (markt_.erase(id) == 0) return Fehler(id, 300, "Can't find EId with tickerId:" + std::to_string(id));
    wirt_.StroemeGeaendert();
}

void Sitzung::Tiefe(Felder& f) {
    f.Ganzzahl();
    const int id = static_cast<int>(f.Ganzzahl());
    Kontraktsuche suche;
    suche.ConId = f.Ganzzahl();
    suche.Symbol = f.Text();
    suche.Typ = f.Text();
    suche.Laufzeit = f.Text();
    suche.Basispreis = f.Zahl();
    suche.Recht = f.Text();
    suche.Multiplikator = f.Text();
    suche.Boerse = f.Text();
    if (sv_ >= ab::DepthPrimaryExchange) suche.Hauptboerse = f.Text();
    suche.Waehrung = f.Text();
    suche.LokalesSymbol = f.Text();
    suche.Handelsklasse = f.Text();
    const int zeilen = static_cast<int>(f.Ganzzahl());
    const bool smart = sv_ >= ab::SmartDepth && f.Wahr();
    if (tiefe_.count(id) != 0) {
        return Fehler(id, 322, "Error processing request.-'bO' : cause - Duplicate ticker id");
    }
    if (static_cast<int>(tiefe_.size()) >= buehne_.Wahl.MaxTiefe) {
        return Fehler(
            id, 309,
            "Max number (" + std::to_string(buehne_.Wahl.MaxTiefe) + ") of market depth requests has been reached");
    }
    const auto kontrakt = Einziger(id, suche);
    if (!kontrakt) return;
    if (buehne_.Wahl.NichtAbonniert.count(kontrakt->Symbol) != 0) return Fehler(id, 354, NichtAbonniert);
    if (!kontrakt->HatQuotes()) {
        return Fehler(id, 10092, "Deep market data is not supported for this combination of security type/exchange");
    }
    tiefeSmart_[id] = smart;
    Tiefenstrom& strom =
        *(tiefe_[id] = std::make_unique<Tiefenstrom>(id, *kontrakt, QuelleFuer(suche, *kontrakt), zeilen, *this));
    const double pfadzeit = buehne_.Pfadzeit();
    strom.SendeBild(pfadzeit);
    strom.SetzeAuf(pfadzeit);
    Spuele();
    wirt_.StroemeGeaendert();
}

void Sitzung::TiefeEnde(Felder& f) {
    f.Ganzzahl();
    const int id = static_cast<int>(f.Ganzzahl());
    if (sv_ >= ab::SmartDepth && f.Uebrig() > 0) f.Wahr();
    if (tiefe_.erase(id) == 0) {
        return Fehler(id, 310, "Can't find the subscribed market depth with tickerId:" + std::to_string(id));
    }
    wirt_.StroemeGeaendert();
}

// ---- contracts

void Sitzung::Details(Felder& f) {
    f.Ganzzahl();
    const int id = static_cast<int>(f.Ganzzahl());
    const Kontraktsuche suche = LiesKontrakt(f);
    const std::vector<Kontrakt> treffer = wirt_.Kontrakte().Finde(suche);
    if (treffer.empty()) return Fehler(id, 200, Unbekannt);
    constexpr int Tage = 5;
    const auto heute = static_cast<Sekunde>(buehne_.Utc());
    Sende([&](std::string& ziel) {
        for (const Kontrakt& k : treffer) {
            const std::string stunden =
                Stundentext(k.Zeiten.value_or(buehne_.Wahl.Pfad.Zeiten), k.Zeitzone, heute, Tage);
            SchreibeDetails(ziel, sv_, id, k, {stunden, stunden});
        }
        Nachricht{ziel}(52, 1, id);
    });
}

// ---- history

void Sitzung::Historie(Felder& f) {
    const Historienanfrage anfrage = LiesHistorienanfrage(f, sv_);
    Stoerungen& lage = buehne_.Lage;
    wirt_.HistorieGefragt();
    if (historien_.count(anfrage.Id) != 0) {
        return Fehler(anfrage.Id, 322,
                      "Error processing request.-'bO' : cause - Duplicate ticker ID for API historical data query");
    }
    if (!lage.Historienfehler.empty()) {
        const Ablehnung ablehnung = lage.Historienfehler.front();
        lage.Historienfehler.pop_front();
        return Fehler(anfrage.Id, ablehnung.Code, ablehnung.Text);
    }
    if (lage.StummeHistorien > 0) {
        --lage.StummeHistorien;
        historien_[anfrage.Id] = anfrage;
        return;
    }
    if (lage.VerbindungWeg || lage.HistorieWeg) {
        return Fehler(anfrage.Id, 162, "Historical Market Data Service error message:HMDS connection is broken");
    }
    if (buehne_.Wahl.Pacing && !buehne_.Pacing.Erlaubt(buehne_.Utc(), anfrage)) {
        ++buehne_.Zahlen.Pacingverstoesse;
        return Fehler(anfrage.Id, 162,
                      "Historical Market Data Service error message:Historical data request pacing violation");
    }
    historien_[anfrage.Id] = anfrage;
    const double dauer = buehne_.Wahl.HistorieDauer + lage.Historieverzoegerung;
    buehne_.Termine.Spaeter(dauer, [selbst = weak_from_this(), id = anfrage.Id] {
        const auto sitzung = selbst.lock();
        if (!sitzung) return;
        const auto offen = sitzung->historien_.find(id);
        if (offen == sitzung->historien_.end()) return;  // cancelled meanwhile
        const Historienanfrage fertig = offen->second;
        sitzung->historien_.erase(offen);
        sitzung->BeantworteHistorie(fertig);
    });
}

void Sitzung::BeantworteHistorie(const Historienanfrage& anfrage) {
    const auto kontrakt = Einziger(anfrage.Id, anfrage.Was);
    if (!kontrakt) return;
    const auto jetzt = static_cast<Sekunde>(std::floor(buehne_.Pfadzeit()));
    const Betreiberzone zone = buehne_.Zone();
    const auto pruefung = PruefeHistorie(anfrage, jetzt, zone, buehne_.Wahl.HistorieMaxSekunden);
    if (const auto* ablehnung = std::get_if<Ablehnung>(&pruefung)) {
        return Fehler(anfrage.Id, ablehnung->Code, ablehnung->Text);
    }
    const auto& spanne = std::get<Historienspanne>(pruefung);
    if (spanne.OhneZone && sv_ >= ab::Zonensuffix) {
        Fehler(anfrage.Id, 2174,
               "Warning: You submitted request with date-time attributes without explicit time zone. Please switch to "
               "use yyyymmdd-hh:mm:ss in UTC or use instrument time zone, like US/Eastern. Implied time zone "
               "functionality will be removed in the next API release");
    }
    const std::vector<Balken> balken =
        Historienbalken(Pfad(buehne_.Wahl.Pfad, *kontrakt), spanne, buehne_.Wahl.LueckenFuellen);
    if (balken.empty() && buehne_.Wahl.OhneBalken == LeereHistorie::Fehler162) {
        return Fehler(anfrage.Id, 162,
                      "Historical Market Data Service error message:HMDS query returned no data: " +
                          kontrakt->LokalesSymbol + '@' + kontrakt->Boerse + ' ' + anfrage.Kursart);
    }
    const Datumsschreiber schreiber(sv_, buehne_.Wahl.Daten, zone, kontrakt->Zeitzone);
    std::vector<Textbalken> texte;
    texte.reserve(balken.size());
    for (const Balken& b : balken) {
        texte.push_back({schreiber.Balkendatum(b.Beginn, spanne.Schritt, anfrage.Datumsart), b});
    }
    ++buehne_.Zahlen.Historien;
    Sende([&](std::string& ziel) {
        SchreibeHistorie(ziel, sv_, anfrage.Id, schreiber.Moment(spanne.Von), schreiber.Moment(spanne.Bis), texte);
    });
}

void Sitzung::HistorieEnde(Felder& f) {
    f.Ganzzahl();
    const int id = static_cast<int>(f.Ganzzahl());
    if (historien_.erase(id) == 0) {
        return Fehler(id, 366, "No historical data query found for ticker id:" + std::to_string(id));
    }
    Fehler(id, 162,
           "Historical Market Data Service error message:API historical data query cancelled: " + std::to_string(id));
}

bool Sitzung::OffeneHistorienScheitern(const Ablehnung& ablehnung) {
    const std::map<int, Historienanfrage> offene = std::exchange(historien_, {});
    for (const auto& [id, anfrage] : offene) Fehler(id, ablehnung.Code, ablehnung.Text);
    return !offene.empty();
}

}  // namespace zek::simulator
