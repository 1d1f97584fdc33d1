#include <gmock/gmock.h>
#include <QApplication>

// One application for all tests of this program, without a display.
int main(int anzahl, char** argumente) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    // The platform without a display complains about what it leaves out; that is not what is tested here.
    qputenv("QT_LOGGING_RULES", "qt.core.qobject.connect.warning=false");
    Q_INIT_RESOURCE(zek);
    QApplication app(anzahl, argumente);
    QApplication::setQuitOnLastWindowClosed(false);
    testing::InitGoogleMock(&anzahl, argumente);
    return RUN_ALL_TESTS();
}
