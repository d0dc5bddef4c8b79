#pragma once

#include <QDialog>
#include <QVector>

namespace Viewer {

/// Holds the preference pages of the plug-ins. OK calls every page's slot onSavePrefs(), Cancel calls nothing.
class PreferencesDialog : public QDialog
{
    Q_OBJECT

public:
    /// Takes over \a pages.
    explicit PreferencesDialog(const QVector<QWidget *> &pages, QWidget *parent);

    void accept() override;

private:
    QVector<QWidget *> pages;
};

} // namespace Viewer
