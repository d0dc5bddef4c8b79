#include "preferencesdialog.h"

#include "plugincontributions.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QTabWidget>
#include <QVBoxLayout>

namespace Viewer {

PreferencesDialog::PreferencesDialog(const QVector<QWidget *> &pages, QWidget *parent)
    : QDialog(parent)
    , pages(pages)
{
    setWindowTitle(tr("Preferences"));
    setWindowFlag(Qt::WindowContextHelpButtonHint, false);
    auto *layout = new QVBoxLayout(this);
    auto *tabs = new QTabWidget;
    for (QWidget *page : pages)
        tabs->addTab(page, PluginContributions::titleOf(*page));
    layout->addWidget(tabs);
    if (pages.isEmpty()) {
        tabs->hide();
        layout->addWidget(new QLabel(tr("No loaded plug-in has preferences.")));
    }
    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    layout->addWidget(buttons);
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
