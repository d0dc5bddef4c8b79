#include "data/testfolder.h"
#include "viewer/viewerprogram.h"

#include <QDGui/ilayereditorplugin.h>
#include <QDGui/ilayerplugin.h>
#include <QDGui/ilayerpropertieswidget.h>
#include <QDGui/layer.h>

#include <QAbstractButton>
#include <QDockWidget>
#include <QGroupBox>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLabel>
#include <QLineEdit>
#include <QPluginLoader>
#include <QToolBar>
#include <QtTest>

#include <memory>

/// The plug-in and the program in the language of the system. The expected words are a translator's, not the
/// catalogues'.
class TestLanguages : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanup();
    void plugin_data();
    void plugin();
    void valuesStayAsTheyAre();
    void descriptionsStayEnglish();
    void errorsStayEnglish();

private:
    static QStringList textsOf(const QWidget *widget);
    static QStringList textsOf(const QList<QWidget *> &widgets);
    QByteArray run(const QString &variable, const QStringList &arguments) const;

    TestFolder folder;
    QString imageFile;
};

void TestLanguages::initTestCase()
{
    jp2maker::Options options;
    options.components.resize(3);
    imageFile = folder.makeImage(QString::fromUtf8("Übersicht.jp2"), options);
}

void TestLanguages::cleanup()
{
    QLocale::setDefault(QLocale::c());
}

QStringList TestLanguages::textsOf(const QWidget *widget)
{
    QStringList texts{widget->windowTitle()};
    for (const QLabel *label : widget->findChildren<QLabel *>())
        texts.append(label->text());
    for (const QAbstractButton *button : widget->findChildren<QAbstractButton *>())
        texts.append({button->text(), button->toolTip()});
    for (const QGroupBox *box : widget->findChildren<QGroupBox *>())
        texts.append(box->title());
    return texts;
}

QStringList TestLanguages::textsOf(const QList<QWidget *> &widgets)
{
    QStringList texts;
    for (const QWidget *widget : widgets)
        texts += textsOf(widget);
    qDeleteAll(widgets);
    return texts;
}

void TestLanguages::plugin_data()
{
    QTest::addColumn<QString>("locale");
    QTest::addColumn<QString>("panel");
    QTest::addColumn<QString>("page");
    QTest::addColumn<QString>("preferences");
    QTest::addColumn<QString>("title");
    const auto row = [](const char *locale, const char *panel, const char *page, const char *preferences,
                        const char *title) {
        QTest::newRow(locale) << QString::fromLatin1(locale) << QString::fromUtf8(panel) << QString::fromUtf8(page)
                              << QString::fromUtf8(preferences) << QString::fromUtf8(title);
    };
    row("de_DE", "Helligkeit", "Mittelwert:", "Standardwerte", "XRV JPEG 2000-Eigenschaften");
    row("de_AT", "Helligkeit", "Mittelwert:", "Standardwerte", "XRV JPEG 2000-Eigenschaften");
    row("ja_JP", "明るさ", "平均:", "既定値", "XRV JPEG 2000 プロパティ");
    row("fr_CA", "Luminosité", "Moyenne :", "Valeurs par défaut", "Propriétés XRV JPEG 2000");
    row("es_MX", "Brillo", "Media:", "Valores predeterminados", "Propiedades XRV JPEG 2000");
    row("pt_BR", "Brightness", "Mean:", "Defaults", "XRV JPEG 2000 Properties");
    row("en_GB", "Brightness", "Mean:", "Defaults", "XRV JPEG 2000 Properties");
}

/// Loaded anew for each language, as a program started in it does; so each also has to let go of the one before.
void TestLanguages::plugin()
{
    QFETCH(QString, locale);
    QFETCH(QString, panel);
    QFETCH(QString, page);
    QFETCH(QString, preferences);
    QFETCH(QString, title);
    QLocale::setDefault(QLocale(locale));
    QPluginLoader loader(QStringLiteral(XRV_PLUGIN_FILE));
    auto *editor = qobject_cast<ILayerEditorPlugin *>(loader.instance());
    QVERIFY2(editor, qPrintable(loader.errorString()));
    {
        const QList<QDockWidget *> docks = editor->getDockWidgets();
        const std::unique_ptr<QDockWidget> dock(docks.value(0));
        QCOMPARE(dock->windowTitle(), title);
        QCOMPARE(dock->objectName(), QStringLiteral("XRV JPEG 2000 Properties")); // windows are remembered by it
        QVERIFY2(textsOf(dock->widget()).contains(panel), qPrintable(textsOf(dock->widget()).join(u'|')));
    }
    const QStringList pageTexts = textsOf(editor->getInfoPages());
    QVERIFY2(pageTexts.contains(page.replace(QLatin1String(" :"), QString::fromUtf8("\u00a0:"))),
             qPrintable(pageTexts.join(u'|')));
    const QStringList preferenceTexts = textsOf(editor->getPreferencePages());
    QVERIFY2(preferenceTexts.contains(preferences), qPrintable(preferenceTexts.join(u'|')));
    QVERIFY(loader.unload());
}

/// Technical names and values are the same in every language; what is put in words is not.
void TestLanguages::valuesStayAsTheyAre()
{
    QLocale::setDefault(QLocale(QStringLiteral("de_DE")));
    QPluginLoader loader(QStringLiteral(XRV_PLUGIN_FILE));
    auto *editor = qobject_cast<ILayerEditorPlugin *>(loader.instance());
    auto *factory = qobject_cast<ILayerPlugin *>(loader.instance());
    QVERIFY(editor && factory);
    {
        const std::unique_ptr<Korvane::Map::Layer> layer(factory->createLayer(false));
        QVERIFY2(layer->setDataSource(imageFile), qPrintable(layer->getLastError()));
        QStringList values;
        const QList<QWidget *> pages = editor->getInfoPages();
        for (QWidget *page : pages) {
            qobject_cast<Korvane::ILayerPropertiesWidget *>(page)->setLayer(layer.get());
            for (const QLineEdit *field : page->findChildren<QLineEdit *>())
                values.append({field->text(), field->placeholderText()});
        }
        qDeleteAll(pages);
        for (const char *value : {"false", "LRCP", "Gilt nicht für .jp2-Dateien", "Local file"})
            QVERIFY2(values.contains(QString::fromUtf8(value)), qPrintable(values.join(u'|')));
        const QString missing = folder.path(QStringLiteral("none.url"));
        QVERIFY(!layer->setDataSource(missing));
        QCOMPARE(layer->getLastError(), QString::fromUtf8("Die URL-Datei konnte nicht geöffnet werden."));
    }
    QVERIFY(loader.unload());
}

QByteArray TestLanguages::run(const QString &variable, const QStringList &arguments) const
{
    const ProgramRun run = runViewer(
        QStringList{QStringLiteral("--settings"), folder.path(QStringLiteral("own.ini"))} + arguments, {variable});
    return run.out + run.err;
}

/// Scripts read it.
void TestLanguages::descriptionsStayEnglish()
{
    const QStringList arguments{QStringLiteral("--describe"), imageFile};
    const QByteArray plain = run(QStringLiteral("LC_ALL=C"), arguments);
    // The file has a name beyond ASCII, which must not get lost on the way either.
    QVERIFY2(plain.contains("\"Statistics\"") && !plain.contains("\"error\""), plain.constData());
    QCOMPARE(run(QStringLiteral("LC_ALL=de_DE.UTF-8"), arguments), plain);
    QCOMPARE(run(QStringLiteral("LANG=ja_JP.UTF-8"), arguments), plain);
}

/// Scripts read them. The window in the picture speaks German all the same.
void TestLanguages::errorsStayEnglish()
{
    const QString locale = QStringLiteral("LC_ALL=de_DE.UTF-8");
    const QByteArray failure = run(locale, {QStringLiteral("--window"), folder.path(QStringLiteral("none/window.png")),
                                            imageFile, folder.path(QStringLiteral("none.jp2"))});
    QVERIFY2(failure.contains("none.jp2 does not exist."), failure.constData());
    QVERIFY2(failure.contains("window.png cannot be written"), failure.constData());
    const QByteArray usage = run(locale, {QStringLiteral("--nosuch")});
    QVERIFY2(usage.contains("Unknown option"), usage.constData());
    const QByteArray help = run(locale, {QStringLiteral("--help")});
    QVERIFY2(help.startsWith("Usage:"), help.constData());
}

QTEST_MAIN(TestLanguages)
#include "tst_languages.moc"
