#include "servermodel.h"

#include "serveraddress.h"

#include <QDGui/stringutil.h>

#include <QApplication>
#include <QLocale>
#include <QStyle>

#include <vector>

namespace Korvane::Gui {

struct ServerModel::Node
{
    enum class State { Unread, Reading, Read };

    ServerListing::Entry entry;
    Node *parent = nullptr;
    int row = 0;
    State state = State::Unread;
    std::vector<std::unique_ptr<Node>> children;

    void fill(const ServerListing &listing)
    {
        children.reserve(static_cast<size_t>(listing.entries.size()));
        for (const ServerListing::Entry &found : listing.entries) {
            auto child = std::make_unique<Node>();
            child->entry = found;
            child->parent = this;
            child->row = static_cast<int>(children.size());
            children.push_back(std::move(child));
        }
        state = State::Read;
    }
};

namespace {

QString sizeText(qint64 bytes)
{
    constexpr qint64 kKilobyte = 1024;
    const char *const format = bytes < kKilobyte ? "%.0f" : "%.1f";
    return bytes < 0 ? QString() : Util::String::formatFileSize(static_cast<quint64>(bytes), format);
}

/// To the minute, which is all that most servers tell.
QString dateText(const QDateTime &date)
{
    const QLocale locale;
    return date.isValid() ? locale.toString(date.date(), QLocale::ShortFormat) + QLatin1Char(' ') +
                                locale.toString(date.time(), QStringLiteral("HH:mm"))
                          : QString();
}

/// As a person would write it where every client understands that, else as it goes over the wire.
QString readablePath(const QByteArray &encoded)
{
    const QString decoded = QUrl::fromPercentEncoding(encoded);
    const auto isPlain = [](QChar c) {
        return c == QLatin1Char(' ') ||
               (c.unicode() < 0x80 && (c.isLetterOrNumber() || QStringLiteral("-._~!$&'()+,;=:@/").contains(c)));
    };
    const bool canBeDecoded = std::all_of(decoded.cbegin(), decoded.cend(), isPlain) && decoded.trimmed() == decoded;
    return canBeDecoded ? decoded : QString::fromLatin1(encoded);
}

} // namespace

ServerModel::ServerModel(QObject *parent)
    : QAbstractItemModel(parent)
    , root(std::make_unique<Node>())
    , folderIcon(QApplication::style()->standardIcon(QStyle::SP_DirIcon))
    , imageIcon(QApplication::style()->standardIcon(QStyle::SP_FileIcon))
{
    root->state = Node::State::Read;
}

ServerModel::~ServerModel() = default;

void ServerModel::setRoot(const QUrl &folder, const ServerListing &listing)
{
    beginResetModel();
    rootUrl = folder;
    root = std::make_unique<Node>();
    root->fill(listing);
    endResetModel();
}

void ServerModel::clear()
{
    setRoot(QUrl(), ServerListing());
}

void ServerModel::setListing(const QModelIndex &index, const ServerListing &listing)
{
    Node *node = nodeOf(index);
    if (!isFolder(index) || !node->children.empty())
        return;
    if (listing.entries.isEmpty()) {
        node->state = Node::State::Read;
        Q_EMIT dataChanged(index, index);
        return;
    }
    beginInsertRows(index, 0, listing.entries.size() - 1);
    node->fill(listing);
    endInsertRows();
}

void ServerModel::setUnread(const QModelIndex &index)
{
    Node *node = nodeOf(index);
    if (node != root.get() && node->state == Node::State::Reading)
        node->state = Node::State::Unread;
}

ServerModel::Node *ServerModel::nodeOf(const QModelIndex &index) const
{
    return index.isValid() ? static_cast<Node *>(index.internalPointer()) : root.get();
}

bool ServerModel::isFolder(const QModelIndex &index) const
{
    return index.isValid() && nodeOf(index)->entry.isFolder;
}

QByteArray ServerModel::pathOf(const Node &node) const
{
    QByteArray path;
    for (const Node *at = &node; at->parent; at = at->parent)
        path.prepend(at->entry.pathPart + (at->entry.isFolder ? "/" : ""));
    return encodedPath(rootUrl.path(QUrl::FullyEncoded)) + path;
}

QUrl ServerModel::folderUrl(const QModelIndex &index) const
{
    QUrl url = rootUrl;
    url.setPath(QString::fromLatin1(pathOf(*nodeOf(index))), QUrl::StrictMode);
    return url;
}

QString ServerModel::address(const QModelIndex &index) const
{
    return ServerAddress::onServer(rootUrl, readablePath(pathOf(*nodeOf(index)))).toString();
}

QModelIndex ServerModel::index(int row, int column, const QModelIndex &parent) const
{
    if (!hasIndex(row, column, parent))
        return QModelIndex();
    return createIndex(row, column, nodeOf(parent)->children[static_cast<size_t>(row)].get());
}

QModelIndex ServerModel::parent(const QModelIndex &index) const
{
    Node *above = index.isValid() ? nodeOf(index)->parent : nullptr;
    return above && above != root.get() ? createIndex(above->row, 0, above) : QModelIndex();
}

int ServerModel::rowCount(const QModelIndex &parent) const
{
    return parent.column() > 0 ? 0 : static_cast<int>(nodeOf(parent)->children.size());
}

int ServerModel::columnCount(const QModelIndex &) const
{
    return ColumnCount;
}

bool ServerModel::hasChildren(const QModelIndex &parent) const
{
    const Node *node = nodeOf(parent);
    return parent.column() <= 0 && (!node->children.empty() || (isFolder(parent) && node->state != Node::State::Read));
}

bool ServerModel::canFetchMore(const QModelIndex &parent) const
{
    return isFolder(parent) && nodeOf(parent)->state == Node::State::Unread;
}

void ServerModel::fetchMore(const QModelIndex &parent)
{
    if (!canFetchMore(parent))
        return;
    nodeOf(parent)->state = Node::State::Reading;
    Q_EMIT folderWanted(parent);
}

QVariant ServerModel::text(const Node &node, int column) const
{
    switch (column) {
    case NameColumn:
        return node.entry.name;
    case SizeColumn:
        return sizeText(node.entry.size);
    default:
        return dateText(node.entry.modified);
    }
}

QVariant ServerModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid())
        return QVariant();
    const Node &node = *nodeOf(index);
    switch (role) {
    case Qt::DisplayRole:
        return text(node, index.column());
    case Qt::ToolTipRole:
        return index.column() == NameColumn ? address(index) : QVariant();
    case Qt::DecorationRole:
        return index.column() == NameColumn ? QVariant(node.entry.isFolder ? folderIcon : imageIcon) : QVariant();
    case Qt::TextAlignmentRole:
        return int((index.column() == SizeColumn ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignVCenter);
    case kSortRole:
        if (index.column() == NameColumn)
            return node.row;
        return index.column() == SizeColumn ? QVariant(node.entry.size) : QVariant(node.entry.modified);
    default:
        return QVariant();
    }
}

QVariant ServerModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return QVariant();
    switch (section) {
    case NameColumn:
        return tr("Name");
    case SizeColumn:
        return tr("Size");
    default:
        return tr("Changed");
    }
}

Qt::ItemFlags ServerModel::flags(const QModelIndex &index) const
{
    Qt::ItemFlags flags = QAbstractItemModel::flags(index);
    if (index.isValid() && !isFolder(index))
        flags |= Qt::ItemNeverHasChildren;
    return flags;
}

} // namespace Korvane::Gui
