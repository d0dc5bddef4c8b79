#include "projectdialogs.h"

#include "appearance/failurereport.h"
#include "project.h"
#include "projectcontroller.h"
#include "sources/recentsources.h"
#include "sources/sources.h"

#include <QDGui/application.h>

#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QMessageBox>
#include <QSettings>

namespace Viewer {

namespace {

const QString kRecentKey = QStringLiteral("Viewer/RecentProjects");

QString projectFilter()
{
    return ProjectDialogs::tr("Projects (*%1)").arg(kProjectSuffix);
}

} // namespace

ProjectDialogs::ProjectDialogs(ProjectController *project, QWidget *window)
    : QObject(window)
    , project(project)
    , window(window)
    , recent(new RecentSources(Korvane::Application::instance()->settings(), kRecentKey, this))
{
    connect(recent, &RecentSources::chosen, this, &ProjectDialogs::openFile);
}

QString ProjectDialogs::startFolder() const
{
    const QString last = project->fileName().isEmpty() ? recent->entries().value(0) : project->fileName();
    return last.isEmpty() ? QDir::homePath() : QFileInfo(last).absolutePath();
}

void ProjectDialogs::open()
{
    const QString fileName = QFileDialog::getOpenFileName(window, tr("Open Project"), startFolder(),
                                                          projectFilter() + QStringLiteral(";;") + tr("All files (*)"));
    if (!fileName.isEmpty())
        openFile(fileName);
}

void ProjectDialogs::openFile(const QString &fileName)
{
    if (!mayDiscard())
        return;
    QStringList warnings;
    const QString error = project->open(Sources::normalized(fileName), &warnings);
    if (!error.isEmpty()) {
        recent->remove(fileName);
        FailureReport::show(window, {error}, 1);
        return;
    }
    recent->add(Sources::normalized(fileName));
    FailureReport::show(window, warnings, warnings.size());
}

bool ProjectDialogs::save()
{
    return project->fileName().isEmpty() ? saveAs() : saveTo(project->fileName());
}

bool ProjectDialogs::saveAs()
{
    QFileDialog dialog(window, tr("Save Project"), startFolder(), projectFilter());
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setDefaultSuffix(kProjectSuffix.mid(1));
    if (!project->fileName().isEmpty())
        dialog.selectFile(QFileInfo(project->fileName()).fileName());
    return dialog.exec() == QDialog::Accepted && saveTo(dialog.selectedFiles().value(0));
}

bool ProjectDialogs::saveTo(const QString &fileName)
{
    const QString error = project->save(Sources::normalized(fileName));
    if (!error.isEmpty()) {
        FailureReport::show(window, {error}, 1);
        return false;
    }
    recent->add(Sources::normalized(fileName));
    return true;
}

bool ProjectDialogs::mayDiscard()
{
    // Images that were merely looked at are no project that somebody misses.
    const bool hasEdits = project->hasEdits();
    if (project->fileName().isEmpty() ? !hasEdits : !project->isModified())
        return true;
    const QString name = QFileInfo(project->fileName()).fileName();
    const QString question = name.isEmpty() ? tr("Settings of layers were changed. Save them as a project?")
                                            : tr("The project %1 was changed. Save the changes?").arg(name);
    const QMessageBox::StandardButton answer =
        QMessageBox::question(window, tr("Project"), question,
                              QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel, QMessageBox::Save);
    if (answer == QMessageBox::Save)
        return save();
    return answer == QMessageBox::Discard;
}

} // namespace Viewer
