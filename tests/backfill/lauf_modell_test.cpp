// A run against its model on random histories: every request, every record. By environment: ZEK_LAEUFE, the number of
// runs (default 600), and ZEK_SAAT, the first one.
#include "backfill/lauf_modell.h"
#include "backfill/einarbeiten_modell.h"
#include "backfill/pflegewelt.h"
#include "hilfen/umgebung.h"

#include <gmock/gmock.h>

#include <cstdlib>
#include <random>

namespace zek::pflege {
namespace {

constexpr Datum Modellmittag = DatumAus(hilfen::VirtuelleWelt::Vorgabebeginn);
constexpr int Vergangenheit = 20'000;  // seconds that the service knows of

// A service with a past of its own, wholly told by a number. Its answers are the same for the run and for the model:
// they depend on the kind, the number of the request within its series, and the end.
class Vergangenes {
public:
    explicit Vergangenes(std::uint64_t nummer) : zufall_(nummer), nummer_(nummer) {
        unruhig_ = Bis(2) == 0;
        springt_ = Bis(3) == 0;
        bool rege = Bis(1) == 0;
        for (int s = -Vergangenheit; s <= 0;) {
            const int laenge = 1 + Bis(rege ? 600 : 3500);
            for (int i = 0; i < laenge && s <= 0; ++i, ++s)
                if (rege && Bis(3) == 0) balken_.push_back({At(s), 100.0 + Bis(3), static_cast<double>(Bis(3) - 1)});
            rege = !rege;
        }
    }

    Modellantwort Antwort(std::int32_t kursart, std::size_t frage, Datum ende) const {
        std::mt19937_64 wuerfel(nummer_ * 1000 + static_cast<std::uint64_t>(kursart) * 100 + frage);
        Modellantwort antwort;
        const Datum bis = ende == 0 ? Modellmittag : ende;
        const Datum ab = bis - 1999.5 / 86400;
        for (const auto& b : balken_)
            if (b.Zeit <= bis + 1e-9 && b.Zeit > ab) antwort.Balken.push_back(b);
        if (antwort.Balken.empty() && springt_)  // the last ones before it, however old
            for (auto b = balken_.rbegin(); b != balken_.rend() && antwort.Balken.size() < 50; ++b)
                if (b->Zeit <= bis + 1e-9) antwort.Balken.insert(antwort.Balken.begin(), *b);
        if (antwort.Balken.empty() && wuerfel() % 6 == 0) antwort.Ausgang = Modellantwort::Art::KeineDaten;
        if (unruhig_ && wuerfel() % 5 == 0) Stoere(antwort, wuerfel);
        for (auto& b : antwort.Balken) b.Schluss += kursart;
        return antwort;
    }

    int Bis(int hoechstens) { return static_cast<int>(zufall_() % static_cast<unsigned>(hoechstens + 1)); }
    static Datum At(int sekunde) {
        return DatumAus(hilfen::VirtuelleWelt::Vorgabebeginn + std::chrono::seconds(sekunde));
    }

private:
    using Art = Modellantwort::Art;

    static void Stoere(Modellantwort& antwort, std::mt19937_64& wuerfel) {
        constexpr Art arten[] = {Art::KeineDaten, Art::Schweigen, Art::Pacing, Art::Unterbrechung};
        antwort.Ausgang = arten[wuerfel() % 4];
        antwort.Balken.resize(wuerfel() % (antwort.Balken.size() + 1));
    }

    std::mt19937_64 zufall_;
    std::uint64_t nummer_;
    bool unruhig_, springt_;
    std::vector<Modellbalken> balken_;
};

std::int32_t KursartVon(const Anfrage& anfrage) {
    return anfrage.Art == "TRADES" ? kursart::Bezahlt : anfrage.Art == "ASK" ? kursart::Brief : kursart::Geld;
}

// An end of the model; 0 is the present.
std::optional<Zeitpunkt> AlsEnde(Datum ende) {
    return ende == 0 ? std::nullopt : std::optional(ZeitpunktAus(ende));
}

std::string Zeile(std::int32_t kursart, Datum ende) {
    return std::string(Historienart(kursart)) + " " + Endzeittext(AlsEnde(ende));
}

class Pruefling {
public:
    explicit Pruefling(std::uint64_t nummer) : vergangenes_(nummer) {
        p_.Dateien.SetzeProtokoll(false);
        p_.Modul.Einstellungen.BFTimeOut = 15;
        p_.Modul.Einstellungen.IBBezahlt = vergangenes_.Bis(3) == 0;
        p_.Modul.Einstellungen.IBAndere = vergangenes_.Bis(3) == 0;
        titel_ = p_.Titel("ES");
        titel_->BidAsk = vergangenes_.Bis(1) == 0;
        if (vergangenes_.Bis(3) == 0) titel_->Typ = "IND";
        if (vergangenes_.Bis(3) == 0) titel_->ZeitKorrektur = 0.25;
        start_ = Vergangenes::At(-vergangenes_.Bis(15'000));
        ende_ = vergangenes_.Bis(1) == 0 ? 0 : Vergangenes::At(-vergangenes_.Bis(2000));
        LegeDateienAn();
        p_.Historie.Statt = [this](const Anfrage& anfrage) { return Beantworte(anfrage); };
    }

    void Pruefe() {
        Prueflauf lauf(p_.Umgebung(), takt_);
        lauf.cAktualTitel = {titel_};
        if (ende_ == 0) {
            lauf.Startdatum = ZeitpunktAus(start_);
            lauf.KursBezahlt = lauf.IsManuelleDatenpflege = true;
            lauf.KursGeldBrief = titel_->BidAsk;
        } else {
            lauf.AutoDatenPflegeStart = ZeitpunktAus(start_);
            lauf.BackfillEndZeit = ZeitpunktAus(ende_);
        }
        lauf.StarteBackfill();

        std::vector<std::string> anfragen;
        for (const std::int32_t art : {kursart::Bezahlt, kursart::Brief, kursart::Geld}) {
            if (art != kursart::Bezahlt && !titel_->BidAsk) continue;
            std::size_t frage = 0;
            const Modellauftrag auftrag{art, titel_->Typ == "IND", start_, ende_, titel_->ZeitKorrektur};
            const auto serie = Modell(auftrag, [&](Datum ende) { return vergangenes_.Antwort(art, ++frage, ende); });
            for (const Datum ende : serie.Enden) anfragen.push_back(Zeile(art, ende));
            const bool filter =
                art == kursart::Bezahlt ? p_.Modul.Einstellungen.IBBezahlt : p_.Modul.Einstellungen.IBAndere;
            Saetze erwartet = vorher_[art];
            if (!serie.Saetze.empty()) erwartet = Ersetzt(erwartet, serie.Saetze, filter);
            EXPECT_EQ(p_.Datei(Name(art)), erwartet) << "kind " << art;
        }
        EXPECT_EQ(p_.Historie.Enden(), anfragen);
    }

private:
    static std::string Name(std::int32_t art) {
        return art == kursart::Bezahlt ? "ES" : art == kursart::Brief ? "ES-ASK" : "ES-BID";
    }
    void LegeDateienAn() {
        for (const std::int32_t art : {kursart::Bezahlt, kursart::Brief, kursart::Geld}) {
            Saetze& saetze = vorher_[art];
            for (int s = -17'000; s < 60; s += 1 + vergangenes_.Bis(900))
                saetze.push_back({Vergangenes::At(s) + titel_->ZeitKorrektur, 7, 1});
            p_.Ram.LegeDateiAn(p_.Pfad(Name(art)), Kopf() + Bytes(saetze));
        }
    }
    bool Beantworte(const Anfrage& anfrage) {
        const std::int32_t art = KursartVon(anfrage);
        const Datum ende = anfrage.Ende.empty() ? 0 : DatumAus(LiesBalkendatum(anfrage.Ende)->Zeit);
        const Modellantwort antwort = vergangenes_.Antwort(art, ++fragen_[art], ende);
        p_.Welt.Plane(0.05, [this, antwort] {
            for (const auto& b : antwort.Balken) p_.Historie.Balken(ZeitpunktAus(b.Zeit), b.Schluss, b.Volumen);
            switch (antwort.Ausgang) {
                case Modellantwort::Art::Fertig:
                    return p_.Historie.Ende();
                case Modellantwort::Art::KeineDaten:
                    return p_.Historie.Melde(162, "HMDS query returned no data", 1);
                case Modellantwort::Art::Schweigen:
                    return;
                case Modellantwort::Art::Pacing:
                    p_.Historie.MeldePacing();
                    p_.Welt.Plane(3, [this] { p_.Historie.Melde(2107, "inactive"); });
                    return;
                case Modellantwort::Art::Unterbrechung:
                    p_.Historie.Melde(1100, "lost");
                    p_.Welt.Plane(3, [this] { p_.Historie.Melde(1102, "back"); });
                    return;
            }
        });
        return true;
    }

    Vergangenes vergangenes_;
    Pflegewelt p_;
    Anfragetakt takt_;
    Titelzeiger titel_;
    Datum start_ = 0, ende_ = 0;
    std::map<std::int32_t, Saetze> vorher_;
    std::map<std::int32_t, std::size_t> fragen_;
};

constexpr std::uint64_t Modellteile = 4;
class LaufModell : public testing::TestWithParam<std::uint64_t> {};
INSTANTIATE_TEST_SUITE_P(Teil, LaufModell, testing::Range(std::uint64_t{0}, Modellteile));

TEST_P(LaufModell, RandomHistoriesAreAskedForAndStoredAsTheModelSays) {
    const std::uint64_t saat = hilfen::Umgebungszahl("ZEK_SAAT", 1), laeufe = hilfen::Umgebungszahl("ZEK_LAEUFE", 600);
    for (std::uint64_t nummer = saat + GetParam(); nummer < saat + laeufe; nummer += Modellteile) {
        SCOPED_TRACE("ZEK_SAAT=" + std::to_string(nummer));
        Pruefling(nummer).Pruefe();
        if (HasFailure()) return;
    }
}

}  // namespace
}  // namespace zek::pflege
