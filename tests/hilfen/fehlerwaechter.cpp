#include "hilfen/fehlerwaechter.h"

#include "platform/ohnefehler.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

namespace zek {
namespace {

class Fehlerwaechter final : public Fehlerhoerer, public testing::EmptyTestEventListener {
public:
    void Verschluckt(const char* stelle, const std::exception* fehler) noexcept override {
        if (gekommen_.insert(stelle).second && !erwartet_.contains(stelle) && !erlaubt_.contains(stelle))
            ADD_FAILURE() << "swallowed at \"" << stelle << "\": " << (fehler != nullptr ? fehler->what() : "?");
    }

    void OnTestStart(const testing::TestInfo&) override {
        erwartet_.clear();
        erlaubt_.clear();
        gekommen_.clear();
        SetzeFehlerhoerer(this);
    }

    void OnTestEnd(const testing::TestInfo& test) override {
        SetzeFehlerhoerer(nullptr);
        if (test.result()->Skipped()) return;
        for (const std::string& stelle : erwartet_)
            if (!gekommen_.contains(stelle)) ADD_FAILURE() << "nothing was swallowed at \"" << stelle << '"';
    }

    void Erwarte(const char* stelle) { erwartet_.insert(stelle); }
    void Erlaube(const char* stelle) { erlaubt_.insert(stelle); }

private:
    std::set<std::string> erwartet_;
    std::set<std::string> erlaubt_;
    std::set<std::string> gekommen_;
};

Fehlerwaechter* Waechter = nullptr;

}  // namespace

void BestelleFehlerwaechter() {
    Waechter = new Fehlerwaechter;  // the test framework owns it from here on
    testing::UnitTest::GetInstance()->listeners().Append(Waechter);
}

void ErwarteVerschluckte(const char* stelle) {
    Waechter->Erwarte(stelle);
}

void ErlaubeVerschluckte(const char* stelle) {
    Waechter->Erlaube(stelle);
}

}  // namespace zek
