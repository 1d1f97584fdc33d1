#include "luecken/arten.h"

#include <array>

namespace zek {

namespace {

struct Artzeile {
    Artmenge Art;
    std::string_view Name;
    std::int32_t Kursart;
};
constexpr std::int32_t ErsteTiefe = -100;  // depth files have kinds below
constexpr std::array<Artzeile, artmenge::Anzahl> Arttabelle{{{artmenge::Bezahlt, "Bezahlt", 1},
                                                             {artmenge::Brief, "Brief", 2},
                                                             {artmenge::Geld, "Geld", 3},
                                                             {artmenge::BAVolume, "BAVolume", 5},
                                                             {artmenge::Markttiefe, "Markttiefe", ErsteTiefe},
                                                             {artmenge::Position, "Position", 6}}};

}  // namespace

std::string Arttext(Artmenge arten) {
    std::string text;
    for (const Artzeile& zeile : Arttabelle)
        if ((arten & zeile.Art) != 0) text.append(text.empty() ? "" : ", ").append(zeile.Name);
    return text;
}

Artmenge ArtMitNamen(std::string_view name) {
    for (const Artzeile& zeile : Arttabelle)
        if (zeile.Name == name) return zeile.Art;
    return 0;
}

Artmenge ArtVon(std::int32_t kursart) {
    if (kursart < ErsteTiefe) return artmenge::Markttiefe;
    for (const Artzeile& zeile : Arttabelle)
        if (zeile.Kursart == kursart && kursart > 0) return zeile.Art;
    return 0;
}

}  // namespace zek
