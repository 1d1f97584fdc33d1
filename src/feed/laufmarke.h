// Guard against re-entry: marks a pass as running for as long as it lives.
#pragma once

namespace zek {

class Laufmarke {
public:
    explicit Laufmarke(bool& marke) : marke_(marke) { marke_ = true; }
    ~Laufmarke() { marke_ = false; }
    Laufmarke(const Laufmarke&) = delete;
    Laufmarke& operator=(const Laufmarke&) = delete;

private:
    bool& marke_;
};

}  // namespace zek
