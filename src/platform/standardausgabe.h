// Lines for whoever looks at the standard output of a program that must not wait for them.
#pragma once

#include <string_view>

namespace zek {

class Standardausgabe {
public:
    explicit Standardausgabe(int griff = 1) : griff_(griff) {}

    // One line, cut at 4000 bytes. Where it can't be written at once (a pipe that nobody reads, a terminal that is
    // held) it is left out; the next one that goes out says how many were.
    void Zeile(std::string_view text);

private:
    bool Schreibe(std::string_view text) const;

    int griff_;
    long long ausgelassen_ = 0;
};

}  // namespace zek
