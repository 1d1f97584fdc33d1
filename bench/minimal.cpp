// The floor of bench_steckdose: the least that a program can do to bring the same ticks from the socket into the same
// files. It greets the server, reads blocks as they come, takes prices and sizes out of the frames, and appends each
// size with open, fstat, lseek, write and close. No events, no rules, no looking after anything; all names are made
// beforehand.
//
// Started by bench_steckdose: ZEK_PROGRAMMORDNER is its folder, ZEK_BENCH_TITEL the number of titles.
#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <string>
#include <vector>

namespace {

struct Satz {
    double Datum;
    float Kurs, Volume;
};

// One kind of a title: its file and its latest price.
struct Reihe {
    std::string Pfad;
    float Kurs = 0;
};

double Jetzt(long versatz) {
    timespec zeit;
    clock_gettime(CLOCK_REALTIME, &zeit);
    return 25569 + (static_cast<double>(zeit.tv_sec + versatz) + static_cast<double>(zeit.tv_nsec) / 1e9) / 86400;
}

void HaengeAn(const Reihe& reihe, float groesse, long versatz) {
    int datei = open(reihe.Pfad.c_str(), O_RDWR | O_CLOEXEC);
    if (datei < 0) {
        static const char kopf[856] = {};
        datei = open(reihe.Pfad.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666);
        if (datei < 0 || write(datei, kopf, sizeof kopf) != sizeof kopf) std::abort();
    }
    struct stat zustand;
    fstat(datei, &zustand);
    lseek(datei, zustand.st_size, SEEK_SET);
    const Satz satz{Jetzt(versatz), reihe.Kurs, groesse};
    if (write(datei, &satz, sizeof satz) != sizeof satz) std::abort();
    close(datei);
}

int Port(const std::string& ordner) {
    int port = 0;
    std::FILE* datei = std::fopen((ordner + "/ZEK_Para.ini").c_str(), "r");
    char zeile[80];
    while (datei && std::fgets(zeile, sizeof zeile, datei))
        if (std::strncmp(zeile, "IBPort=", 7) == 0) std::from_chars(zeile + 7, zeile + std::strlen(zeile), port);
    if (datei) std::fclose(datei);
    return port;
}

int Verbinde(int port) {
    const int griff = socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in adresse{};
    adresse.sin_family = AF_INET;
    adresse.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    adresse.sin_port = htons(static_cast<unsigned short>(port));
    if (connect(griff, reinterpret_cast<sockaddr*>(&adresse), sizeof adresse) != 0) std::abort();
    const int an = 1;
    setsockopt(griff, IPPROTO_TCP, TCP_NODELAY, &an, sizeof an);
    if (write(griff, "API\0\0\0\0\x09v100..187", 17) != 17) std::abort();
    char antwort[256];
    if (read(griff, antwort, sizeof antwort) <= 0) std::abort();
    if (write(griff,
              "\0\0\0\x08"
              "71\0"
              "2\0"
              "1\0",
              12) != 12)
        std::abort();
    return griff;
}

// The next field of a frame as a number; 0 for what is none.
double Feld(const char*& stelle, const char* ende) {
    const char* schluss = static_cast<const char*>(std::memchr(stelle, '\0', static_cast<std::size_t>(ende - stelle)));
    if (!schluss) schluss = ende;
    double wert = 0;
    std::from_chars(stelle, schluss, wert);
    stelle = schluss < ende ? schluss + 1 : ende;
    return wert;
}

void NimmRahmen(const char* stelle, const char* ende, std::vector<Reihe>& reihen, long versatz) {
    const auto nummer = static_cast<int>(Feld(stelle, ende));
    if (nummer != 1 && nummer != 2) return;
    Feld(stelle, ende);  // version
    const auto id = static_cast<std::size_t>(Feld(stelle, ende));
    const auto typ = static_cast<int>(Feld(stelle, ende));
    const bool geld = typ <= 1;
    if (id < 1 || 2 * id > reihen.size() || typ > 3) return;
    Reihe& reihe = reihen[2 * id - (geld ? 2 : 1)];
    const double wert = Feld(stelle, ende);
    if (nummer == 1) {
        reihe.Kurs = static_cast<float>(wert);
        HaengeAn(reihe, static_cast<float>(Feld(stelle, ende)), versatz);
    } else {
        HaengeAn(reihe, static_cast<float>(wert), versatz);
    }
}

}  // namespace

int main() {
    const char* ordner = std::getenv("ZEK_PROGRAMMORDNER");
    const char* anzahltext = std::getenv("ZEK_BENCH_TITEL");
    if (!ordner || !anzahltext) return 2;
    std::size_t anzahl = 0;
    std::from_chars(anzahltext, anzahltext + std::strlen(anzahltext), anzahl);
    const std::string daten = std::string(ordner) + "/RealtimeData";
    mkdir(daten.c_str(), 0777);
    mkdir((daten + "/Aktien").c_str(), 0777);
    std::vector<Reihe> reihen;
    for (std::size_t id = 1; id <= anzahl; ++id)
        for (const char* zusatz : {"-BID.ZEK", "-ASK.ZEK"})
            reihen.push_back({daten + "/Aktien/T" + std::to_string(id) + "@SMART_STK_USD" + zusatz, 0});
    tm hier;
    const time_t jetzt = time(nullptr);
    localtime_r(&jetzt, &hier);

    const int griff = Verbinde(Port(ordner));
    std::vector<char> puffer(262144);
    std::size_t gefuellt = 0;
    for (;;) {
        const ssize_t gelesen = read(griff, puffer.data() + gefuellt, puffer.size() - gefuellt);
        if (gelesen <= 0) return 0;
        gefuellt += static_cast<std::size_t>(gelesen);
        std::size_t stelle = 0;
        while (gefuellt - stelle >= 4) {
            unsigned laenge = 0;
            std::memcpy(&laenge, puffer.data() + stelle, 4);
            laenge = ntohl(laenge);
            if (gefuellt - stelle - 4 < laenge) break;
            const char* anfang = puffer.data() + stelle + 4;
            NimmRahmen(anfang, anfang + laenge, reihen, hier.tm_gmtoff);
            stelle += 4 + laenge;
        }
        std::memmove(puffer.data(), puffer.data() + stelle, gefuellt - stelle);
        gefuellt -= stelle;
    }
}
