#include "fensterwerk/anwendung.h"
#include "hilfen/fehlerwaechter.h"

#include <gmock/gmock.h>
#include <QApplication>

// One application for all tests of this program, without a display, on a machine that knows no German.
int main(int anzahl, char** argumente) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("LC_ALL", "C");
    qunsetenv("LANGUAGE");
    // The platform without a display complains about what it leaves out; that is not what is tested here.
    qputenv("QT_LOGGING_RULES", "qt.core.qobject.connect.warning=false");
    QApplication app(anzahl, argumente);
    zek::RichteAnwendungEin(app);
    testing::InitGoogleMock(&anzahl, argumente);
    zek::BestelleFehlerwaechter();
    return RUN_ALL_TESTS();
}
