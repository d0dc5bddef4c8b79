#include "preferencesdialog.h"

#include "plugincontributions.h"

#include <QDialogButtonBox>
#include <QGuiApplication>
#include <QLabel>
#include <QScreen>
#include <QTabBar>
#include <QTabWidget>
#include <QVBoxLayout>

namespace Viewer {

namespace {

constexpr double kShareOfScreen = 0.9;

/// The size that \a page's form was drawn in; empty where it leaves that to its layout.
QSize formSize(const QWidget &page)
{
    return page.testAttribute(Qt::WA_Resized) ? page.size() : QSize();
}

/// A title may hold an ampersand, which a tab would take for the mark of a short cut.
QString tabText(const QWidget &page)
{
    return PluginContributions::titleOf(page).replace(QLatin1Char('&'), QLatin1String("&&"));
}

} // namespace

PreferencesDialog::PreferencesDialog(const QVector<QWidget *> &pages, QWidget *parent)
    : QDialog(parent)
    , pages(pages)
{
    setWindowTitle(tr("Preferences"));
    setWindowFlag(Qt::WindowContextHelpButtonHint, false);
    auto *layout = new QVBoxLayout(this);
    auto *tabs = new QTabWidget;
    QSize pageSize;
    for (QWidget *page : pages) {
        pageSize = pageSize.expandedTo(formSize(*page));
        tabs->addTab(page, tabText(*page));
    }
    layout->addWidget(tabs);
    if (pages.isEmpty()) {
        tabs->hide();
        layout->addWidget(new QLabel(tr("No loaded plug-in has preferences.")));
    }
    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    layout->addWidget(buttons);
    resizeToPages(pageSize, *tabs);
}

/// Pages that can be scrolled ask for little by themselves; they are shown whole where the screen has the room.
void PreferencesDialog::resizeToPages(const QSize &pageSize, const QTabWidget &tabs)
{
    const QSize around = sizeHint() - tabs.sizeHint();
    const QSize tabFrame(0, tabs.tabBar()->sizeHint().height());
    const QSize wanted = sizeHint().expandedTo(pageSize + tabFrame + around);
    resize(wanted.boundedTo(QGuiApplication::primaryScreen()->availableSize() * kShareOfScreen));
}

void PreferencesDialog::accept()
{
    for (QWidget *page : qAsConst(pages)) {
        if (page->metaObject()->indexOfMethod("onSavePrefs()") >= 0)
            QMetaObject::invokeMethod(page, "onSavePrefs", Qt::DirectConnection);
    }
    QDialog::accept();
}

} // namespace Viewer
