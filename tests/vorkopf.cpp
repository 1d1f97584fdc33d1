#include "vorkopf.h"
