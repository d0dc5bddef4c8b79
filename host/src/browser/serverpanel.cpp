#include "serverpanel.h"

#include "servercredentials.h"
#include "servermodel.h"
#include "servertree.h"

#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QSortFilterProxyModel>
#include <QStyle>
#include <QToolButton>
#include <QVBoxLayout>

namespace Korvane::Gui {

namespace {

/// Folders stay above images, however the list is sorted.
class FoldersFirst : public QSortFilterProxyModel
{
public:
    using QSortFilterProxyModel::QSortFilterProxyModel;

protected:
    bool lessThan(const QModelIndex &left, const QModelIndex &right) const override
    {
        const auto *server = static_cast<const ServerModel *>(sourceModel());
        if (server->isFolder(left) != server->isFolder(right))
            return server->isFolder(left) == (sortOrder() == Qt::AscendingOrder);
        return QSortFilterProxyModel::lessThan(left, right);
    }
};

QUrl folderAbove(const QUrl &folder)
{
    return folder.resolved(QUrl(QStringLiteral("..")));
}

bool isTopFolder(const QUrl &folder)
{
    return folder.path().size() <= 1;
}

QToolButton *makeButton(QWidget *parent, QStyle::StandardPixmap icon, const QString &tip, const char *name)
{
    auto *button = new QToolButton(parent);
    button->setObjectName(QLatin1String(name));
    button->setIcon(parent->style()->standardIcon(icon));
    button->setToolTip(tip);
    button->setAccessibleName(tip);
    button->setAutoRaise(true);
    button->setFocusPolicy(Qt::TabFocus);
    return button;
}

} // namespace

ServerPanel::ServerPanel(QWidget *parent)
    : QWidget(parent)
    , model(new ServerModel(this))
    , sorted(new FoldersFirst(this))
    , tree(new ServerTree(this))
    , statusLabel(new QLabel(this))
{
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(makeBar());
    layout->addWidget(tree, 1);
    layout->addWidget(statusLabel);
    statusLabel->setObjectName(QStringLiteral("statusLabel"));
    statusLabel->setWordWrap(true);
    statusLabel->hide();
    statusLabel->setTextFormat(Qt::PlainText);
    setUpTree();
    connect(&client, &ListingClient::listed, this, &ServerPanel::onListed);
    connect(&client, &ListingClient::failed, this, &ServerPanel::onFailed);
    connect(model, &ServerModel::folderWanted, this, &ServerPanel::onFolderWanted);
    updateBar();
}

ServerPanel::~ServerPanel()
{
    client.disconnect(this);
}

QWidget *ServerPanel::makeBar()
{
    auto *bar = new QWidget(this);
    upButton = makeButton(bar, QStyle::SP_FileDialogToParent, tr("Show the folder above"), "upButton");
    reloadButton = makeButton(bar, QStyle::SP_BrowserReload, tr("Read the list again"), "reloadButton");
    stopButton = makeButton(bar, QStyle::SP_BrowserStop, tr("Stop reading"), "stopButton");
    placeLabel = new QLabel(bar);
    placeLabel->setObjectName(QStringLiteral("placeLabel"));
    placeLabel->setTextFormat(Qt::PlainText);
    placeLabel->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    auto *layout = new QHBoxLayout(bar);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(2);
    for (QToolButton *button : {upButton, reloadButton, stopButton})
        layout->addWidget(button);
    layout->addSpacing(4);
    layout->addWidget(placeLabel, 1);
    connect(upButton, &QToolButton::clicked, this, &ServerPanel::goUp);
    connect(reloadButton, &QToolButton::clicked, this, &ServerPanel::reload);
    connect(stopButton, &QToolButton::clicked, this, &ServerPanel::stop);
    return bar;
}

void ServerPanel::setUpTree()
{
    sorted->setSourceModel(model);
    sorted->setSortRole(ServerModel::kSortRole);
    tree->setObjectName(QStringLiteral("serverTree"));
    tree->setModel(sorted);
    tree->setUniformRowHeights(true);
    tree->setAllColumnsShowFocus(true);
    tree->setSortingEnabled(true);
    tree->sortByColumn(ServerModel::NameColumn, Qt::AscendingOrder);
    tree->setPlaceholder(tr("Enter the address of a server or of a folder on it, such as xrvp://server/folder/, and "
                            "choose Browse to see its images."));
    QHeaderView *header = tree->header();
    header->setStretchLastSection(false);
    header->setSectionResizeMode(ServerModel::NameColumn, QHeaderView::Stretch);
    const int digit = fontMetrics().horizontalAdvance(QLatin1Char('0'));
    header->resizeSection(ServerModel::SizeColumn, 12 * digit);
    header->resizeSection(ServerModel::ModifiedColumn, 22 * digit);
    tree->installEventFilter(this);
    connect(tree, &QTreeView::doubleClicked, this, [this](const QModelIndex &index) {
        if (!model->isFolder(sorted->mapToSource(index))) // The tree opens and closes folders itself.
            activate(index);
    });
    connect(tree->selectionModel(), &QItemSelectionModel::currentChanged, this, &ServerPanel::onCurrentChanged);
}

bool ServerPanel::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == tree && event->type() == QEvent::KeyPress) {
        const int key = static_cast<QKeyEvent *>(event)->key();
        if ((key == Qt::Key_Return || key == Qt::Key_Enter) && tree->currentIndex().isValid()) {
            activate(tree->currentIndex());
            return true;
        }
        if (key == Qt::Key_Backspace && upButton->isEnabled()) {
            goUp();
            return true;
        }
    }
    return QWidget::eventFilter(watched, event);
}

void ServerPanel::activate(const QModelIndex &index)
{
    const QModelIndex source = sorted->mapToSource(index.siblingAtColumn(0));
    if (model->isFolder(source))
        tree->setExpanded(index.siblingAtColumn(0), !tree->isExpanded(index.siblingAtColumn(0)));
    else
        Q_EMIT addressActivated(model->address(source));
}

void ServerPanel::onCurrentChanged(const QModelIndex &index)
{
    if (index.isValid())
        Q_EMIT addressSelected(model->address(sorted->mapToSource(index.siblingAtColumn(0))));
}

void ServerPanel::browse(const ServerAddress &address)
{
    stop();
    place = address.folderUrl();
    model->clear();
    asksForRoot = true;
    ask(place, address.hasCredentials() ? address.getCredentials() : ServerCredentials::of(place));
}

void ServerPanel::goUp()
{
    if (place.isEmpty() || isTopFolder(place))
        return;
    browse(ServerAddress(ServerAddress::onServer(place, folderAbove(place).path(QUrl::FullyEncoded)).toString()));
}

void ServerPanel::reload()
{
    if (!place.isEmpty())
        browse(ServerAddress(ServerAddress::onServer(place, place.path(QUrl::FullyEncoded)).toString()));
}

void ServerPanel::stop()
{
    if (!client.isBusy())
        return;
    client.cancel();
    asksForRoot = false;
    const std::deque<QPersistentModelIndex> given = std::move(wanted);
    wanted.clear();
    for (const QPersistentModelIndex &index : given)
        giveBack(index);
    setStatus(tr("Stopped."));
    updateBar();
}

void ServerPanel::focusTree()
{
    tree->setFocus();
}

void ServerPanel::ask(const QUrl &folder, const QString &user)
{
    asked = folder;
    credentials = user;
    setStatus(tr("Reading the list of %1 …").arg(folder.path()));
    client.fetch(folder, user);
    updateBar();
}

void ServerPanel::onFolderWanted(const QModelIndex &index)
{
    wanted.emplace_back(index);
    if (!client.isBusy())
        askNext();
}

void ServerPanel::askNext()
{
    while (!wanted.empty() && !wanted.front().isValid())
        wanted.pop_front();
    if (wanted.empty())
        return;
    const QUrl folder = model->folderUrl(wanted.front());
    ask(folder, ServerCredentials::of(folder));
}

void ServerPanel::onListed(const QUrl &folder, const ServerListing &listing)
{
    if (folder.host() == asked.host() && folder.scheme() == asked.scheme() && folder.port() == asked.port())
        ServerCredentials::remember(folder, credentials);
    if (asksForRoot) {
        asksForRoot = false;
        showRoot(folder, listing);
    } else if (!wanted.empty()) {
        const QPersistentModelIndex index = wanted.front();
        wanted.pop_front();
        model->setListing(index, listing);
        tellContent(listing);
    }
    askNext();
    updateBar();
}

void ServerPanel::showRoot(const QUrl &folder, const ServerListing &listing)
{
    place = folder;
    model->setRoot(folder, listing);
    tellContent(listing);
    if (!listing.entries.isEmpty())
        Q_EMIT rootShown();
}

void ServerPanel::tellContent(const ServerListing &listing)
{
    if (!listing.isListing)
        setStatus(
            tr("The server does not list this folder. The address of an image in it can be entered all the same."));
    else if (listing.entries.isEmpty())
        setStatus(tr("There are no folders and no images in this folder."));
    else if (listing.isCutOff)
        setStatus(tr("The list is too long; only its first %n entries are shown.", nullptr, listing.entries.size()));
    else
        setStatus(QString());
}

void ServerPanel::onFailed(const QString &sentence)
{
    if (asksForRoot) {
        asksForRoot = false;
    } else if (!wanted.empty()) {
        const QPersistentModelIndex index = wanted.front();
        wanted.pop_front();
        giveBack(index);
    }
    askNext();
    if (!client.isBusy())
        setStatus(sentence);
    updateBar();
}

/// The folder can be opened, and asked for, again.
void ServerPanel::giveBack(const QModelIndex &index)
{
    tree->collapse(sorted->mapFromSource(index));
    model->setUnread(index);
}

void ServerPanel::setStatus(const QString &text)
{
    statusLabel->setText(text);
    // Where there is room for it, in the middle; one line below the tree otherwise.
    const bool isEmpty = model->rowCount() == 0;
    if (!text.isEmpty() || !isEmpty)
        tree->setPlaceholder(text);
    statusLabel->setVisible(!isEmpty && !text.isEmpty());
}

void ServerPanel::updateBar()
{
    placeLabel->setText(place.isEmpty() ? QString() : ServerAddress::onServer(place, place.path()).toString());
    // Encoded: a tool tip would take "<" for the beginning of a tag.
    placeLabel->setToolTip(place.isEmpty() ? QString()
                                           : ServerAddress::onServer(place, place.path(QUrl::FullyEncoded)).toString());
    upButton->setEnabled(!place.isEmpty() && !isTopFolder(place));
    reloadButton->setEnabled(!place.isEmpty() && !client.isBusy());
    stopButton->setEnabled(client.isBusy());
}

} // namespace Korvane::Gui
