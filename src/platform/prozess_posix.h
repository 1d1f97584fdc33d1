// Another process's end, and the start of a program that outlives this one.
#pragma once

#include <string>
#include <vector>

namespace zek {

// Watches a process that needn't be a child. A later process with the same id isn't taken for it.
class FremderProzess {
public:
    // `pid` below 1: none.
    explicit FremderProzess(long pid);
    ~FremderProzess();
    FremderProzess(const FremderProzess&) = delete;
    FremderProzess& operator=(const FremderProzess&) = delete;

    bool Laeuft() const;

private:
    long pid_;
    int griff_ = -1;  // pidfd
};

// Starts a program in a session of its own, as nobody's child, with no input and the usual signals. True once it really
// runs; false when it can't be executed.
bool StarteUnabhaengig(const std::string& programm, const std::vector<std::string>& argumente);

// What nobody takes any more (a closed pipe, a connection) is an error of the write, not the end of the process. Each
// program says so first.
void UeberhoereSigpipe();
// True when this process was started to outlive its terminal: it ignores SIGHUP from the start on (nohup), or has no
// terminal. To be asked before anything changes the handling of signals.
bool Abgehaengt();

// Full path of this process's executable, links resolved; its folder ends in "/".
std::string EigenesProgramm();
std::string EigenerOrdner();
// The folder of this program's files as an absolute path ending in "/": the environment variable ZEK_PROGRAMMORDNER,
// else EigenerOrdner.
std::string Programmordner();

// What the restart helper must know, put into the environment that it will inherit: this program (and its id) and its
// program folder. Called once at the start, before any other thread.
void HinterlegeFuerNeustart(const std::string& programmordner);

}  // namespace zek
