#include "platform/qt/signalempfang.h"

#include "platform/qt/melder.h"

#include <fcntl.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <stdexcept>

namespace zek {

namespace {

// A signal handler gets nothing but the number, so the pipe's end has to stand where it can be found.
std::atomic<int> schreibende{-1};
static_assert(std::atomic<int>::is_always_lock_free);

extern "C" void ZekSignal(int signal) {
    const int vorher = errno;
    const auto nummer = static_cast<unsigned char>(signal);
    (void)!::write(schreibende.load(), &nummer, 1);
    errno = vorher;
}

}  // namespace

Signalempfang::Signalempfang(std::function<void(int)> beiSignal, BeiAuflegen beiAuflegen)
    : beiSignal_(std::move(beiSignal)) {
    if (schreibende.load() >= 0) throw std::logic_error("signals are received already");
    if (::pipe2(rohr_.data(), O_CLOEXEC | O_NONBLOCK) != 0) throw std::runtime_error("no pipe for signals");
    schreibende = rohr_[1];
    melder_ = std::make_unique<Melder>(rohr_[0], QSocketNotifier::Read, [this] { Lies(); });
    struct sigaction neu {};
    neu.sa_handler = ZekSignal;
    neu.sa_flags = SA_RESTART;
    ::sigaction(SIGTERM, &neu, &vorherTerm_);
    ::sigaction(SIGINT, &neu, &vorherInt_);
    ::sigaction(SIGHUP, nullptr, &vorherHup_);
    if (beiAuflegen == BeiAuflegen::Weiterlaufen || vorherHup_.sa_handler == SIG_IGN) neu.sa_handler = SIG_IGN;
    ::sigaction(SIGHUP, &neu, nullptr);
}

Signalempfang::~Signalempfang() {
    ::sigaction(SIGTERM, &vorherTerm_, nullptr);
    ::sigaction(SIGINT, &vorherInt_, nullptr);
    ::sigaction(SIGHUP, &vorherHup_, nullptr);
    schreibende = -1;
    melder_.reset();
    ::close(rohr_[0]);
    ::close(rohr_[1]);
}

// One signal per event: the callback may end this object.
void Signalempfang::Lies() {
    unsigned char nummer = 0;
    if (::read(rohr_[0], &nummer, 1) != 1) return;
    const auto beiSignal = beiSignal_;
    beiSignal(nummer);
}

}  // namespace zek
