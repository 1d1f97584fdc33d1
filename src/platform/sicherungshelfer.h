// A process of its own that brings files to the disk, so that nobody who records waits for it.
//
// It syncs file by file and waits for each, since a flood of writes at once would hold back whoever appends to one of
// them: on a disk of 40 writes a second an append beside a plain syncfs took up to 2 s, beside this below 1 ms
// (bench/langsame_platte). Files that haven't changed since the last round cost one look. Behind the last of them one
// commit of the file system makes sizes and places last, and only then is the mark written.
//
// Between two such rounds it syncs single files for whoever has to know when one is safe, as a merge does. It does one
// thing after the other. A round that is asked for while a single file is under way waits until its asker has taken
// notice of that file; the next single file waits for the round. So neither starves, and no round begins between the
// sync that a merge has waited for and what the merge does then.
#pragma once

#include <optional>
#include <string>

namespace zek {

class Sicherungshelfer {
public:
    // Starts the process; done first thing in a program, before any other thread, so that the copy stays small. It ends
    // when this object or its process does.
    Sicherungshelfer();
    ~Sicherungshelfer();
    Sicherungshelfer(const Sicherungshelfer&) = delete;
    Sicherungshelfer& operator=(const Sicherungshelfer&) = delete;

    // As Dateisystem::BeginneSicherung and Dateisystem::Sicherungsergebnis.
    int Beginne(const std::string& ordner, const std::string& marke, const std::string& text);
    std::optional<int> Ergebnis();
    // As Dateisystem::BeginneLeeren and Dateisystem::Leerergebnis.
    int BeginneLeeren(int handle);
    std::optional<int> Leerergebnis();
    // As far as is known.
    bool Lebt() const { return leitung_ >= 0 && !abgerissen_; }

    // Process id; below 1 for none.
    int Prozess() const { return pid_; }

private:
    // An order until its result has been taken.
    struct Auftrag {
        bool Offen = false;
        std::optional<int> Ergebnis{};
        bool Laeuft() const { return Offen && !Ergebnis; }
        std::optional<int> Nimm();
    };

    int Sende(const std::string& auftrag, int handle);
    void SendeWartende();
    void Empfange();

    int leitung_ = -1;
    int pid_ = -1;
    bool abgerissen_ = false;
    Auftrag runde_, leeren_;
    std::optional<std::string> wartende_{};  // a round that isn't sent yet
};

}  // namespace zek
