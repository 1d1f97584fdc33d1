#include "titles/wertbaum.h"

#include "platform/text.h"

#include <algorithm>
#include <bit>
#include <concepts>
#include <cstring>
#include <string_view>

namespace zek {

static_assert(std::endian::native == std::endian::little, "the value tree is little-endian");

namespace {

constexpr std::uint16_t TypLeer = 0, TypInt16 = 2, TypInt32 = 3, TypDouble = 5, TypText = 8, TypWahrheit = 11,
                        TypListe = 0x200C;
constexpr int TiefsteListe = 16;
constexpr std::size_t KleinsterWert = 2;  // bytes: a type word alone
constexpr std::size_t LaengsterText = 65535;

class Baumleser {
public:
    explicit Baumleser(std::span<const std::byte> bytes) : rest_(bytes) {}

    Wert LiesWert(int tiefe) {
        const auto typ = Zahl<std::uint16_t>();
        switch (typ) {
            case TypLeer:
                return {};
            case TypInt16:
                return {Zahl<std::int16_t>()};
            case TypInt32:
                return {Zahl<std::int32_t>()};
            case TypDouble:
                return {Zahl<double>()};
            case TypText:
                return {LiesText()};
            case TypWahrheit:
                return {Zahl<std::int16_t>() != 0};
            case TypListe:
                return {LiesListe(tiefe + 1)};
            default:
                throw WertbaumFehler("Unbekannter Typ eines Wertes: " + std::to_string(typ));
        }
    }

private:
    std::span<const std::byte> Nimm(std::size_t anzahl) {
        if (rest_.size() < anzahl) throw WertbaumFehler("Die Datei endet vorzeitig.");
        const auto teil = rest_.first(anzahl);
        rest_ = rest_.subspan(anzahl);
        return teil;
    }

    template <typename T>
    T Zahl() {
        T wert;
        std::memcpy(&wert, Nimm(sizeof(T)).data(), sizeof(T));
        return wert;
    }

    std::string LiesText() {
        const auto bytes = Nimm(Zahl<std::uint16_t>());
        return AusCodepage({reinterpret_cast<const char*>(bytes.data()), bytes.size()});
    }

    Werteliste LiesListe(int tiefe) {
        if (tiefe > TiefsteListe) throw WertbaumFehler("Die Listen sind zu tief geschachtelt.");
        if (Zahl<std::uint16_t>() != 1) throw WertbaumFehler("Eine Liste hat mehr als eine Dimension.");
        const auto anzahl = Zahl<std::uint32_t>();
        Werteliste liste;
        liste.Untergrenze = Zahl<std::int32_t>();
        if (anzahl > rest_.size() / KleinsterWert) throw WertbaumFehler("Die Datei endet vorzeitig.");
        liste.Elemente.reserve(anzahl);
        for (std::uint32_t i = 0; i < anzahl; ++i) liste.Elemente.push_back(LiesWert(tiefe));
        return liste;
    }

    std::span<const std::byte> rest_;
};

class Baumschreiber {
public:
    explicit Baumschreiber(std::vector<std::byte>& ziel) : ziel_(ziel) {}

    void operator()(std::monostate) { Zahl(TypLeer); }
    void operator()(std::int16_t wert) {
        Zahl(TypInt16);
        Zahl(wert);
    }
    void operator()(std::int32_t wert) {
        Zahl(TypInt32);
        Zahl(wert);
    }
    void operator()(double wert) {
        Zahl(TypDouble);
        Zahl(wert);
    }
    void operator()(bool wert) {
        Zahl(TypWahrheit);
        Zahl(static_cast<std::int16_t>(wert ? -1 : 0));
    }
    void operator()(const std::string& wert) {
        std::string bytes = NachCodepage(wert);
        if (bytes.size() > LaengsterText) bytes.resize(LaengsterText);
        Zahl(TypText);
        Zahl(static_cast<std::uint16_t>(bytes.size()));
        Bytes(bytes.data(), bytes.size());
    }
    void operator()(const Werteliste& liste) {
        Zahl(TypListe);
        Zahl(std::uint16_t{1});
        Zahl(static_cast<std::uint32_t>(liste.Elemente.size()));
        Zahl(liste.Untergrenze);
        for (const Wert& element : liste.Elemente) std::visit(*this, element.Inhalt);
    }

private:
    template <typename T>
    void Zahl(T wert) {
        Bytes(&wert, sizeof(T));
    }

    void Bytes(const void* quelle, std::size_t anzahl) {
        const auto* erstes = static_cast<const std::byte*>(quelle);
        ziel_.insert(ziel_.end(), erstes, erstes + anzahl);
    }

    std::vector<std::byte>& ziel_;
};

}  // namespace

Wert LiesWertbaum(std::span<const std::byte> bytes) {
    return Baumleser(bytes).LiesWert(0);
}

void SchreibeWertbaum(const Wert& wert, std::vector<std::byte>& ziel) {
    std::visit(Baumschreiber(ziel), wert.Inhalt);
}

}  // namespace zek
