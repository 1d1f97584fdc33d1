// Help that can't be shown says so.
#include "fensterhilfen/fenstertest.h"
#include "fensterwerk/hilfe.h"
#include "hilfen/quellen.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

namespace zek {

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

const QString Quelle = QString::fromStdString(hilfen::Quellordner()) + "/docs/hilfe";

struct Hilfestellung : testing::Test {
    std::vector<std::string> meldungen;
    std::vector<std::string> gestartet;
    bool gelingt = true;
    const QTemporaryDir leer;

    void Oeffne(const QStringList& ordner, const std::string& seite) {
        const Handbuch handbuch(ordner, [this](const QString& datei, const std::function<void()>& gescheitert) {
            gestartet.push_back(datei.toStdString());
            if (!gelingt) gescheitert();
        });
        handbuch.Oeffne(seite, [this](const std::string& text) { meldungen.push_back(text); });
    }
};

TEST_F(Hilfestellung, APageIsHandedToTheBrowserWithoutAWord) {
    Oeffne({leer.path(), Quelle}, "monitor");
    EXPECT_THAT(gestartet, ElementsAre(QDir(Quelle).canonicalPath().toStdString() + "/monitor.html"));
    EXPECT_THAT(meldungen, IsEmpty());
}

TEST_F(Hilfestellung, WithoutAManualItSaysWhereItWasLookedFor) {
    Oeffne({leer.path() + "/hilfe"}, "monitor");
    EXPECT_THAT(gestartet, IsEmpty());
    EXPECT_THAT(meldungen, ElementsAre("Das Handbuch wurde nicht gefunden. Es gehört in den Ordner „" +
                                       leer.path().toStdString() + "/hilfe“."));
}

TEST_F(Hilfestellung, WithoutABrowserItSaysWhichFileToOpen) {
    gelingt = false;
    Oeffne({Quelle}, "monitor");
    EXPECT_THAT(meldungen,
                ElementsAre(testing::AllOf(HasSubstr("kein Programm gefunden"), HasSubstr("/monitor.html"))));
}

// The desktop's own way of opening a file, played by a script.
struct Anzeige : testing::Test {
    QTemporaryDir ordner;
    const QByteArray pfadVorher = qgetenv("PATH");
    bool gescheitert = false;

    void Skript(const QByteArray& inhalt) {
        QFile datei(ordner.filePath("xdg-open"));
        ASSERT_TRUE(datei.open(QIODevice::WriteOnly));
        datei.write("#!/bin/sh\n" + inhalt + "\n");
        datei.close();
        datei.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    }
    void Zeige(const QString& datei) {
        qputenv("PATH", ordner.path().toUtf8() + ":/usr/bin:/bin");
        ZeigeDatei(datei, [this] { gescheitert = true; });
    }
    ~Anzeige() override { qputenv("PATH", pfadVorher); }
};

TEST_F(Anzeige, AViewerThatTakesTheFileIsFine) {
    Skript("printf %s \"$1\" > " + ordner.filePath("gezeigt").toUtf8());
    Zeige("/tmp/Käse & Brot.html");
    QFile gezeigt(ordner.filePath("gezeigt"));
    ASSERT_TRUE(QTest::qWaitFor([&] { return gezeigt.size() > 0; }, 5000));
    QTest::qWait(100);
    ASSERT_TRUE(gezeigt.open(QIODevice::ReadOnly));
    EXPECT_EQ(QString::fromUtf8(gezeigt.readAll()), "/tmp/Käse & Brot.html");
    EXPECT_FALSE(gescheitert);
}

TEST_F(Anzeige, ADesktopWithoutAViewerIsToldOf) {
    Skript("exit 3");
    Zeige("/tmp/seite.html");
    EXPECT_TRUE(QTest::qWaitFor([&] { return gescheitert; }, 5000));
}

}  // namespace

}  // namespace zek
