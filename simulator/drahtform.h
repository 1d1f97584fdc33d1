// Frames and fields of the socket protocol, written out and taken apart: a frame is a 4-byte big-endian length and so
// many bytes of payload; a payload is fields, each ended by a NUL.
#pragma once

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zek::simulator {

inline constexpr std::size_t Kopflaenge = 4;
// The longest payload that is taken from a client. Requests are short.
inline constexpr std::uint32_t LaengsteAnfrage = 0xFFFFFF;

// Appends one frame to a text; the frame is complete when the object goes.
class Nachricht {
public:
    explicit Nachricht(std::string& ziel) : ziel_(ziel), beginn_(ziel.size()) { ziel_.append(Kopflaenge, '\0'); }
    ~Nachricht();
    Nachricht(const Nachricht&) = delete;
    Nachricht& operator=(const Nachricht&) = delete;

    template <typename... Werte>
    Nachricht& operator()(const Werte&... werte) {
        (Feld(werte), ...);
        return *this;
    }

private:
    template <std::integral T>
    void Feld(T wert) {
        Ganz(static_cast<std::int64_t>(wert));
    }
    void Feld(double wert);
    void Feld(std::string_view text);
    void Feld(const std::string& text) { Feld(std::string_view(text)); }
    void Feld(const char* text) { Feld(std::string_view(text)); }
    void Ganz(std::int64_t wert);

    std::string& ziel_;
    std::size_t beginn_;
};

// Decimal text with a point, never with an exponent.
std::string Dezimal(double wert);

// Thrown when a field isn't there or isn't the number that belongs there.
struct Lesefehler {
    std::string Text;  // the field's text
};

// The fields of a request, read from front to back.
class Felder {
public:
    explicit Felder(std::string_view inhalt);

    std::string_view Text();
    std::int64_t Ganzzahl();  // empty counts as 0
    double Zahl();            // empty counts as 0
    bool Wahr();              // 1 or true
    void Ueberspringe(int anzahl);
    std::size_t Uebrig() const { return felder_.size() - stelle_; }
    std::vector<std::string> Alle() const { return {felder_.begin(), felder_.end()}; }

private:
    std::vector<std::string_view> felder_;
    std::size_t stelle_ = 0;
};

// "v100..187", also "v100" and with options behind a blank.
struct Versionsspanne {
    int Von = 0;
    int Bis = 0;
};
std::optional<Versionsspanne> LiesVersionen(std::string_view text);

// UTF-8 with every non-ASCII character as \uXXXX (two of them above U+FFFF).
std::string MitFluchtfolgen(std::string_view utf8);

// A payload as one line: NULs as "|", other control characters as "?".
std::string AlsZeile(std::string_view inhalt);

}  // namespace zek::simulator
