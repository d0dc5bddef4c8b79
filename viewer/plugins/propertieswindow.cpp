#include "propertieswindow.h"

#include "layers/layersummarypage.h"
#include "plugincontributions.h"
#include "sources/sources.h"
#include "statisticsbar.h"

#include <QDGui/application.h>
#include <QDGui/ilayerpropertieswidget.h>
#include <QDGui/layer.h>

#include <QComboBox>
#include <QDialogButtonBox>
#include <QScreen>
#include <QSettings>
#include <QSignalBlocker>
#include <QTabBar>
#include <QTabWidget>
#include <QVBoxLayout>

namespace Viewer {

using Korvane::ILayerPropertiesWidget;
using Korvane::Map::Layer;

namespace {

const QString kGeometryKey = QStringLiteral("Viewer/LayerPropertiesGeometry");

} // namespace

PropertiesWindow::PropertiesWindow(const PluginContributions &contributions, QWidget *parent)
    : QDialog(parent)
    , contributions(contributions)
    , tabs(new QTabWidget)
    , statisticsBar(new StatisticsBar)
{
    setWindowFlag(Qt::WindowContextHelpButtonHint, false);
    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(tabs, &QTabWidget::currentChanged, this, &PropertiesWindow::loadCurrentPage);
    connect(statisticsBar, &StatisticsBar::counted, this, &PropertiesWindow::reloadPages);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(tabs);
    layout->addWidget(statisticsBar);
    layout->addWidget(buttons);
    resize(560, 560);
    hasOwnSize = restoreGeometry(Korvane::Application::instance()->settings()->value(kGeometryKey).toByteArray());
}

void PropertiesWindow::setLayer(Layer *newLayer)
{
    if (newLayer == layer && newLayer)
        return;
    forgetLayer();
    layer = newLayer;
    if (!layer) {
        close();
        return;
    }
    statisticsBar->setLayer(layer);
    // The pages keep the layer's bare address, so they go before it does.
    connect(layer, &QObject::destroyed, this, [this] { setLayer(nullptr); });
    setWindowTitle(tr("Properties of %1").arg(Sources::nameOfLayer(*layer)));
    {
        const QSignalBlocker blocker(tabs);
        addPage(new LayerSummaryPage(*layer));
        const QVector<QWidget *> pages = contributions.makeInfoPages(*layer);
        for (QWidget *page : pages)
            addPage(page);
        tabs->setCurrentIndex(qBound(0, lastTab, tabs->count() - 1));
    }
    if (!hasOwnSize)
        makeRoom();
    loadCurrentPage();
}

void PropertiesWindow::forgetLayer()
{
    if (layer)
        layer->disconnect(this);
    layer = nullptr;
    statisticsBar->setLayer(nullptr);
    if (tabs->count() > 0)
        lastTab = tabs->currentIndex();
    const QSignalBlocker blocker(tabs);
    loadedPages.clear();
    while (tabs->count() > 0) {
        QWidget *page = tabs->widget(0);
        tabs->removeTab(0);
        delete page;
    }
}

void PropertiesWindow::addPage(QWidget *page)
{
    tabs->addTab(page, PluginContributions::titleOf(*page));
}

/// Words are longer in some languages than in others.
void PropertiesWindow::makeRoom()
{
    hasOwnSize = true;
    // Tabs are content with arrows to scroll them by; a person is not.
    const QMargins margins = layout()->contentsMargins();
    const QSize allTabs(tabs->tabBar()->sizeHint().width() + margins.left() + margins.right(), 0);
    const QSize room = screen() ? screen()->availableSize() : size();
    resize(size().expandedTo(sizeHint()).expandedTo(allTabs).boundedTo(room).expandedTo(minimumSizeHint()));
}

void PropertiesWindow::loadCurrentPage()
{
    QWidget *page = tabs->currentWidget();
    auto *properties = qobject_cast<ILayerPropertiesWidget *>(page);
    if (!properties || !layer || loadedPages.contains(page))
        return;
    loadedPages.insert(page);
    properties->setLayer(layer);
    statisticsBar->pageWasLoaded();
}

/// What a person has chosen on a page stays.
void PropertiesWindow::reloadPages()
{
    for (QWidget *page : qAsConst(loadedPages)) {
        QVector<int> chosen;
        const QList<QComboBox *> boxes = page->findChildren<QComboBox *>();
        for (const QComboBox *box : boxes)
            chosen.append(box->currentIndex());
        if (auto *properties = qobject_cast<ILayerPropertiesWidget *>(page))
            properties->setLayer(layer);
        for (int i = 0; i < boxes.size(); ++i)
            boxes[i]->setCurrentIndex(chosen[i]);
    }
}

void PropertiesWindow::accept()
{
    for (QWidget *page : qAsConst(loadedPages)) {
        if (auto *properties = qobject_cast<ILayerPropertiesWidget *>(page))
            properties->apply();
    }
    QDialog::accept();
}

void PropertiesWindow::done(int result)
{
    Korvane::Application::instance()->settings()->setValue(kGeometryKey, saveGeometry());
    QDialog::done(result);
    // Shown again, the pages read the layer anew; until then what they hold, which can be much, is not needed. Not
    // right now: it may be a button on a page that closed the window.
    QMetaObject::invokeMethod(
        this,
        [this] {
            if (!isVisible())
                forgetLayer();
        },
        Qt::QueuedConnection);
}

} // namespace Viewer
