#include "platform/ordnersperre.h"

#include <fcntl.h>
#include <unistd.h>
#include <cerrno>

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

int Ordnersperre::Nimm() {
    if (griff_ >= 0) return 0;
    // O_NONBLOCK: a pipe in the place of the file must not hold the start up.
    const int griff = ::open(pfad_.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NONBLOCK, 0666);
    if (griff < 0) return -errno;
    struct flock bereich = Sperrbereich(F_WRLCK);
    if (::fcntl(griff, F_OFD_SETLK, &bereich) != 0) {
        const int fehler = errno == EACCES ? EAGAIN : errno;
        ::close(griff);
        return -fehler;
    }
    griff_ = griff;
    return 0;
}

bool Ordnersperre::VonAnderemGehalten() const {
    if (griff_ >= 0) return false;
    const int griff = ::open(pfad_.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
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
