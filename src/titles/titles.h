// Map of the room "titles": what is recorded.
//
//   titelobjekt.h  clTitelobjekt: one instrument with its contract, options and tick state; Verbindungsvergleich
//   titelliste.h   Titelliste and Katalogliste, the keyed collections
//   wertbaum.h     the tagged value tree: bytes to values and back
//   titeldatei.h   the definitions file "IB_Titel.Dat": header text and one value tree
//
// A title becomes a parameter list (WriteAllPara), the list a value tree, the tree bytes; reading goes the same road
// back. Pacing and subscription at the load stand in datafiles/titelladen.h.
#pragma once

#include "titles/titeldatei.h"
#include "titles/titelliste.h"
#include "titles/titelobjekt.h"
#include "titles/wertbaum.h"
