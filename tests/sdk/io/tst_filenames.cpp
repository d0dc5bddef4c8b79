#include "data/files.h"

#include "base/utf8.h"
#include "io/filenames.h"

#include <xrv60/plkstring.h>

#include <QtTest>

namespace {

/// What a caller makes of a UTF-8 name when it widens it byte by byte.
std::wstring widened(const std::string &bytes)
{
    return QString::fromLatin1(bytes.c_str()).toStdWString();
}

} // namespace

class TestFileNames : public QObject
{
    Q_OBJECT

private slots:
    void namesSurviveTheirBytes_data();
    void namesSurviveTheirBytes();
    void plainReadingGoesFirst();
    void addresses();
    void barEndsTheName();
    void wideAndNarrow_data();
    void wideAndNarrow();
    void invalidUtf8_data();
    void invalidUtf8();
};

void TestFileNames::namesSurviveTheirBytes_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("plain") << "plain.jp2";
    QTest::newRow("beyond the basic plane") << QString::fromUtf8("\U0001F5FA map.jp2");
    QTest::newRow("Latin-1 and beyond") << QString::fromUtf8("Übersicht 東京.jp2");
    QTest::newRow("Latin-1 only") << QString::fromUtf8("Übersicht.jp2");
    QTest::newRow("with a tail") << QString::fromUtf8("Übersicht.jp2|extra");
}

void TestFileNames::namesSurviveTheirBytes()
{
    QFETCH(QString, name);
    const FileFolder folder;
    folder.write(name.section(QLatin1Char('|'), 0, 0).toStdString(), QByteArray());
    const std::string utf8 = folder.path(name.toStdString());
    const QString path = QString::fromStdString(utf8);
    QCOMPARE(xrv::resolveName(path.toStdWString().c_str()), utf8);
    QCOMPARE(xrv::resolveName(widened(utf8).c_str()), utf8);
}

void TestFileNames::plainReadingGoesFirst()
{
    const FileFolder folder;
    // The second one is called what the bytes of the first one's name look like.
    const QString real = QString::fromStdString(folder.write("é.jp2", QByteArray()));
    const QString garbled = QString::fromStdString(folder.write("Ã©.jp2", QByteArray()));
    QCOMPARE(xrv::resolveName(garbled.toStdWString().c_str()), garbled.toStdString());
    QVERIFY(QFile::remove(garbled));
    QCOMPARE(xrv::resolveName(garbled.toStdWString().c_str()), real.toStdString());
    QVERIFY(QFile::remove(real));
    QCOMPARE(xrv::resolveName(garbled.toStdWString().c_str()), garbled.toStdString());
    QCOMPARE(xrv::resolveName(nullptr), std::string());
}

void TestFileNames::addresses()
{
    const std::string address = "xrvps://server/\xC3\x9C.jp2";
    QCOMPARE(xrv::resolveName(widened(address).c_str()), address);
    QVERIFY(xrv::isStreamAddress("XRVP://server/a"));
    QVERIFY(!xrv::isStreamAddress("xrvp:/server/a"));
    QVERIFY(!xrv::isStreamAddress("xrvp.jp2"));
}

void TestFileNames::barEndsTheName()
{
    const FileFolder folder;
    const std::string plain = folder.path("a.jp2");
    QCOMPARE(xrv::localPath(plain + "|extra"), plain);
    QCOMPARE(xrv::localPath("|extra"), std::string("|extra"));
#ifndef Q_OS_WIN
    folder.write("a.jp2|extra", QByteArray());
    QCOMPARE(xrv::localPath(plain + "|extra"), plain + "|extra");
#endif
}

void TestFileNames::wideAndNarrow_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("empty") << QString();
    QTest::newRow("one, two, three and four bytes") << QString::fromUtf8("aé東\U0001F5FA");
    QTest::newRow("limits") << QString::fromUtf8("\u007F\u0080\u07FF\u0800\uD7FF\uE000\uFFFD\U00010000\U0010FFFF");
}

void TestFileNames::wideAndNarrow()
{
    QFETCH(QString, text);
    QCOMPARE(PLK::CString(text.toStdWString().c_str()).Utf8(), text.toUtf8().constData());
    QCOMPARE(QString::fromStdWString(PLK::CString(text.toUtf8().constData()).Wide()), text);
    QVERIFY(xrv::isValidUtf8(text.toStdString()));
}

void TestFileNames::invalidUtf8_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("tail alone") << QByteArray("\x80");
    QTest::newRow("lead at the end") << QByteArray("a\xC3");
    QTest::newRow("lead without tail") << QByteArray("\xE6\x9D"
                                                     "a");
    QTest::newRow("overlong slash") << QByteArray("\xC0\xAF");
    QTest::newRow("overlong in three") << QByteArray("\xE0\x80\xAF");
    QTest::newRow("surrogate") << QByteArray("\xED\xA0\x80");
    QTest::newRow("past the last character") << QByteArray("\xF4\x90\x80\x80");
    QTest::newRow("Latin-1") << QByteArray("\xDC"
                                           "bersicht");
}

void TestFileNames::invalidUtf8()
{
    QFETCH(QByteArray, bytes);
    QVERIFY(!xrv::isValidUtf8(bytes.toStdString()));
    QVERIFY(xrv::wideFromUtf8(bytes.toStdString()).find(wchar_t(0xFFFD)) != std::wstring::npos);
}

QTEST_APPLESS_MAIN(TestFileNames)
#include "tst_filenames.moc"
