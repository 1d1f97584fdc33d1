// Whether a window has an entry in the task bar.
#pragma once

class QWidget;

namespace zek {

// Where the desktop knows the wish (X11), takes the entry away or gives it back. Elsewhere nothing happens.
void TaskleisteneintragSetzen(QWidget& fenster, bool an);

}  // namespace zek
