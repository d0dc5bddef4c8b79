#include "preferencesdialog.h"

#include "plugincontributions.h"

#include <QDialogButtonBox>
#include <QGuiApplication>
#include <QLabel>
#include <QScreen>
#include <QScrollArea>
#include <QScrollBar>
#include <QTabWidget>
#include <QVBoxLayout>

#include <algorithm>

namespace Viewer {

namespace {

constexpr double kShareOfScreen = 0.9;

/// Wide enough for all that \a area holds, with its scroll bar.
int wholeWidth(const QScrollArea &area)
{
    return area.widget()->minimumSizeHint().width() + area.verticalScrollBar()->sizeHint().width() +
           2 * area.frameWidth();
}

/// The size that \a page would like: what its form was drawn in, or more where the fonts are larger than there.
QSize wantedSize(const QWidget &page)
{
    QSize wanted = page.sizeHint();
    if (page.testAttribute(Qt::WA_Resized))
        wanted = wanted.expandedTo(page.size());
    const QMargins margins = page.layout() ? page.layout()->contentsMargins() : QMargins();
    const QList<QScrollArea *> areas = page.findChildren<QScrollArea *>();
    for (const QScrollArea *area : areas) {
        if (area->widget())
            wanted.setWidth(std::max(wanted.width(), wholeWidth(*area) + margins.left() + margins.right()));
    }
    return wanted;
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
    QSize wanted;
    QSize hint;
    for (QWidget *page : pages) {
        wanted = wanted.expandedTo(wantedSize(*page));
        hint = hint.expandedTo(page->sizeHint());
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
    // Pages that can be scrolled ask for little by themselves; they are shown whole where the screen has the room.
    resize((sizeHint() + wanted - hint).boundedTo(QGuiApplication::primaryScreen()->availableSize() * kShareOfScreen));
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
