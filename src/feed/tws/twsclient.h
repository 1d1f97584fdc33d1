// The control: a Tws over the TCP seam.
#pragma once

#include "feed/tws/tws.h"
#include "platform/pumpe.h"
#include "platform/tcp.h"
#include "platform/uhr.h"

#include <memory>

namespace zek::tws {

class Sitzung;

// The highest server version that the client asks for unless told otherwise; it can read 100 to 200.
inline constexpr int UeblicheHoechstversion = 187;

class TwsClient : public Tws {
public:
    // All four must outlive the control. `hoechstversion` is brought into 100..200.
    TwsClient(TcpFabrik& tcp, Pumpe& pumpe, const Uhr& uhr, TwsEreignisse& ereignisse,
              int hoechstversion = UeblicheHoechstversion);
    ~TwsClient() override;
    TwsClient(const TwsClient&) = delete;
    TwsClient& operator=(const TwsClient&) = delete;

    void connect(const std::string& host, int port, int clientId, const std::string& connectOptions,
                 bool extraAuth) override;
    void disconnect() override;
    const std::string& TwsConnectionTime() const override;
    int serverVersion() const override;

    void reqCurrentTime() override;
    void reqAccountUpdates(bool subscribe, const std::string& accountName) override;
    void reqMktData(int id, const std::string& symbol, const std::string& secType, const std::string& expiry,
                    double strike, const std::string& right, const std::string& multiplier, const std::string& exchange,
                    const std::string& primaryExchange, const std::string& currency, const std::string& genericTicks,
                    bool snapshot, bool regulatorySnapshot) override;
    void reqMktData2(int id, const std::string& localSymbol, const std::string& secType, const std::string& exchange,
                     const std::string& primaryExchange, const std::string& currency, const std::string& genericTicks,
                     bool snapshot, bool regulatorySnapshot) override;
    void cancelMktData(int id) override;
    void reqMktDepth(int id, const std::string& symbol, const std::string& secType, const std::string& expiry,
                     double strike, const std::string& right, const std::string& multiplier,
                     const std::string& exchange, const std::string& currency, int numRows, bool smartDepth) override;
    void reqMktDepth2(int id, const std::string& localSymbol, const std::string& secType, const std::string& exchange,
                      const std::string& currency, int numRows, bool smartDepth) override;
    void cancelMktDepth(int id, bool smartDepth) override;
    void reqContractDetailsEx(int reqId, const Contract& contract) override;
    void reqHistoricalDataEx(int tickerId, const Contract& contract, const std::string& endDateTime,
                             const std::string& duration, const std::string& barSize, const std::string& whatToShow,
                             bool useRTH, int formatDate, bool keepUpToDate) override;
    void cancelHistoricalData(int tickerId) override;

private:
    template <typename Kodierer>
    void Schicke(Kodierer kodiere);

    TcpFabrik& tcp_;
    Pumpe& pumpe_;
    const Uhr& uhr_;
    TwsEreignisse& ereignisse_;
    int hoechstversion_;
    std::shared_ptr<Sitzung> sitzung_;
    std::string leer_;
};

}  // namespace zek::tws
