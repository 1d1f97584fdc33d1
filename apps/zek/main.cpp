#include "platform/dateisystem_posix.h"
#include "platform/ordnersperre.h"
#include "platform/prozess_posix.h"
#include "platform/systemuhr_posix.h"
#include "werkzeug/werkzeug.h"

#include <unistd.h>
#include <array>
#include <cerrno>
#include <iostream>
#include <streambuf>

namespace {

// The exit status of a program that died of a pipe without a reader.
constexpr int Rohrbruch = 141;

// Standard output in blocks. Who reads no further has seen enough: the program ends at once and without a word.
class Ausgabe : public std::streambuf {
public:
    Ausgabe() { setp(puffer_.data(), puffer_.data() + puffer_.size()); }

protected:
    int_type overflow(int_type zeichen) override {
        if (sync() != 0) return traits_type::eof();
        if (traits_type::eq_int_type(zeichen, traits_type::eof())) return traits_type::not_eof(zeichen);
        return sputc(traits_type::to_char_type(zeichen));
    }
    int sync() override {
        for (const char* von = pbase(); von < pptr();) {
            const ssize_t anzahl = ::write(STDOUT_FILENO, von, static_cast<std::size_t>(pptr() - von));
            if (anzahl < 0 && errno == EPIPE) ::_exit(Rohrbruch);
            if (anzahl < 0 && errno == EINTR) continue;
            if (anzahl <= 0) return -1;
            von += anzahl;
        }
        setp(puffer_.data(), puffer_.data() + puffer_.size());
        return 0;
    }

private:
    std::array<char, 65536> puffer_;
};

}  // namespace

int main(int anzahl, char** argumente) {
    zek::UeberhoereSigpipe();
    zek::PosixDateisystem dateien;
    Ausgabe puffer;
    std::ostream ausgabe(&puffer);
    const auto gehalten = [](const std::string& ordner) { return zek::Ordnersperre(ordner).VonAnderemGehalten(); };
    return zek::Werkzeug({argumente + 1, argumente + anzahl}, ZEK_VERSION, {dateien, zek::PosixUhr().Jetzt(), gehalten},
                         ausgabe, std::cerr);
}
