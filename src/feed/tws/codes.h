// The codes of errMsg that somebody in this house decides by. Every other code is only reported, and looked up in the
// restart list. Texts differ from build to build of the TWS, so what follows from a message follows from its code.
#pragma once

namespace zek::tws::code {

// ---- raised by the client itself, always with id -1

// The session has ended when they come (except 504). connectionClosed follows if a session stood (-1) or the server had
// been reached (503, 506, 507), unless the handler gave the control up or connected anew.
inline constexpr int SocketFehler = -1;          // the socket broke; text of the system
inline constexpr int ZuAlt = 503;                // the server's version is below 100
inline constexpr int NichtVerbunden = 504;       // a request without a session
inline constexpr int VersionUnbekannt = 506;     // the server's version is no number, or beyond the last one with text
inline constexpr int FalscheRahmenlaenge = 507;  // a frame beyond the limit

// ---- on a request, with its id
inline constexpr int ZuVieleTicker = 101;                // all market data lines are taken: no data for this id
inline constexpr int DoppelteNummer = 102;               // the ticker id is in use; the earlier request goes on
inline constexpr int Historiendienst = 162;              // of the history service itself: pacing, no data, cancelled
inline constexpr int KeinKontrakt = 200;                 // no contract fits the description, or several do
inline constexpr int KeineFreigabe = 203;                // the contract isn't allowed for this account
inline constexpr int ZuVieleTiefen = 309;                // more depths at the same time than the account has
inline constexpr int TiefeUnbekannt = 310;               // no depth stands under this ticker id
inline constexpr int TiefeAngehalten = 316;              // the depth has ended and has to be asked for again
inline constexpr int AnfrageUngueltig = 321;             // the request was refused when it was checked
inline constexpr int NichtAbonniert = 354;               // the account has no subscription to this market data
inline constexpr int KeineAnfrage = 366;                 // no history request is open under this ticker id
inline constexpr int ZeitzoneFehlt = 2174;               // an end time without a zone; the data come
inline constexpr int NichtAbonniertFuerApi = 10089;      // market data need a further subscription for the API
inline constexpr int TeilNichtAbonniert = 10090;         // some ticks come
inline constexpr int TeilNichtAbonniertFuerApi = 10091;  // some ticks come
inline constexpr int TiefeNichtUnterstuetzt = 10092;     // no depth for this kind of contract at this exchange
inline constexpr int VerzoegertStattAbonniert = 10167;   // delayed prices come in the place of the live ones
inline constexpr int NichtAbonniertNichtVerzoegert = 10168;  // neither live nor delayed prices come
inline constexpr int VerzoegerteAbgeschaltet = 10186;        // delayed market data aren't enabled
inline constexpr int Konkurrenz = 10197;                     // another login of the user takes the streams that stood

// ---- news of connections, with id -1
inline constexpr int TwsOffline = 1100;               // the TWS has lost the broker; comes again while that lasts
inline constexpr int VerbindungDatenVerloren = 1101;  // back; the streams stay dead until they are asked for again
inline constexpr int VerbindungDatenErhalten = 1102;  // back; the streams go on
inline constexpr int KursfarmGestoert = 2103;         // the ticks of one farm stop; the text names it
inline constexpr int KursfarmAktiv = 2104;            // the farm of ticks is there, or back
inline constexpr int HistorienfarmAktiv = 2106;       // the history service is there
inline constexpr int HistorienfarmBereit = 2107;      // inactive, and there on demand: the next request wakes it
inline constexpr int VerbindungGestoert = 2110;       // like TwsOffline, in other words
inline constexpr int StammdatenfarmAktiv = 2158;      // the service for contract queries is there

}  // namespace zek::tws::code
