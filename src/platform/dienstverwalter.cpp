#include "platform/dienstverwalter.h"

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>
#include <algorithm>
#include <cstddef>
#include <cstdlib>

namespace zek {
namespace {

std::string NimmAusUmgebung(const char* name) {
    const char* wert = std::getenv(name);
    std::string text = wert == nullptr ? "" : wert;
    ::unsetenv(name);
    return text;
}

}  // namespace

Dienstverwalter::Dienstverwalter() : adresse_(NimmAusUmgebung("NOTIFY_SOCKET")) {
    lebenszeichen_ = !NimmAusUmgebung("WATCHDOG_USEC").empty();
    ::unsetenv("WATCHDOG_PID");
    startetNeu_ = !NimmAusUmgebung("ZEK_DIENSTVERWALTER").empty();
    if (adresse_.empty() || adresse_.size() >= sizeof(sockaddr_un::sun_path)) return;
    if (adresse_.front() == '@') adresse_.front() = '\0';
    griff_ = ::socket(AF_UNIX, SOCK_DGRAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
}

Dienstverwalter::~Dienstverwalter() {
    if (griff_ >= 0) ::close(griff_);
}

void Dienstverwalter::Melde(std::string_view zustand) const {
    if (griff_ < 0 || (zustand == "WATCHDOG=1" && !lebenszeichen_)) return;
    sockaddr_un ziel{};
    ziel.sun_family = AF_UNIX;
    std::ranges::copy(adresse_, ziel.sun_path);
    const auto laenge = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + adresse_.size());
    (void)::sendto(griff_, zustand.data(), zustand.size(), MSG_NOSIGNAL | MSG_DONTWAIT,
                   reinterpret_cast<const sockaddr*>(&ziel), laenge);
}

}  // namespace zek
