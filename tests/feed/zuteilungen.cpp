#include "zuteilungen.h"

#include <cstdlib>
#include <new>

namespace {
bool zaehlt = false;
std::size_t anzahl = 0;
}  // namespace

void* operator new(std::size_t bytes) {
    if (zaehlt) ++anzahl;
    if (void* platz = std::malloc(bytes)) return platz;
    throw std::bad_alloc();
}
void operator delete(void* platz) noexcept {
    std::free(platz);
}
void operator delete(void* platz, std::size_t) noexcept {
    std::free(platz);
}

namespace zek::hilfen {

void BeginneZaehlung() {
    anzahl = 0;
    zaehlt = true;
}

std::size_t BeendeZaehlung() {
    zaehlt = false;
    return anzahl;
}

}  // namespace zek::hilfen
