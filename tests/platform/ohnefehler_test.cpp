#include "platform/ohnefehler.h"
#include "hilfen/fehlerwaechter.h"

#include <gmock/gmock.h>
#include <gtest/gtest-spi.h>

#include <stdexcept>
#include <string>
#include <vector>

namespace zek {
namespace {

class Mitschrift final : public Fehlerhoerer {
public:
    Mitschrift() : vorher_(SetzeFehlerhoerer(this)) {}
    ~Mitschrift() override { SetzeFehlerhoerer(vorher_); }
    void Verschluckt(const char* stelle, const std::exception* fehler) noexcept override {
        Zeilen.push_back(std::string(stelle) + ": " + (fehler != nullptr ? fehler->what() : "no exception"));
    }
    std::vector<std::string> Zeilen;

private:
    Fehlerhoerer* vorher_;
};

TEST(OhneFehler, AStepThatRunsThroughIsTrueAndUnheard) {
    const Mitschrift mitschrift;
    bool lief = false;
    EXPECT_TRUE(OhneFehler("Schritt", [&] { lief = true; }));
    EXPECT_TRUE(lief);
    EXPECT_THAT(mitschrift.Zeilen, testing::IsEmpty());
}

TEST(OhneFehler, WhatAStepThrowsIsHeardWithTheNameOfItsPlace) {
    const Mitschrift mitschrift;
    EXPECT_FALSE(OhneFehler("Schritt", [] { throw std::runtime_error("kaputt"); }));
    EXPECT_FALSE(OhneFehler("Anderer", [] { throw 7; }));
    EXPECT_THAT(mitschrift.Zeilen, testing::ElementsAre("Schritt: kaputt", "Anderer: no exception"));
}

TEST(OhneFehler, WithoutAListenerAnErrorIsIgnored) {
    Fehlerhoerer* const vorher = SetzeFehlerhoerer(nullptr);
    EXPECT_FALSE(OhneFehler("Schritt", [] { throw std::runtime_error("kaputt"); }));
    SetzeFehlerhoerer(vorher);
}

TEST(OhneFehler, TheTestsThemselvesHearWhatTheyDidNotExpect) {
    ErwarteVerschluckte("Erwartet");
    OhneFehler("Erwartet", [] { throw std::runtime_error("x"); });
    EXPECT_NONFATAL_FAILURE(OhneFehler("Unerwartet", [] { throw std::runtime_error("x"); }), "Unerwartet");
}

}  // namespace
}  // namespace zek
