#include "hilfen/fehlerwaechter.h"

#include <gmock/gmock.h>

// Of every test program that brings none of its own.
int main(int anzahl, char** argumente) {
    testing::InitGoogleMock(&anzahl, argumente);
    zek::BestelleFehlerwaechter();
    return RUN_ALL_TESTS();
}
