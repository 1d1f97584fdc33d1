// frmTessaronInfo: name and version of the program, and the way to the system information.
#pragma once

#include "fensterwerk/dialogfenster.h"

namespace zek {

class frmTessaronInfo : public Dialogfenster {
public:
    explicit frmTessaronInfo(QWidget* eltern, const QString& version);

private:
    void StartSysInfo();
};

}  // namespace zek
