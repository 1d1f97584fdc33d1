// A flag that is up for as long as something goes on: a pass that must not be entered again, an open window.
#pragma once

#include <utility>

namespace zek {

// Puts the flag back as it was: inside another mark of the same flag it stays up.
class Laufmarke {
public:
    explicit Laufmarke(bool& marke) : marke_(marke), vorher_(std::exchange(marke, true)) {}
    ~Laufmarke() { marke_ = vorher_; }
    Laufmarke(const Laufmarke&) = delete;
    Laufmarke& operator=(const Laufmarke&) = delete;

private:
    bool& marke_;
    bool vorher_;
};

}  // namespace zek
