// The manual: every page that a window asks for is there, and every link and picture in it leads somewhere.
#include "fensterwerk/hilfe.h"
#include "fensterhilfen/fenstertest.h"
#include "fensterwerk/dialogbasis.h"
#include "hilfen/quellen.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QTemporaryDir>

namespace zek {

namespace {

using testing::IsEmpty;

const QString Handbuch = QString::fromStdString(hilfen::Quellordner()) + "/docs/hilfe";

QStringList Seiten() {
    return QDir(Handbuch).entryList({"*.html"});
}

QString Text(const QString& datei) {
    QFile quelle(Handbuch + "/" + datei);
    EXPECT_TRUE(quelle.open(QIODevice::ReadOnly)) << datei.toStdString();
    return QString::fromUtf8(quelle.readAll());
}

// The values of an attribute, in the order of the page.
QStringList Werte(const QString& text, const QString& attribut) {
    QStringList werte;
    for (auto treffer = QRegularExpression("\\b" + attribut + "=\"([^\"]*)\"").globalMatch(text); treffer.hasNext();)
        werte += treffer.next().captured(1);
    return werte;
}

// What of a link leads nowhere, or an empty text.
QString Fehler(const QString& seite, const QString& ziel) {
    if (ziel.contains("://")) return seite + " leaves the manual: " + ziel;
    const QString datei = ziel.section('#', 0, 0).isEmpty() ? seite : ziel.section('#', 0, 0);
    if (!QFile::exists(Handbuch + "/" + datei)) return seite + ": no file " + datei;
    const QString stelle = ziel.section('#', 1);
    if (stelle.isEmpty() || Werte(Text(datei), "id").contains(stelle)) return {};
    return seite + ": no place " + stelle + " in " + datei;
}

std::vector<std::string> FalscheZiele(const QString& attribut) {
    std::vector<std::string> falsche;
    for (const QString& seite : Seiten())
        for (const QString& ziel : Werte(Text(seite), attribut))
            if (const QString fehler = Fehler(seite, ziel); !fehler.isEmpty()) falsche.push_back(fehler.toStdString());
    return falsche;
}

TEST(Handbuch, EveryPageThatAWindowAsksForIsThere) {
    for (const char* seite : hilfeseite::Alle)
        EXPECT_TRUE(Hilfeseite({Handbuch}, seite).endsWith("/" + QString(seite) + ".html")) << seite;
}

TEST(Handbuch, AMissingPageLeadsToTheContents) {
    EXPECT_TRUE(Hilfeseite({"/nowhere", Handbuch}, "no_such_page").endsWith("/index.html"));
    const QTemporaryDir leer;
    EXPECT_TRUE(Hilfeseite({leer.path()}, "index").isEmpty());
}

TEST(Handbuch, EveryLinkLeadsToAPageAndAPlaceInIt) {
    EXPECT_GE(Seiten().size(), 15);
    EXPECT_THAT(FalscheZiele("href"), IsEmpty());
}

TEST(Handbuch, EveryPictureIsThere) {
    EXPECT_THAT(FalscheZiele("src"), IsEmpty());
}

TEST(Handbuch, EveryPictureSaysWhatItShows) {
    static const QRegularExpression ohneText("<img(?![^>]*\\balt=\"[^\"]+\")[^>]*>");
    for (const QString& seite : Seiten()) EXPECT_FALSE(Text(seite).contains(ohneText)) << seite.toStdString();
}

TEST(Handbuch, QuotesAreGerman) {
    static const QRegularExpression markup("<(code|pre)\\b.*?</\\1>|<[^>]*>",
                                           QRegularExpression::DotMatchesEverythingOption);
    for (const QString& seite : Seiten()) {
        QString text = Text(seite);
        text.remove(markup);
        for (const QString& zeile : text.split('\n'))
            EXPECT_FALSE(zeile.contains('"') || zeile.contains("&quot;"))
                << seite.toStdString() << ": " << zeile.toStdString();
        EXPECT_EQ(text.count(QChar(0x201E)), text.count(QChar(0x201C))) << seite.toStdString();
    }
}

TEST(Handbuch, EveryPageIsInTheContentsAndLeadsBackThere) {
    const QStringList inhalt = Werte(Text("index.html"), "href");
    for (const QString& seite : Seiten()) {
        if (seite == "index.html") continue;
        EXPECT_TRUE(inhalt.contains(seite)) << seite.toStdString();
        EXPECT_TRUE(Werte(Text(seite), "href").contains("index.html")) << seite.toStdString();
    }
}

TEST(Handbuch, F1OpensThePageOfAWindowWithoutAHelpButton) {
    std::vector<std::string> seiten;
    QDialog fenster;
    HilfeBeiF1(
        fenster, [&](const std::string& seite) { seiten.push_back(seite); }, hilfeseite::Datenpflege);
    fenster.show();
    fenster.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&fenster));
    QTest::keyClick(&fenster, Qt::Key_F1);
    EXPECT_THAT(seiten, testing::ElementsAre("datenpflege"));
}

}  // namespace

}  // namespace zek
