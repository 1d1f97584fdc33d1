// The lock on a program folder: at most one recorder at a time works in it.
#pragma once

#include <string>

namespace zek {

// A write lock (open file description lock) on one file in the folder. The system drops it when the process ends in
// whatever way, so a crash leaves no stale lock; started programs don't inherit it. Two objects exclude each other
// inside one process too. Asking for it takes nothing, so it never disturbs somebody who is just taking it.
class Ordnersperre {
public:
    // Name of the recorder's own lock file.
    static constexpr const char* Recorderdatei = ".zek.lock";

    explicit Ordnersperre(const std::string& ordner, const std::string& datei = Recorderdatei);
    ~Ordnersperre();
    Ordnersperre(const Ordnersperre&) = delete;
    Ordnersperre& operator=(const Ordnersperre&) = delete;

    // Takes the lock: 0 when this object holds it (already), -EAGAIN when another does, else -errno: then the lock
    // can't be had at all, and nobody is kept out.
    [[nodiscard]] int Nimm();
    // True while another process or object holds it. Creates no file.
    bool VonAnderemGehalten() const;
    bool Gehalten() const { return griff_ >= 0; }
    const std::string& Pfad() const { return pfad_; }
    void GibFrei();

private:
    std::string pfad_;
    int griff_ = -1;
};

}  // namespace zek
