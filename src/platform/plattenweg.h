// The way of one file to the disk. A helper process goes it, where there is one, while events run; otherwise, or when
// the helper dies on the way, this thread does.
#pragma once

#include "platform/dateisystem.h"
#include "platform/pumpe.h"

#include <string>

namespace zek {

class Plattenweg {
public:
    // Without a pump it is always this thread.
    Plattenweg(Dateisystem& dateien, Pumpe* pumpe) : dateien_(dateien), pumpe_(pumpe) {}
    ~Plattenweg() { Ende(); }
    Plattenweg(const Plattenweg&) = delete;
    Plattenweg& operator=(const Plattenweg&) = delete;

    // The file that is meant; before the first write that is to be made safe. The helper gets an opening of its own:
    // each opening is told once of a disk's error, and a lock ends with the recorder.
    void Beginne(const std::string& pfad);
    void Ende();
    // Whether Leere lets events run.
    bool IstNebenher() const { return zweites_ >= 0; }
    // 0 or -errno. `handle` is the caller's own one of that file.
    int Leere(Dateihandle handle);

private:
    Dateisystem& dateien_;
    Pumpe* pumpe_;
    Dateihandle zweites_ = KeinHandle;
};

}  // namespace zek
