#include "platform/standardausgabe.h"

#include <poll.h>
#include <unistd.h>
#include <string>

namespace zek {
namespace {

// A pipe that is ready takes PIPE_BUF (4096) bytes at once.
constexpr std::size_t HoechsteLaenge = 4000;

}  // namespace

void Standardausgabe::Zeile(std::string_view text) {
    if (ausgelassen_ > 0) {
        if (!Schreibe("(" + std::to_string(ausgelassen_) + " Zeilen ausgelassen)\n")) {
            ++ausgelassen_;
            return;
        }
        ausgelassen_ = 0;
    }
    if (!Schreibe(std::string(text.substr(0, HoechsteLaenge)) + "\n")) ++ausgelassen_;
}

bool Standardausgabe::Schreibe(std::string_view text) const {
    pollfd frage{griff_, POLLOUT, 0};
    if (::poll(&frage, 1, 0) != 1 || (frage.revents & POLLOUT) == 0) return false;
    return ::write(griff_, text.data(), text.size()) > 0;
}

}  // namespace zek
