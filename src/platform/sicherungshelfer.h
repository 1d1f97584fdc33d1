// A process of its own that brings files to the disk, so that nobody who records waits for it.
//
// It syncs file by file and waits for each, since a flood of writes at once would hold back whoever appends to one of
// them: on a disk of 40 writes a second an append beside a plain syncfs took up to 2 s, beside this below 1 ms
// (bench/langsame_platte). Files that haven't changed since the last round cost one look. Behind the last of them one
// commit of the file system makes sizes and places last, and only then is the mark written.
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

    // Process id; below 1 for none.
    int Prozess() const { return pid_; }

private:
    int leitung_ = -1;
    int pid_ = -1;
    bool laeuft_ = false;
};

}  // namespace zek
