#include "logdock.h"

#include "logmodel.h"

#include <QDGui/application.h>

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QScrollBar>
#include <QSortFilterProxyModel>
#include <QTreeView>

#include <algorithm>

namespace Viewer {

using Korvane::Application;

namespace {

int widestLevel(const QFontMetrics &metrics)
{
    int widest = 0;
    for (int level = Application::LogTrace; level <= Application::LogFatal; ++level) {
        const QString name = Application::getLogLevelName(static_cast<Application::LogLevel>(level));
        widest = qMax(widest, metrics.horizontalAdvance(name));
    }
    return widest;
}

} // namespace

/// The lines of a LogModel that are at least as severe as a level.
class LogFilter : public QSortFilterProxyModel
{
public:
    using QSortFilterProxyModel::QSortFilterProxyModel;

    void setLeastLevel(Application::LogLevel level)
    {
        leastLevel = level;
        invalidateFilter();
    }

protected:
    bool filterAcceptsRow(int row, const QModelIndex &parent) const override
    {
        return sourceModel()->index(row, LogModel::LevelColumn, parent).data(LogModel::LevelRole).toInt() >= leastLevel;
    }

private:
    Application::LogLevel leastLevel = Application::LogTrace;
};

LogDock::LogDock(QWidget *parent)
    : QDockWidget(tr("Log"), parent)
    , model(new LogModel(this))
    , shown(new LogFilter(this))
    , table(new QTreeView)
    , levels(new QComboBox)
{
    toggleViewAction()->setShortcut(QStringLiteral("Ctrl+Shift+L"));
    setObjectName(QStringLiteral("LogDock"));
    makeTable();
    fillLevels();

    auto *content = new QWidget;
    auto *layout = new QVBoxLayout(content);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(table);
    layout->addWidget(makeBar());
    setWidget(content);
    // What came while the dock was hidden has scrolled nothing.
    connect(this, &QDockWidget::visibilityChanged, table, [this](bool visible) {
        if (visible && isAtEnd)
            table->scrollToBottom();
    });
}

void LogDock::makeTable()
{
    shown->setSourceModel(model);
    table->setModel(shown);
    table->setRootIsDecorated(false);
    table->setUniformRowHeights(true);
    table->setSelectionMode(QAbstractItemView::ExtendedSelection);
    table->setAccessibleName(tr("Log"));
    // Columns that follow their contents would be measured anew with every line.
    const QFontMetrics metrics(table->font());
    const int margin = 3 * metrics.averageCharWidth();
    table->setColumnWidth(LogModel::TimeColumn, metrics.horizontalAdvance(QStringLiteral("00:00:00.000")) + margin);
    table->setColumnWidth(LogModel::LevelColumn, widestLevel(metrics) + margin);
    connect(shown, &QAbstractItemModel::rowsAboutToBeInserted, this, &LogDock::onRowsAboutToBeInserted);
    connect(shown, &QAbstractItemModel::rowsInserted, this, &LogDock::onRowsInserted);

    auto *copy = new QAction(tr("&Copy"), table);
    copy->setShortcut(QKeySequence::Copy);
    copy->setShortcutContext(Qt::WidgetWithChildrenShortcut);
    connect(copy, &QAction::triggered, this, &LogDock::copyLines);
    table->addAction(copy);
    table->setContextMenuPolicy(Qt::ActionsContextMenu);
}

QWidget *LogDock::makeBar()
{
    auto *bar = new QWidget;
    auto *layout = new QHBoxLayout(bar);
    layout->setContentsMargins(6, 3, 6, 3);
    auto *label = new QLabel(tr("Fro&m level:"));
    label->setBuddy(levels);
    auto *copy = new QPushButton(tr("&Copy"));
    copy->setToolTip(tr("Copies the selected lines, or all that are shown"));
    connect(copy, &QPushButton::clicked, this, &LogDock::copyLines);
    auto *clear = new QPushButton(tr("C&lear"));
    connect(clear, &QPushButton::clicked, model, &LogModel::clear);
    layout->addWidget(label);
    layout->addWidget(levels);
    layout->addStretch();
    layout->addWidget(copy);
    layout->addWidget(clear);
    return bar;
}

void LogDock::fillLevels()
{
    for (int level = Application::LogTrace; level <= Application::LogFatal; ++level)
        levels->addItem(Application::getLogLevelName(static_cast<Application::LogLevel>(level)), level);
    levels->setCurrentIndex(Application::getLogLevel());
    shown->setLeastLevel(Application::getLogLevel());
    levels->setToolTip(tr("The least severe messages that are shown, and logged from now on"));
    connect(levels, QOverload<int>::of(&QComboBox::currentIndexChanged), this, &LogDock::setLevel);
}

void LogDock::setLevel(int level)
{
    const auto logLevel = static_cast<Application::LogLevel>(level);
    Application::setLogLevel(logLevel);
    shown->setLeastLevel(logLevel);
    table->scrollToBottom();
}

void LogDock::onRowsAboutToBeInserted()
{
    // Someone who scrolled back to read stays there.
    const QScrollBar *bar = table->verticalScrollBar();
    isAtEnd = bar->value() >= bar->maximum();
}

void LogDock::onRowsInserted()
{
    if (isAtEnd)
        table->scrollToBottom();
}

/// The selected lines, or without a selection all that are shown.
void LogDock::copyLines()
{
    QModelIndexList rows = table->selectionModel()->selectedRows();
    if (rows.isEmpty()) {
        for (int row = 0; row < shown->rowCount(); ++row)
            rows.append(shown->index(row, 0));
    }
    std::sort(rows.begin(), rows.end());
    QStringList lines;
    for (const QModelIndex &row : qAsConst(rows))
        lines.append(model->lineText(shown->mapToSource(row).row()));
    QApplication::clipboard()->setText(lines.join(QLatin1Char('\n')));
}

} // namespace Viewer
