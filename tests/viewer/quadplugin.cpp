#include "quadplugin.h"

#include "quadlayer.h"

#include <QDGui/application.h>

#include <QAction>
#include <QClipboard>
#include <QDockWidget>
#include <QGuiApplication>
#include <QMdiSubWindow>
#include <QSettings>
#include <QToolBar>

void QuadPanel::onLayerActivated(Map::Layer *layer)
{
    setText(layer ? layer->getDescription() : QStringLiteral("none"));
}

void QuadPanel::onSubWindowActivated(QMdiSubWindow *window)
{
    setProperty("windowTitleSeen", window ? window->windowTitle() : QStringLiteral("none"));
}

QuadPage::QuadPage()
{
    setWindowTitle(QStringLiteral("Quad Info"));
}

void QuadPage::setLayer(Map::Layer *newLayer)
{
    layer = newLayer;
}

void QuadPage::apply()
{
    layer->setComments(QStringLiteral("applied"));
}

void QuadPage::copyToClipboard()
{
    QGuiApplication::clipboard()->setText(QStringLiteral("page of ") + layer->getDescription());
}

QuadPreferences::QuadPreferences()
{
    setObjectName(QStringLiteral("Quad Preferences"));
}

void QuadPreferences::onSavePrefs()
{
    Korvane::Application::instance()->settings()->setValue(QStringLiteral("Quad/Saved"), true);
}

Map::Layer *QuadPlugin::createLayer(bool askForUrl)
{
    return askForUrl ? nullptr : new QuadLayer;
}

QList<QDockWidget *> QuadPlugin::getDockWidgets()
{
    auto *dock = new QDockWidget(QStringLiteral("Quad Properties"));
    dock->setObjectName(QStringLiteral("QuadDock"));
    dock->setWidget(new QuadPanel);
    return {dock, nullptr};
}

QList<QWidget *> QuadPlugin::getInfoPages()
{
    return {new QuadPage, nullptr};
}

QList<QToolBar *> QuadPlugin::getToolBars()
{
    auto *bar = new QToolBar(QStringLiteral("Quad Bar"));
    bar->setObjectName(QStringLiteral("QuadBar"));
    return {bar};
}

QList<QAction *> QuadPlugin::getActions()
{
    return {new QAction(QStringLiteral("Quad Action"))};
}

QList<QWidget *> QuadPlugin::getPreferencePages()
{
    return {new QuadPreferences};
}
