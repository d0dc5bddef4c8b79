#include <QDir>
#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QXmlStreamReader>
#include <QtTest>

/// The translation files against the sources, and what a translation must keep of the text that it translates.
class TestCatalogues : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void haveTheTextsOfTheSources_data() { addFiles(); }
    void haveTheTextsOfTheSources();
    void areFinished_data() { addFiles(); }
    void areFinished();
    void keepWhatTheProgramNeeds_data() { addFiles(); }
    void keepWhatTheProgramNeeds();
    void haveTheSentencesOfTheSdk();

private:
    struct Message
    {
        QString context, source, state;
        QStringList translations; // one, or one for each of the language's plural forms
    };

    static QStringList catalogues();
    static void addFiles();
    static QVector<Message> readMessages(const QString &fileName);
    static QString complaint(const QString &source, const QString &translation);

    QTemporaryDir updated;
};

/// The files of the plug-in, the host library and the program, as paths from the root of the tree.
QStringList TestCatalogues::catalogues()
{
    QStringList paths;
    for (const char *name :
         {"resources/translations/xrvjp2klayer", "host/translations/qdgui", "viewer/translations/qdviewer"}) {
        for (const char *language : {"de", "es", "fr", "ja"})
            paths.append(QStringLiteral("%1_%2.ts").arg(QLatin1String(name), QLatin1String(language)));
    }
    return paths;
}

void TestCatalogues::addFiles()
{
    QTest::addColumn<QString>("name");
    for (const QString &path : catalogues())
        QTest::newRow(qPrintable(QFileInfo(path).fileName())) << path;
}

QVector<TestCatalogues::Message> TestCatalogues::readMessages(const QString &fileName)
{
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    QVector<Message> messages;
    QString context;
    bool hasPlurals = false;
    QXmlStreamReader xml(&file);
    while (!xml.atEnd()) {
        if (xml.readNext() != QXmlStreamReader::StartElement)
            continue;
        if (xml.name() == QLatin1String("name")) {
            context = xml.readElementText();
        } else if (xml.name() == QLatin1String("message")) {
            hasPlurals = xml.attributes().hasAttribute(QLatin1String("numerus"));
        } else if (xml.name() == QLatin1String("source")) {
            messages.append({context, xml.readElementText(), {}, {}});
        } else if (xml.name() == QLatin1String("translation")) {
            messages.last().state = xml.attributes().value(QLatin1String("type")).toString();
            if (!hasPlurals)
                messages.last().translations.append(xml.readElementText());
        } else if (xml.name() == QLatin1String("numerusform")) {
            messages.last().translations.append(xml.readElementText());
        }
    }
    return xml.hasError() ? QVector<Message>() : messages;
}

/// Copies of all files, brought up to date.
void TestCatalogues::initTestCase()
{
    const QDir folder(QStringLiteral(SOURCE_FOLDER));
    for (const QString &path : catalogues()) {
        QVERIFY(QDir(updated.path()).mkpath(QFileInfo(path).path()));
        QVERIFY(QFile::copy(folder.filePath(path), updated.filePath(path)));
    }
    if (!QFileInfo(QStringLiteral(LUPDATE)).isExecutable())
        return;
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("LUPDATE"), QStringLiteral(LUPDATE));
    process.setProcessEnvironment(environment);
    process.start(QStringLiteral(UPDATE_SCRIPT), {updated.path()});
    QVERIFY(process.waitForFinished(120000));
    QVERIFY2(process.exitCode() == 0, process.readAllStandardError().constData());
}

void TestCatalogues::haveTheTextsOfTheSources()
{
    if (!QFileInfo(QStringLiteral(LUPDATE)).isExecutable())
        QSKIP("there is no lupdate");
    QFETCH(QString, name);
    const auto keys = [](const QVector<Message> &messages) {
        QStringList list;
        for (const Message &message : messages)
            list.append(message.context + QLatin1String(": ") + message.source);
        list.sort();
        return list;
    };
    const QStringList had = keys(readMessages(QDir(QStringLiteral(SOURCE_FOLDER)).filePath(name)));
    const QStringList wanted = keys(readMessages(updated.filePath(name)));
    for (const QString &key : wanted)
        QVERIFY2(had.contains(key), qPrintable(QStringLiteral("missing, run the update script: ") + key));
    for (const QString &key : had)
        QVERIFY2(wanted.contains(key), qPrintable(QStringLiteral("no source has it any more: ") + key));
}

void TestCatalogues::areFinished()
{
    QFETCH(QString, name);
    const QVector<Message> messages = readMessages(QDir(QStringLiteral(SOURCE_FOLDER)).filePath(name));
    QVERIFY(!messages.isEmpty());
    for (const Message &message : messages) {
        QVERIFY2(message.state.isEmpty(), qPrintable(message.source));
        QVERIFY2(!message.translations.isEmpty(), qPrintable(message.source));
        QVERIFY2(!message.translations.contains(QString()), qPrintable(message.source));
    }
}

static QStringList allMatches(const QString &pattern, const QString &text)
{
    QStringList found;
    auto matches = QRegularExpression(pattern).globalMatch(text);
    while (matches.hasNext())
        found.append(matches.next().captured());
    found.sort();
    return found;
}

/// What is wrong with a translation, empty if nothing.
QString TestCatalogues::complaint(const QString &source, const QString &translation)
{
    // Every value, tag, variable and product name has to occur as often as in the source; so has the mark of the access
    // key, which in languages with other letters stands in brackets at the end.
    for (const char *pattern : {"%[0-9n]", "</?[a-z]+>", "\\$\\{\\w+\\}", "\\bXRVP?\\b", "JPEG 2000", "TANNIS", "MILTO",
                                "--[a-z]+", "&(?=[^\\s&])"}) {
        const QString expression = QLatin1String(pattern);
        if (allMatches(expression, source) != allMatches(expression, translation))
            return QStringLiteral("not the same as in the source: ") + expression;
    }
    // Fields and lines are put together from these, so their ends count.
    for (const char *pattern : {"\\A *", "[:\\s]*\\z", "(\\.\\.\\.)?(?=(\\(&.\\))?\\z)"}) {
        const QRegularExpression end(QLatin1String(pattern), QRegularExpression::UseUnicodePropertiesOption);
        if (end.match(source).captured() != end.match(translation).captured().remove(QChar(0xa0)))
            return QStringLiteral("does not begin or end as the source does: ") + end.pattern();
    }
    return {};
}

void TestCatalogues::keepWhatTheProgramNeeds()
{
    QFETCH(QString, name);
    for (const Message &message : readMessages(QDir(QStringLiteral(SOURCE_FOLDER)).filePath(name))) {
        for (const QString &translation : message.translations) {
            const QString text = complaint(message.source, translation);
            QVERIFY2(text.isEmpty(), qPrintable(QStringLiteral("%1\n%2\n%3").arg(text, message.source, translation)));
        }
    }
}

static QStringList sentences(const QString &path, const QString &before)
{
    QFile file(QDir(QStringLiteral(SOURCE_FOLDER)).filePath(path));
    if (!file.open(QIODevice::ReadOnly))
        return {};
    QStringList found;
    auto matches = QRegularExpression(before + QLatin1String(",\\s*\"([^\"\\\\]+\\.)\"[)}]"))
                       .globalMatch(QString::fromUtf8(file.readAll()));
    while (matches.hasNext())
        found.append(matches.next().captured(1));
    return found;
}

/// What the rooms that open files say in the same words always, but for the cancelling, which the layer says itself.
void TestCatalogues::haveTheSentencesOfTheSdk()
{
    QStringList said;
    for (const char *room : {"file", "container", "codestream", "xrv"}) {
        const QString folder = QLatin1String("sdk/src/") + QLatin1String(room) + QLatin1Char('/');
        const QDir sources(QDir(QStringLiteral(SOURCE_FOLDER)).filePath(folder));
        for (const QString &name : sources.entryList({QStringLiteral("*.cpp")}, QDir::Files))
            said += sentences(folder + name, QStringLiteral("\\{PLK_ERR_(?!CANCELLED)\\w+"));
    }
    said.removeDuplicates();
    said.sort();
    QStringList listed =
        sentences(QStringLiteral("layer/sdksentences.cpp"), QStringLiteral("NOOP\\(\"Korvane::XRVJP2kLayer\""));
    listed.sort();
    QVERIFY(said.size() > 10);
    QCOMPARE(listed, said);
}

QTEST_APPLESS_MAIN(TestCatalogues)
#include "tst_catalogues.moc"
