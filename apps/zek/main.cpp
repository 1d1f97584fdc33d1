#include "platform/dateisystem_posix.h"
#include "werkzeug/werkzeug.h"

#include <iostream>

int main(int anzahl, char** argumente) {
    std::ios::sync_with_stdio(false);
    zek::PosixDateisystem dateien;
    return zek::Werkzeug({argumente + 1, argumente + anzahl}, ZEK_VERSION, dateien, std::cout, std::cerr);
}
