#include "htmllisting.h"
#include "serverlisting.h"

#include <QElapsedTimer>
#include <QTest>

using Korvane::Gui::parseServerListing;
using Korvane::Gui::ServerListing;

/// Reading what web servers say is in a folder. The pages are shaped like those of the servers they are named after.
class TestServerListing : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void readsWhatServersWrite_data();
    void readsWhatServersWrite();
    void readsLinks_data();
    void readsLinks();
    void withoutEntries_data();
    void withoutEntries();
    void sorts();
    void keepsSoMany();
    void survivesHostilePages_data();
    void survivesHostilePages();
};

/// "name|path part|size|date" of each entry, folders with a slash.
static QStringList summary(const ServerListing &listing)
{
    QStringList lines;
    for (const ServerListing::Entry &entry : listing.entries) {
        lines.append(
            QStringLiteral("%1%2|%3|%4|%5")
                .arg(entry.name, entry.isFolder ? QStringLiteral("/") : QString(), QString::fromLatin1(entry.pathPart))
                .arg(entry.size)
                .arg(entry.modified.toString(QStringLiteral("yyyy-MM-dd HH:mm"))));
    }
    return lines;
}

static QUrl folderUrl()
{
    return QUrl(QStringLiteral("http://server:8080/maps/"));
}

void TestServerListing::readsWhatServersWrite_data()
{
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<QStringList>("expected");

    QTest::newRow("nginx, JSON") << QByteArray(R"([
{ "name":"2024", "type":"directory", "mtime":"Thu, 05 Sep 2024 10:11:12 GMT" },
{ "name":"100% done.jp2", "type":"file", "mtime":"Fri, 06 Sep 2024 00:00:00 GMT", "size":5368709120 },
{ "name":"Übersicht.jp2", "type":"file", "mtime":"Fri, 06 Sep 2024 00:00:00 GMT", "size":12 },
{ "name":"notes.txt", "type":"file", "mtime":"Fri, 06 Sep 2024 00:00:00 GMT", "size":12 }
])")
                                 << QStringList{
                                        QStringLiteral("2024/|2024|-1|2024-09-05 10:11"),
                                        QStringLiteral("100% done.jp2|100%25%20done.jp2|5368709120|2024-09-06 00:00"),
                                        QString::fromUtf8("Übersicht.jp2|%C3%9Cbersicht.jp2|12|2024-09-06 00:00")};

    QTest::newRow("nginx, HTML")
        << QByteArray(R"(<html>
<head><title>Index of /maps/</title></head>
<body>
<h1>Index of /maps/</h1><hr><pre><a href="../">../</a>
<a href="old%20scenes/">old scenes/</a>                             05-Sep-2024 10:11                   -
<a href="%C3%9Cbersicht.jp2">Übersicht.jp2</a>                      06-Sep-2024 07:05           104857600
<a href="a_very_long_name_that_the_server_does_not_show_whole_2024.jp2">a_very_long_name_that_the_server_does_not_show_..&gt;</a> 06-Sep-2024 07:06                7
<a href="readme.html">readme.html</a>                               06-Sep-2024 07:06                7
</pre><hr></body>
</html>)")
        << QStringList{
               QStringLiteral("old scenes/|old%20scenes|-1|2024-09-05 10:11"),
               QStringLiteral("a_very_long_name_that_the_server_does_not_show_whole_2024.jp2|"
                              "a_very_long_name_that_the_server_does_not_show_whole_2024.jp2|7|2024-09-06 07:06"),
               QString::fromUtf8("Übersicht.jp2|%C3%9Cbersicht.jp2|104857600|2024-09-06 07:05")};

    QTest::newRow("Apache, table") << QByteArray(R"(<!DOCTYPE HTML PUBLIC "-//W3C//DTD HTML 3.2 Final//EN">
<html><head><title>Index of /maps</title></head><body><h1>Index of /maps</h1>
  <table><tr><th valign="top"><img src="/icons/blank.gif" alt="[ICO]"></th><th><a href="?C=N;O=D">Name</a></th><th><a href="?C=M;O=A">Last modified</a></th><th><a href="?C=S;O=A">Size</a></th></tr>
<tr><td valign="top"><img src="/icons/back.gif" alt="[PARENTDIR]"></td><td><a href="/">Parent Directory</a></td><td>&nbsp;</td><td align="right">  - </td></tr>
<tr><td valign="top"><a href="sub/"><img src="/icons/folder.gif" alt="[DIR]"></a></td><td><a href="sub/">sub/</a></td><td align="right">2024-09-05 10:11  </td><td align="right">  - </td><td>&nbsp;</td></tr>
<tr><td valign="top"><img src="/icons/unknown.gif" alt="[   ]"></td><td><a href="a&amp;b.j2k">a&amp;b.j2k</a></td><td align="right">2024-09-06 07:05  </td><td align="right">1.5M</td><td>&nbsp;</td></tr>
<tr><td valign="top"><img src="/icons/unknown.gif" alt="[   ]"></td><td><a href="small.jp2">small.jp2</a></td><td align="right">2024-09-06 07:05  </td><td align="right">720 </td><td>&nbsp;</td></tr>
</table></body></html>)")
                                   << QStringList{QStringLiteral("sub/|sub|-1|2024-09-05 10:11"),
                                                  QStringLiteral("a&b.j2k|a&b.j2k|1572864|2024-09-06 07:05"),
                                                  QStringLiteral("small.jp2|small.jp2|720|2024-09-06 07:05")};

    QTest::newRow("Caddy, HTML") << QByteArray(R"(<!DOCTYPE html><html><head><style>a{color:red}</style></head><body>
<h1><a href="/">/</a><a href="/maps/">maps</a></h1>
<table><thead><tr><th><a href="./?sort=name&order=desc">Name</a></th></tr></thead><tbody>
<tr><td></td><td><a href=".."><span class="goup">Up</span></a></td></tr>
<tr class="file"><td></td><td><a href="./sub/"><svg width="1.5em"><use xlink:href="#folder"></use></svg><span class="name">sub/</span></a></td><td class="size" data-size="4096">&mdash;</td><td class="timestamp"><time datetime="2024-09-05T10:11:12Z">09/05/2024 10:11:12 AM +00:00</time></td></tr>
<tr class="file"><td></td><td><a href="./site%20plan.jp2"><svg></svg><span class="name">site plan.jp2</span></a></td><td class="size" data-size="123456789"><div class="sizebar"><div class="sizebar-text">118 MiB</div></div></td><td class="timestamp"><time datetime="2024-09-06T07:05:00Z">09/06/2024</time></td></tr>
</tbody></table><script>document.write('<a href="evil.jp2">')</script></body></html>)")
                                 << QStringList{
                                        QStringLiteral("sub/|sub|-1|2024-09-05 10:11"),
                                        QStringLiteral("site plan.jp2|site%20plan.jp2|123456789|2024-09-06 07:05")};

    QTest::newRow("Caddy, JSON") << QByteArray(R"([{"name":"sub/","size":4096,"url":"./sub/",
"mod_time":"2024-09-05T10:11:12.3Z","mode":2147484141,"is_dir":true,"is_symlink":false},
{"name":"a.xrv","size":77,"url":"./a.xrv","mod_time":"2024-09-06T07:05:00Z","mode":420,"is_dir":false}])")
                                 << QStringList{QStringLiteral("sub/|sub|-1|2024-09-05 10:11"),
                                                QStringLiteral("a.xrv|a.xrv|77|2024-09-06 07:05")};

    QTest::newRow("Python") << QByteArray(R"(<!DOCTYPE HTML>
<html lang="en"><head><meta charset="utf-8"><title>Directory listing for /maps/</title></head><body>
<h1>Directory listing for /maps/</h1><hr><ul>
<li><a href="sub/">sub/</a></li>
<li><a href="a%20b.JP2">a b.JP2</a></li>
</ul><hr></body></html>)") << QStringList{QStringLiteral("sub/|sub|-1|"), QStringLiteral("a b.JP2|a%20b.JP2|-1|")};

    QTest::newRow("lighttpd") << QByteArray(R"(<html><head><title>Index of /maps/</title></head><body>
<tr class="d"><td class="n"><a href="../">..</a>/</td><td class="m">&nbsp;</td><td class="s">- &nbsp;</td></tr>
<tr><td class="n"><a href="a.jpx">a.jpx</a></td><td class="m">2024-Sep-06 07:05:33</td><td class="s">1.5K</td></tr>)")
                              << QStringList{QStringLiteral("a.jpx|a.jpx|1536|2024-09-06 07:05")};
}

void TestServerListing::readsWhatServersWrite()
{
    QFETCH(QByteArray, body);
    QFETCH(QStringList, expected);
    const ServerListing listing = parseServerListing(body, folderUrl());
    QCOMPARE(summary(listing), expected);
    QVERIFY(listing.isListing);
    QVERIFY(!listing.isCutOff);
}

void TestServerListing::readsLinks_data()
{
    QTest::addColumn<QByteArray>("link");
    QTest::addColumn<QString>("expected"); // empty: no entry
    const auto row = [](const char *link, const char *expected) {
        QTest::newRow(link) << QByteArray(link) << QString::fromUtf8(expected);
    };
    row("\"a.jp2\"", "a.jp2");
    row("'a.jp2'", "a.jp2");
    row("a.jp2", "a.jp2");
    row("\" a.jp2 \"", "a.jp2");
    row("\"/maps/a.jp2\"", "a.jp2");
    row("\"http://server:8080/maps/a.jp2\"", "a.jp2");
    row("\"//server:8080/maps/a.jp2\"", "a.jp2");
    row("\"x/../a.jp2\"", "a.jp2");
    row("\"Übersicht 東京.jp2\"", "Übersicht 東京.jp2");
    row("\"a&#38;b&#x26;c.jp2\"", "a&b&c.jp2");
    row("\"a%23b%3F.jp2\"", "a#b?.jp2");
    row("\"%2541.jp2\"", "%41.jp2");
    row("\"javascript:open('a.jp2')\"", "");
    row("\"data:text/html,a.jp2\"", "");
    row("\"ftp://server:8080/maps/a.jp2\"", "");
    row("\"https://server:8080/maps/a.jp2\"", "");
    row("\"http://server/maps/a.jp2\"", "");
    row("\"http://other:8080/maps/a.jp2\"", "");
    row("\"//other/maps/a.jp2\"", "");
    row("\"http://me:pw@server:8080/maps/a.jp2\"", "");
    row("\"../a.jp2\"", "");
    row("\"/a.jp2\"", "");
    row("\"/mapsa.jp2\"", "");
    row("\"sub/a.jp2\"", "");
    row("\"..\"", "");
    row("\"%2e%2e/\"", "");
    row("\"..%2Fa.jp2\"", "");
    row("\"..%2fa.jp2\"", "");
    row("\"..%5Ca.jp2\"", "");
    row("\"..\\a.jp2\"", "");
    row("\"a%00.jp2\"", "");
    row("\"a%0D%0AHost:x.jp2\"", "");
    row("\"a\x01.jp2\"", "");
    row("\"2pj%E2%80%AE.jp2\"", "");
    row("\"a.jp2?C=M\"", "");
    row("\"#a.jp2\"", "");
    row("\"\"", "");
    row("\"./\"", "");
    row("\"a.url\"", "");
    row("\"a.jp2.exe\"", "");
}

void TestServerListing::readsLinks()
{
    QFETCH(QByteArray, link);
    QFETCH(QString, expected);
    const QByteArray page = "<html><A class=x HREF = " + link + " >text</A></html>";
    const ServerListing listing = parseServerListing(page, folderUrl());
    QCOMPARE(listing.entries.size(), expected.isEmpty() ? 0 : 1);
    if (!expected.isEmpty())
        QCOMPARE(listing.entries[0].name, expected);
}

void TestServerListing::withoutEntries_data()
{
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<bool>("isListing");
    QTest::newRow("empty folder, JSON") << QByteArray("[\r\n]\n") << true;
    QTest::newRow("empty folder, HTML") << QByteArray("<h1>Index of /</h1><a href=\"../\">../</a>") << true;
    QTest::newRow("a page of its own") << QByteArray("<html><body><h1>Welcome</h1><a href=\"http://x/\">x</a>")
                                       << false;
    QTest::newRow("nothing") << QByteArray() << false;
    QTest::newRow("another JSON") << QByteArray("{\"name\":\"a.jp2\"}") << false;
    QTest::newRow("half an entry of a JSON") << QByteArray("[{\"na") << false;
    QTest::newRow("odd JSON") << QByteArray("[1,null,[],{\"name\":7},{\"name\":\"\"},{\"name\":\"../a.jp2\"},"
                                            "{\"name\":\"..\",\"type\":\"directory\"},{\"name\":\"a/b.jp2\"}]")
                              << true;
    QTest::newRow("an image") << QByteArray("\0\0\0\x0CjP  \r\n\x87\n<a href=\"a.jp2\">", 28) << false;
}

void TestServerListing::withoutEntries()
{
    QFETCH(QByteArray, body);
    const ServerListing listing = parseServerListing(body, folderUrl());
    QCOMPARE(summary(listing), QStringList());
    QTEST(listing.isListing, "isListing");
}

void TestServerListing::sorts()
{
    const QByteArray page = "<a href=b10.jp2>1</a><a href=b9.jp2></a><a href=Z/></a><a href=b10.jp2>2</a>"
                            " 2024-09-06 07:05 5<br><a href=a/></a>";
    const ServerListing listing = parseServerListing(page, folderUrl());
    QCOMPARE(summary(listing),
             (QStringList{QStringLiteral("a/|a|-1|"), QStringLiteral("Z/|Z|-1|"), QStringLiteral("b9.jp2|b9.jp2|-1|"),
                          QStringLiteral("b10.jp2|b10.jp2|5|2024-09-06 07:05")}));
}

void TestServerListing::keepsSoMany()
{
    QByteArray html = "<title>Index of /</title>";
    QByteArray json = "[";
    for (int i = 0; i <= ServerListing::kMaxEntries; ++i) {
        const QByteArray name = QByteArray::number(i) + ".jp2";
        html += "<a href=\"" + name + "\">" + name + "</a> 06-Sep-2024 07:05 " + QByteArray::number(i) + "\n";
        json += (i == 0 ? "" : ",") + QByteArray("{\"name\":\"") + name + "\",\"type\":\"file\"}";
    }
    for (const QByteArray &body : {html, QByteArray(json + ']')}) {
        const ServerListing listing = parseServerListing(body, folderUrl());
        QCOMPARE(listing.entries.size(), ServerListing::kMaxEntries);
        QVERIFY(listing.isCutOff);
    }
    const ServerListing cut = parseServerListing(R"([{"name":"a.jp2"},{"name":"b.jp2"},{"name":"c}.j)", folderUrl());
    QCOMPARE(cut.entries.size(), 2);
    QVERIFY(cut.isCutOff);
}

void TestServerListing::survivesHostilePages_data()
{
    constexpr int kMega = 1 << 20;
    constexpr int kWhole = 8 * kMega;
    const QByteArray good = "<a href=\"good.jp2\">x</a>";
    const auto repeated = [](const char *text, int size) {
        QByteArray result;
        result.reserve(size + 64);
        while (result.size() < size)
            result += text;
        return result;
    };
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<int>("count"); // of "good.jp2"
    QTest::newRow("unclosed tags") << good + repeated("<a href=", kWhole) << 1;
    QTest::newRow("unclosed quote") << good + "<a href=\"" + QByteArray(kWhole, 'x') << 1;
    QTest::newRow("unclosed link") << QByteArray("<a href=\"good.jp2\"") << 1;
    QTest::newRow("unclosed comment") << good + repeated("<!-- ", kWhole) << 1;
    QTest::newRow("unclosed script") << good + "<script><a href=\"bad.jp2\"></a>" << 1;
    QTest::newRow("many scripts") << repeated("<script></script>", kWhole) + good << 1;
    QTest::newRow("many ends in a script") << good + "<script>" + repeated("</", kWhole) << 1;
    QTest::newRow("only angle brackets") << QByteArray(kWhole, '<') + good << 1;
    QTest::newRow("megabyte name") << "<a href=\"" + QByteArray(kMega, 'x') + ".jp2\"></a>" + good << 1;
    QTest::newRow("megabyte of references") << "<a href=\"" + repeated("&#65;", kMega) + ".jp2\"></a>" + good << 1;
    QTest::newRow("megabyte of ampersands") << "<a href=\"" + QByteArray(kMega, '&') + "\">" + good << 1;
    QTest::newRow("megabyte of dots") << "<a href=\"" + repeated("../", kMega) + "a.jp2\"></a>" + good << 1;
    QTest::newRow("text without end") << good + QByteArray(kWhole, '9') << 1;
    QTest::newRow("deep JSON") << QByteArray(kWhole, '[') << 0;
    QTest::newRow("invalid UTF-8") << QByteArray("<a href=\"\xFF\xFE%FF\xC3.txt\"></a>") + good << 1;
}

void TestServerListing::survivesHostilePages()
{
    QFETCH(QByteArray, body);
    QFETCH(int, count);
    QElapsedTimer timer;
    timer.start();
    const ServerListing listing = parseServerListing(body, folderUrl());
    // Far above what it takes (sanitizers included), far below what anything quadratic would.
    QVERIFY2(timer.elapsed() < 10000, qPrintable(QString::number(timer.elapsed())));
    QCOMPARE(listing.entries.size(), count);
    if (count > 0)
        QCOMPARE(listing.entries[0].name, QStringLiteral("good.jp2"));
}

QTEST_APPLESS_MAIN(TestServerListing)
#include "tst_serverlisting.moc"
