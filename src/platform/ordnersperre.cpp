#include "platform/ordnersperre.h"

#include <fcntl.h>
#include <unistd.h>

namespace zek {
namespace {

// The whole file; process id 0, as this kind of lock asks for.
struct flock Sperrbereich(short art) {
    struct flock bereich {};
    bereich.l_type = art;
    bereich.l_whence = SEEK_SET;
    return bereich;
}

}  // namespace

Ordnersperre::Ordnersperre(const std::string& ordner, const std::string& datei)
    : pfad_(ordner.empty() || ordner.back() == '/' ? ordner + datei : ordner + "/" + datei) {}

Ordnersperre::~Ordnersperre() {
    GibFrei();
}

bool Ordnersperre::Nimm() {
    if (griff_ >= 0) return true;
    const int griff = ::open(pfad_.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666);
    if (griff < 0) return false;
    struct flock bereich = Sperrbereich(F_WRLCK);
    if (::fcntl(griff, F_OFD_SETLK, &bereich) != 0) {
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
    struct flock bereich = Sperrbereich(F_RDLCK);
    const bool gefragt = ::fcntl(griff, F_OFD_GETLK, &bereich) == 0;
    ::close(griff);
    return gefragt && bereich.l_type != F_UNLCK;
}

void Ordnersperre::GibFrei() {
    if (griff_ < 0) return;
    ::close(griff_);
    griff_ = -1;
}

}  // namespace zek
