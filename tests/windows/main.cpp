#include <gmock/gmock.h>
#include <QApplication>

// One application for all tests of this program, without a display.
int main(int anzahl, char** argumente) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    Q_INIT_RESOURCE(zek);
    QApplication app(anzahl, argumente);
    QApplication::setQuitOnLastWindowClosed(false);
    testing::InitGoogleMock(&anzahl, argumente);
    return RUN_ALL_TESTS();
}
