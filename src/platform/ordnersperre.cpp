#include "platform/ordnersperre.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

namespace zek {

Ordnersperre::Ordnersperre(const std::string& ordner, const std::string& datei)
    : pfad_(ordner.empty() || ordner.back() == '/' ? ordner + datei : ordner + "/" + datei) {}

Ordnersperre::~Ordnersperre() {
    GibFrei();
}

bool Ordnersperre::Nimm() {
    if (griff_ >= 0) return true;
    const int griff = ::open(pfad_.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666);
    if (griff < 0) return false;
    if (::flock(griff, LOCK_EX | LOCK_NB) != 0) {
        ::close(griff);
        return false;
    }
    griff_ = griff;
    return true;
}

bool Ordnersperre::VonAnderemGehalten() const {
    if (griff_ >= 0) return false;
    const int griff = ::open(pfad_.c_str(), O_RDONLY | O_CLOEXEC);
    if (griff < 0) return false;
    // A shared lock is enough to see an exclusive one and disturbs other askers not at all.
    const bool frei = ::flock(griff, LOCK_SH | LOCK_NB) == 0;
    ::close(griff);
    return !frei;
}

void Ordnersperre::GibFrei() {
    if (griff_ < 0) return;
    ::close(griff_);
    griff_ = -1;
}

}  // namespace zek
