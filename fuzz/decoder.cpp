// Any payload at any server version: the decoder raises only sound events. The first byte picks the version.
#include "feed/tws/decoder.h"
#include "feed/tws/textflucht.h"

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

namespace {

using namespace zek::tws;

void Fordere(bool wahr) {
    if (!wahr) std::abort();
}

// Every number is finite and every text UTF-8. Gives the session up after some events, as a user may.
class Pruefer : public TwsEreignisse {
public:
    explicit Pruefer(int hoechstens) : uebrig_(hoechstens) {}
    bool Offen = true;

    void connectionClosed() override { std::abort(); }
    void currentTime(std::int64_t) override { Ereignis(); }
    void errMsg(int, int, std::string_view text, std::string_view json) override { Ereignis(text, json); }
    void nextValidId(int) override { Ereignis(); }
    void managedAccounts(std::string_view konten) override { Ereignis(konten); }
    void tickPrice(int, int, double preis, bool, bool, bool) override { Ereignis(preis); }
    void tickSize(int, int, double groesse) override { Ereignis(groesse); }
    void tickString(int, int, std::string_view wert) override { Ereignis(wert); }
    void updateAccountValue(std::string_view key, std::string_view wert, std::string_view waehrung,
                            std::string_view konto) override {
        Ereignis(key, wert, waehrung, konto);
    }
    void updatePortfolioEx(const Contract& c, double a, double b, double d, double e, double f, double g,
                           std::string_view konto) override {
        Ereignis(c.symbol, c.strike, c.localSymbol, a, b, d, e, f, g, konto);
    }
    void accountDownloadEnd(std::string_view konto) override { Ereignis(konto); }
    void updateMktDepth(int, int, int, int, double preis, double groesse) override { Ereignis(preis, groesse); }
    void updateMktDepthL2(int, int, std::string_view maker, int, int, double preis, double groesse) override {
        Ereignis(maker, preis, groesse);
    }
    void contractDetailsEx(int, const ContractDetails& d) override {
        Ereignis(d.contract.symbol, d.contract.strike, d.minTick, d.longName, d.timeZoneId, d.liquidHours);
    }
    void contractDetailsEnd(int) override { Ereignis(); }
    void historicalData(int, const Bar& b) override {
        Ereignis(b.open, b.high, b.low, b.close, b.volume, b.wap);
        for (const char zeichen : b.date) Fordere(zeichen != '\0');
    }
    void historicalDataEnd(int, std::string_view start, std::string_view ende) override { Ereignis(start, ende); }

private:
    static void Pruefe(double zahl) { Fordere(std::isfinite(zahl)); }
    static void Pruefe(std::string_view text) {
        std::string puffer;
        Fordere(Klartext(text, false, puffer).data() == text.data());
    }
    template <typename... Werte>
    void Ereignis(const Werte&... werte) {
        Fordere(Offen);
        (Pruefe(werte), ...);
        if (--uebrig_ == 0) Offen = false;
    }

    int uebrig_;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* daten, std::size_t anzahl) {
    if (anzahl == 0) return 0;
    // A copy of its own, so that a read past the end is seen.
    const std::string inhalt(reinterpret_cast<const char*>(daten) + 1, anzahl - 1);
    Pruefer pruefer(1 + daten[0] / 101 * 100);
    Dekodiere(inhalt, 100 + daten[0] % 101, pruefer, pruefer.Offen);
    return 0;
}
