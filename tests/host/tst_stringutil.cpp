#include <QDGui/stringutil.h>
#include <QDGui/system.h>

#include <QFile>
#include <QTest>

class TestStringUtil : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void formatsFileSizes_data();
    void formatsFileSizes();
    void tellsTheMemoryInMegabytes();
};

void TestStringUtil::formatsFileSizes_data()
{
    QTest::addColumn<quint64>("bytes");
    QTest::addColumn<QByteArray>("format");
    QTest::addColumn<QString>("text");
    const QByteArray plain("%2.2f");
    QTest::newRow("nothing") << quint64(0) << plain << QStringLiteral("0.00 B");
    QTest::newRow("just below a unit") << quint64(1023) << plain << QStringLiteral("1023.00 B");
    QTest::newRow("exactly a unit") << quint64(1024) << plain << QStringLiteral("1.00 KB");
    QTest::newRow("between") << quint64(1572864) << plain << QStringLiteral("1.50 MB");
    QTest::newRow("gigabytes") << (quint64(2) << 30) << plain << QStringLiteral("2.00 GB");
    QTest::newRow("terabytes") << (quint64(5) << 40) << plain << QStringLiteral("5.00 TB");
    QTest::newRow("beyond the last unit") << (quint64(3) << 60) << plain << QStringLiteral("3145728.00 TB");
    QTest::newRow("largest number") << ~quint64(0) << plain << QStringLiteral("16777216.00 TB");
    QTest::newRow("text around") << (quint64(512) << 20) << QByteArray("  %2.2f") << QStringLiteral("  512.00 MB");
    QTest::newRow("no digits after the point") << quint64(1) << QByteArray("%.0f") << QStringLiteral("1 B");
    QTest::newRow("no number") << quint64(1024) << QByteArray("size") << QStringLiteral("1.00 KB");
    QTest::newRow("a pointer") << quint64(1024) << QByteArray("%s") << QStringLiteral("1.00 KB");
    QTest::newRow("two numbers") << quint64(1024) << QByteArray("%f %f") << QStringLiteral("1.00 KB");
    QTest::newRow("width as an argument") << quint64(1024) << QByteArray("%*f") << QStringLiteral("1.00 KB");
}

void TestStringUtil::formatsFileSizes()
{
    QFETCH(quint64, bytes);
    QFETCH(QByteArray, format);
    QFETCH(QString, text);
    QCOMPARE(Korvane::Util::String::formatFileSize(bytes, format.constData()), text);
}

void TestStringUtil::tellsTheMemoryInMegabytes()
{
    QFile file(QStringLiteral("/proc/meminfo"));
    if (!file.open(QIODevice::ReadOnly))
        QSKIP("the system does not say how much memory there is");
    // "MemTotal:       16303040 kB"; the kernel's own share is not counted there.
    const QByteArrayList words = file.readLine().simplified().split(' ');
    const double megabytes = words.at(1).toDouble() / 1024.0;
    const auto total = static_cast<double>(Korvane::System::getTotalRAM());
    QVERIFY2(std::abs(total - megabytes) <= 0.02 * megabytes, words.join(' ').constData());
}

QTEST_APPLESS_MAIN(TestStringUtil)
#include "tst_stringutil.moc"
