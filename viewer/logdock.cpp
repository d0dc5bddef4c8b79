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
#include <QTreeView>

#include <algorithm>

namespace Viewer {

using Korvane::Application;

LogDock::LogDock(QWidget *parent)
    : QDockWidget(tr("Log"), parent)
    , model(new LogModel(this))
    , table(new QTreeView)
    , levels(new QComboBox)
{
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
    table->setModel(model);
    table->setRootIsDecorated(false);
    table->setUniformRowHeights(true);
    table->setSelectionMode(QAbstractItemView::ExtendedSelection);
    table->setAccessibleName(tr("Log"));
    table->header()->setSectionResizeMode(LogModel::TimeColumn, QHeaderView::ResizeToContents);
    table->header()->setSectionResizeMode(LogModel::LevelColumn, QHeaderView::ResizeToContents);
    connect(model, &QAbstractItemModel::rowsAboutToBeInserted, this, &LogDock::onRowsAboutToBeInserted);
    connect(model, &QAbstractItemModel::rowsInserted, this, &LogDock::onRowsInserted);

    auto *copy = new QAction(tr("&Copy"), table);
    copy->setShortcut(QKeySequence::Copy);
    copy->setShortcutContext(Qt::WidgetWithChildrenShortcut);
    connect(copy, &QAction::triggered, this, &LogDock::copySelection);
    table->addAction(copy);
    table->setContextMenuPolicy(Qt::ActionsContextMenu);
}

QWidget *LogDock::makeBar()
{
    auto *bar = new QWidget;
    auto *layout = new QHBoxLayout(bar);
    layout->setContentsMargins(6, 3, 6, 3);
    auto *label = new QLabel(tr("&Keep from:"));
    label->setBuddy(levels);
    auto *clear = new QPushButton(tr("C&lear"));
    connect(clear, &QPushButton::clicked, model, &LogModel::clear);
    layout->addWidget(label);
    layout->addWidget(levels);
    layout->addStretch();
    layout->addWidget(clear);
    return bar;
}

void LogDock::fillLevels()
{
    for (int level = Application::LogDebug; level <= Application::LogFatal; ++level)
        levels->addItem(Application::getLogLevelName(static_cast<Application::LogLevel>(level)), level);
    levels->setCurrentIndex(Application::getLogLevel());
    levels->setToolTip(tr("The least severe messages that are logged"));
    connect(levels, QOverload<int>::of(&QComboBox::currentIndexChanged), this,
            [](int level) { Application::setLogLevel(static_cast<Application::LogLevel>(level)); });
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

void LogDock::copySelection()
{
    QModelIndexList rows = table->selectionModel()->selectedRows();
    std::sort(rows.begin(), rows.end());
    QStringList lines;
    for (const QModelIndex &row : qAsConst(rows))
        lines.append(model->lineText(row.row()));
    QApplication::clipboard()->setText(lines.join(QLatin1Char('\n')));
}

} // namespace Viewer
