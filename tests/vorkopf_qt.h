// Precompiled for the tests of the windows.
#pragma once

#include "vorkopf.h"

#include <QTest>
#include <QtWidgets>
