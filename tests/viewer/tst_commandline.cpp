#include "batch/commandline.h"

#include <QTest>

using Viewer::CommandLine;

class TestCommandLine : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void readsEverything();
    void size_data();
    void size();
    void extent_data();
    void extent();
    void refuses_data();
    void refuses();
    void answersHelpAndVersion();
    void knowsBatchWork_data();
    void knowsBatchWork();
};

static CommandLine parse(const QString &line)
{
    return CommandLine::parse(QStringList{QStringLiteral("qdviewer")} +
                              line.split(QLatin1Char(' '), Qt::SkipEmptyParts));
}

void TestCommandLine::readsEverything()
{
    const CommandLine line = parse(QStringLiteral("--screenshot a.png b.jp2 --size 64x48 --extent -10,20,30.5,-4e1 "
                                                  "--settings s.ini --window w.png --describe xrvp://h/p.jp2"));
    QCOMPARE(line.outcome, CommandLine::Outcome::Run);
    QCOMPARE(line.sources, (QStringList{QStringLiteral("b.jp2"), QStringLiteral("xrvp://h/p.jp2")}));
    QCOMPARE(line.screenshotFile, QStringLiteral("a.png"));
    QCOMPARE(line.windowFile, QStringLiteral("w.png"));
    QCOMPARE(line.settingsFile, QStringLiteral("s.ini"));
    QCOMPARE(line.pictureSize, QSize(64, 48));
    QCOMPARE(line.worldRect, QRectF(-10, 20, 40.5, -60));
    QVERIFY(line.describe);
}

void TestCommandLine::size_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QSize>("size");
    QTest::newRow("ordinary") << "1024x768" << QSize(1024, 768);
    QTest::newRow("capital X") << "10X20" << QSize(10, 20);
    QTest::newRow("smallest") << "1x1" << QSize(1, 1);
    QTest::newRow("largest") << "32767x32767" << QSize(32767, 32767);
    QTest::newRow("too large") << "32768x1" << QSize();
    QTest::newRow("more than an int holds") << "99999999999x1" << QSize();
    QTest::newRow("zero") << "0x5" << QSize();
    QTest::newRow("negative") << "-5x5" << QSize();
    QTest::newRow("one number") << "1024" << QSize();
    QTest::newRow("three numbers") << "1x2x3" << QSize();
    QTest::newRow("blank") << "10 x20" << QSize();
    QTest::newRow("line end") << "10x20\n" << QSize();
    QTest::newRow("fraction") << "1.5x2" << QSize();
}

void TestCommandLine::size()
{
    QFETCH(QString, text);
    QTEST(CommandLine::parseSize(text), "size");
}

void TestCommandLine::extent_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QRectF>("worldRect");
    QTest::newRow("ordinary") << "299940,4100000,409740,3990200" << QRectF(299940, 4100000, 109800, -109800);
    QTest::newRow("blanks around numbers") << "0, 1, 1, 0" << QRectF(0, 1, 1, -1);
    QTest::newRow("south up") << "0,0,1,1" << QRectF();
    QTest::newRow("right of left") << "2,1,1,0" << QRectF();
    QTest::newRow("no height") << "0,1,1,1" << QRectF();
    QTest::newRow("infinite") << "0,inf,1,0" << QRectF();
    QTest::newRow("not a number") << "nan,1,1,0" << QRectF();
    QTest::newRow("three numbers") << "0,1,1" << QRectF();
    QTest::newRow("empty number") << "0,1,,0" << QRectF();
}

void TestCommandLine::extent()
{
    QFETCH(QString, text);
    QTEST(CommandLine::parseWorldRect(text), "worldRect");
}

void TestCommandLine::refuses_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<QString>("named");
    QTest::newRow("unknown option") << "--colour f"
                                    << "colour";
    QTest::newRow("bad size") << "--screenshot a.png --size 10 f"
                              << "10";
    QTest::newRow("bad extent") << "--screenshot a.png --extent 1,2,3 f"
                                << "1,2,3";
    QTest::newRow("no value") << "f --screenshot"
                              << "screenshot";
    QTest::newRow("empty value") << "f --window="
                                 << "window";
    QTest::newRow("no format of pictures") << "--screenshot a.docx f"
                                           << "docx";
    QTest::newRow("nothing to describe") << "--describe"
                                         << "file";
    QTest::newRow("nothing to picture") << "--screenshot a.png"
                                        << "file";
}

void TestCommandLine::refuses()
{
    QFETCH(QString, line);
    QFETCH(QString, named);
    const CommandLine result = parse(line);
    QCOMPARE(result.outcome, CommandLine::Outcome::Error);
    QVERIFY2(result.text.contains(named), qPrintable(result.text));
    QVERIFY(!result.text.contains(QLatin1Char('\n')));
}

void TestCommandLine::answersHelpAndVersion()
{
    const CommandLine help = parse(QStringLiteral("--help --size nonsense"));
    QCOMPARE(help.outcome, CommandLine::Outcome::Help);
    for (const char *option : {"--screenshot", "--size", "--extent", "--describe", "--settings", "--window"})
        QVERIFY2(help.text.contains(QLatin1String(option)), option);
    QCOMPARE(parse(QStringLiteral("--version")).outcome, CommandLine::Outcome::Version);
}

void TestCommandLine::knowsBatchWork_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<bool>("isBatch");
    QTest::newRow("nothing") << "" << false;
    QTest::newRow("sources") << "f --settings s --size 3x3" << false;
    QTest::newRow("screenshot") << "f --screenshot p" << true;
    QTest::newRow("empty window") << "--window p" << true;
    QTest::newRow("describe") << "f --describe" << true;
}

void TestCommandLine::knowsBatchWork()
{
    QFETCH(QString, line);
    QTEST(parse(line).isBatch(), "isBatch");
}

QTEST_MAIN(TestCommandLine)
#include "tst_commandline.moc"
