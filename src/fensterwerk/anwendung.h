// General manners of a program with windows.
#pragma once

class QApplication;

namespace zek {

// Name, icon, language and style; the program doesn't end with its last window. Before the first window is made. All of
// it comes from the program itself: texts of Qt are German whatever the machine has or speaks.
void RichteAnwendungEin(QApplication& programm);

}  // namespace zek
