// Lets an independent client loose on the real simulator, at one server version after the other. Exits 0 only when
// everything came and was plausible.
//
// usage: node pruefe.js <path of tws-simulator>
"use strict";
const {spawn} = require("child_process");
const fs = require("fs");
const os = require("os");
const path = require("path");
const {IBApi, EventName} = require("@stoqey/ib");

const programm = process.argv[2];
const versionen = [100, 110, 124, 146, 152, 163, 164, 166, 176, 182, 187, 193];
const frist = 20000;  // ms for one version

const es = {symbol: "ES", secType: "FUT", exchange: "CME", currency: "USD", lastTradeDateOrContractMonth: "202612"};
const tsla = {symbol: "TSLA", secType: "STK", exchange: "SMART", primaryExch: "NASDAQ", currency: "USD"};

function starteSimulator(version, ordner) {
  const portdatei = path.join(ordner, "port" + version);
  const kind = spawn(programm, ["--port", "0", "--port-file", portdatei, "--seed", "7", "--density", "20",
                                "--version-max", String(version)], {stdio: ["pipe", "ignore", "inherit"]});
  return new Promise((fertig, fehler) => {
    const ende = Date.now() + 10000;
    const warte = setInterval(() => {
      if (fs.existsSync(portdatei)) {
        clearInterval(warte);
        fertig({kind, port: Number(fs.readFileSync(portdatei, "utf8"))});
      } else if (Date.now() > ende || kind.exitCode !== null) {
        clearInterval(warte);
        kind.kill();
        fehler(new Error("the simulator didn't start"));
      }
    }, 20);
  });
}

// What the client has to hear, each with a test that tells when it is complete.
function erwartungen(g) {
  const inDerNaehe = (wert, mitte) => Math.abs(wert - mitte) < mitte * 0.04;
  const balkenGut = (b) => b.length === 60 && b.every((x) => inDerNaehe(x.close, 6000) && x.high >= x.close &&
      x.low <= x.close && x.open >= x.low && x.open <= x.high);
  return {
    serverVersion: () => g.serverVersion === g.version,
    nextValidId: () => g.orderId === 1,
    managedAccounts: () => g.konten === "DU1234567",
    farmMessages: () => g.meldungen.has(2104) && g.meldungen.has(2158),
    currentTime: () => Math.abs(g.zeit - Date.now() / 1000) < 5,
    prices: () => [1, 2, 4].every((typ) => inDerNaehe(g.kurse[typ], 6000)) && g.kurse[1] < g.kurse[2],
    sizes: () => [0, 3, 5, 8].every((typ) => g.groessen[typ] > 0),
    stream: () => g.ticks > 60,
    depth: () => [0, 1].every((seite) => g.tiefe[seite].size === 10) && g.tiefenfolge > 20,
    details: () => g.details.length === 1 && g.detailsEnde && g.details[0].contract.localSymbol === "ESZ6" &&
        g.details[0].contract.conId === 620731015 && g.details[0].minTick === 0.25 &&
        g.details[0].longName === "E-mini S&P 500" && g.details[0].timeZoneId === "US/Central" &&
        Number(g.details[0].contract.multiplier) === 50,
    stockDetails: () => g.aktie.length === 1 && g.aktie[0].contract.conId === 76792991 &&
        g.aktie[0].longName === "TESLA INC" && g.aktie[0].validExchanges === "SMART,AMEX,NYSE",
    trades: () => g.historieEnde.has(11) && balkenGut(g.balken[11]) && g.balken[11].some((b) => b.volume > 0) &&
        g.balken[11].every((b) => b.volume >= 0),
    bids: () => g.historieEnde.has(12) && balkenGut(g.balken[12]) && g.balken[12].every((b) => b.volume === -1),
    account: () => g.konto.NetLiquidation > 900000 && g.konto.AccountReady === "true" && g.kontoEnde,
    portfolio: () => g.bestand.some((z) => z.symbol === "ES" && z.stueck === -2 && inDerNaehe(z.kurs, 6000)) &&
        g.bestand.some((z) => z.symbol === "AAPL" && z.typ === "OPT" && z.basispreis === 230 && z.recht === "C"),
    refusal: () => g.fehler.some((f) => f.code === 200 && f.id === 20),
  };
}

function hoere(ib, g) {
  ib.on(EventName.server, (version) => { g.serverVersion = version; });
  ib.on(EventName.nextValidId, (id) => { g.orderId = id; });
  ib.on(EventName.managedAccounts, (konten) => { g.konten = konten; });
  ib.on(EventName.info, (text, code) => { g.meldungen.add(code); });
  ib.on(EventName.error, (fehler, code, id) => {
    g.meldungen.add(code);
    g.fehler.push({code, id, text: fehler.message});
  });
  ib.on(EventName.currentTime, (zeit) => { g.zeit = zeit; });
  ib.on(EventName.tickPrice, (id, typ, kurs) => { if (id === 1) { g.kurse[typ] = kurs; ++g.ticks; } });
  ib.on(EventName.tickSize, (id, typ, groesse) => { if (id === 1) { g.groessen[typ] = groesse; ++g.ticks; } });
  ib.on(EventName.updateMktDepth, (id, position, vorgang, seite) => {
    if (vorgang === 0) g.tiefe[seite].add(position);
    ++g.tiefenfolge;
  });
  ib.on(EventName.contractDetails, (id, details) => { (id === 3 ? g.details : g.aktie).push(details); });
  ib.on(EventName.contractDetailsEnd, (id) => { if (id === 3) g.detailsEnde = true; });
  ib.on(EventName.historicalData, (id, time, open, high, low, close, volume) => {
    if (String(time).startsWith("finished")) {
      g.historieEnde.add(id);
    } else {
      g.balken[id].push({time, open, high, low, close, volume});
    }
  });
  ib.on(EventName.updateAccountValue, (key, wert) => { g.konto[key] = wert; });
  ib.on(EventName.updatePortfolio, (contract, stueck, kurs) => {
    g.bestand.push({symbol: contract.symbol, typ: contract.secType, basispreis: contract.strike,
                    recht: contract.right, stueck, kurs});
  });
  ib.on(EventName.accountDownloadEnd, () => { g.kontoEnde = true; });
}

function frage(ib) {
  ib.reqCurrentTime();
  ib.reqMktData(1, es, "", false, false);
  ib.reqMktDepth(2, es, 10, false);
  ib.reqContractDetails(3, es);
  ib.reqContractDetails(4, tsla);
  ib.reqHistoricalData(11, es, "", "60 S", "1 secs", "TRADES", 0, 1, false);
  ib.reqHistoricalData(12, es, "", "60 S", "1 secs", "BID", 0, 1, false);
  ib.reqAccountUpdates(true, "");
  ib.reqMktData(20, {...es, symbol: "NOSUCH"}, "", false, false);
}

async function pruefeVersion(version, ordner) {
  const {kind, port} = await starteSimulator(version, ordner);
  const g = {version, meldungen: new Set(), fehler: [], kurse: {}, groessen: {}, ticks: 0, tiefenfolge: 0,
             tiefe: [new Set(), new Set()], details: [], aktie: [], balken: {11: [], 12: []},
             historieEnde: new Set(), konto: {}, bestand: []};
  const ib = new IBApi({host: "127.0.0.1", port});
  hoere(ib, g);
  ib.once(EventName.nextValidId, () => frage(ib));
  ib.connect(28);
  const soll = erwartungen(g);
  const fehlend = () => Object.keys(soll).filter((name) => !soll[name]());
  const ende = Date.now() + frist;
  while (fehlend().length > 0 && Date.now() < ende) await new Promise((weiter) => setTimeout(weiter, 50));
  const offen = fehlend();
  const unerwartet = g.fehler.filter((f) => f.code !== 200 && !(f.code >= 2100 && f.code < 2200));
  ib.disconnect();
  kind.kill();
  console.log(`version ${version}: ${offen.length === 0 ? "all came" : "missing: " + offen.join(", ")}`);
  for (const f of unerwartet) console.log(`  error ${f.code} (id ${f.id}): ${f.text}`);
  if (offen.length > 0) console.log(JSON.stringify(g, (k, v) => (v instanceof Set ? [...v] : v)).slice(0, 4000));
  return offen.length === 0 && unerwartet.length === 0;
}

async function alle() {
  const ordner = fs.mkdtempSync(path.join(os.tmpdir(), "fremdclient-"));
  let gut = true;
  try {
    for (const version of versionen) gut = (await pruefeVersion(version, ordner)) && gut;
  } finally {
    fs.rmSync(ordner, {recursive: true});
  }
  process.exit(gut ? 0 : 1);
}

alle().catch((fehler) => {
  console.error(fehler);
  process.exit(1);
});
