// The room of the desktop face. Windows show and ask; what follows from an answer stands in the engine.
//
//   desktopgesicht         the engine's Gesicht, made of the windows below
//   hauptfenster           IB_Hauptfenster: start view, working view, offline warning, dock
//   aktionen, befehle      the commands: texts and icons; what they do
//   statusliste            the status list as a model and a view
//   monitor, monitormodell the live monitor
//   tray                   the icon in the notification area
//   meldungsgeber, meldungsfenster   ZeigeMeldung and its window
//   zek_einstellungen, verbindungseinstellungen, info, beispieltitel_fenster, startfenster   the small windows
//   datenpflege_optionen, datenpflege_fortschritt   a backfill: its choice, its progress
//   fensterplatz, monitorplatz, taskleiste, hilfe   places between runs, task bar, manual
//   auskunft               command line and manners of the desktop program
//   dialogbasis            what all dialogs share
#pragma once

#include "windows/desktopgesicht.h"
#include "windows/hilfe.h"
