#include "appearance/translations.h"
#include "plugins/plugincontributions.h"
#include "plugins/preferencesdialog.h"
#include "plugins/propertieswindow.h"
#include "quadlayer.h"
#include "views/maparea.h"
#include "window/mainactions.h"
#include "window/mainwindow.h"

#include <QDGui/application.h>
#include <QDGui/pluginregistry.h>
#include <QDGui/xrvpbrowser.h>

#include <QAbstractButton>
#include <QDockWidget>
#include <QLabel>
#include <QLineEdit>
#include <QMdiSubWindow>
#include <QMenuBar>
#include <QTabBar>
#include <QTreeView>
#include <QtTest>

using Korvane::Gui::XRVPBrowser;
using Viewer::MainWindow;

namespace {

/// Marks what went through it.
class MarkingTranslator : public QTranslator
{
public:
    bool isEmpty() const override { return false; }
    QString translate(const char *, const char *text, const char *, int) const override
    {
        return QLatin1Char('#') + QString::fromUtf8(text);
    }
};

/// The access keys that a person can type at one time, and what they are for.
struct AccessKeys
{
    void add(const QString &text)
    {
        const QString key = QKeySequence::mnemonic(text).toString();
        if (key.isEmpty())
            return;
        if (texts.contains(key))
            clashes.append(QStringLiteral("%1: %2, %3").arg(key, texts.value(key), text));
        texts.insert(key, text);
    }
    void addControls(const QWidget &window)
    {
        for (const auto *button : window.findChildren<QAbstractButton *>())
            add(button->text());
        for (const auto *label : window.findChildren<QLabel *>())
            add(label->buddy() ? label->text() : QString());
    }

    QMap<QString, QString> texts;
    QStringList clashes;
};

QString clashesIn(const QList<QAction *> &actions)
{
    AccessKeys keys;
    for (const QAction *action : actions)
        keys.add(action->text());
    return keys.clashes.join(QLatin1Char('|'));
}

} // namespace

/// What the windows of the program and of the host library say, in every language.
class TestWindowTexts : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanup() { QLocale::setDefault(QLocale::c()); }
    void languages_data();
    void languages();
    void accessKeysAreUnique_data() { languages_data(); }
    void accessKeysAreUnique();
    void everyTextCanBeTranslated();

private:
    static QStringList textsOf(const QWidget &window);
    static QString unmarked(const QStringList &texts);

    QTemporaryDir folder;
};

void TestWindowTexts::initTestCase()
{
    Korvane::Application::instance()->setSettingsFile(folder.filePath(QStringLiteral("settings.ini")));
}

void TestWindowTexts::languages_data()
{
    QTest::addColumn<QString>("locale");
    QTest::addColumn<QString>("menu");
    QTest::addColumn<QString>("tip");
    QTest::addColumn<QString>("browser");
    const auto row = [](const char *locale, const char *menu, const char *tip, const char *browser) {
        QTest::newRow(locale) << QString::fromLatin1(locale) << QString::fromUtf8(menu) << QString::fromUtf8(tip)
                              << QString::fromUtf8(browser);
    };
    row("en_US", "&File", "Open", "Open an XRVP stream");
    row("de_CH", "&Datei", "Öffnen", "XRVP-Stream öffnen");
    row("fr_FR", "&Fichier", "Ouvrir", "Ouvrir un flux XRVP");
    row("es_MX", "&Archivo", "Abrir", "Abrir un flujo XRVP");
    row("ja_JP", "ファイル(&F)", "開く", "XRVP ストリームを開く");
}

void TestWindowTexts::languages()
{
    QFETCH(QString, locale);
    QLocale::setDefault(QLocale(locale));
    const Viewer::Translations translations;
    const Korvane::PluginRegistry registry;
    const MainWindow window(registry);
    QTEST(window.menuBar()->actions().constFirst()->text(), "menu");
    QTEST(window.mainActions()->open->toolTip(), "tip");
    QTEST(XRVPBrowser().windowTitle(), "browser");
}

/// With the plug-in's panels and menu entries, whose texts are not ours to choose.
void TestWindowTexts::accessKeysAreUnique()
{
    QFETCH(QString, locale);
    QLocale::setDefault(QLocale(locale));
    const Viewer::Translations translations;
    Korvane::PluginRegistry registry;
    QVERIFY(registry.loadFolder(QStringLiteral(PLUGIN_FOLDER)) > 0);
    const MainWindow window(registry);
    AccessKeys keys;
    keys.addControls(window);
    for (const QAction *menu : window.menuBar()->actions()) {
        keys.add(menu->text());
        QCOMPARE(clashesIn(menu->menu()->actions()), QString());
    }
    for (const auto *list : window.findChildren<QTreeView *>())
        QCOMPARE(clashesIn(list->actions()), QString());
    QCOMPARE(keys.clashes.join(QLatin1Char('|')), QString());

    const XRVPBrowser browser;
    AccessKeys browserKeys;
    browserKeys.addControls(browser);
    QCOMPARE(browserKeys.clashes.join(QLatin1Char('|')), QString());
}

QStringList TestWindowTexts::textsOf(const QWidget &window)
{
    QStringList texts{window.windowTitle()};
    for (const auto *label : window.findChildren<QLabel *>())
        texts.append({label->text(), label->toolTip()});
    for (const auto *button : window.findChildren<QAbstractButton *>())
        texts.append({button->text(), button->toolTip()});
    for (const auto *action : window.findChildren<QAction *>())
        texts.append({action->text(), action->toolTip(), action->statusTip()});
    for (const auto *field : window.findChildren<QLineEdit *>())
        texts.append(field->placeholderText());
    for (const auto *dock : window.findChildren<QDockWidget *>())
        texts.append(dock->windowTitle());
    for (const auto *part : window.findChildren<QMdiSubWindow *>())
        texts.append(part->windowTitle());
    for (const auto *bar : window.findChildren<QTabBar *>())
        texts.append(bar->tabText(0));
    for (const auto *tree : window.findChildren<QTreeView *>()) {
        for (int i = 0; !tree->isHeaderHidden() && i < tree->model()->columnCount(); ++i)
            texts.append(tree->model()->headerData(i, Qt::Horizontal).toString());
    }
    return texts;
}

/// The texts with words in them that came by another way than the translator's, and are no name.
QString TestWindowTexts::unmarked(const QStringList &texts)
{
    static const QRegularExpression kWord(QStringLiteral("\\pL{2}"));
    QStringList found;
    for (const QString &text : texts) {
        if (text.contains(kWord) && !text.contains(QLatin1Char('#')) && text != QCoreApplication::applicationName())
            found.append(text);
    }
    return found.join(QLatin1Char('|'));
}

void TestWindowTexts::everyTextCanBeTranslated()
{
    MarkingTranslator translator;
    QVERIFY(QCoreApplication::installTranslator(&translator));
    const Korvane::PluginRegistry registry;
    MainWindow window(registry);
    window.mapArea()->createView();
    QCOMPARE(unmarked(textsOf(window)), QString());
    QCOMPARE(unmarked(textsOf(XRVPBrowser())), QString());
    QCOMPARE(unmarked(textsOf(Viewer::PreferencesDialog({}, nullptr))), QString());

    const Viewer::PluginContributions contributions(registry, &window);
    Viewer::PropertiesWindow properties(contributions, nullptr);
    QuadLayer layer;
    properties.setLayer(&layer);
    QVERIFY(textsOf(properties).contains(QStringLiteral("#Cell size:")));
    QCOMPARE(unmarked(textsOf(properties)), QString());
    QCoreApplication::removeTranslator(&translator);
}

QTEST_MAIN(TestWindowTexts)
#include "tst_windowtexts.moc"
