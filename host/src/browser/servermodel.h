#pragma once

#include "serverlisting.h"

#include <QAbstractItemModel>
#include <QIcon>

#include <memory>

namespace Korvane::Gui {

/// The folders and images below one folder of a web server, as far as they were asked for. A folder that was not read
/// yet looks as if it had something in it; when a view opens it, folderWanted() asks for its list.
class ServerModel : public QAbstractItemModel
{
    Q_OBJECT

public:
    enum Column { NameColumn, SizeColumn, ModifiedColumn, ColumnCount };
    /// Numbers and dates to sort by; names are sorted already.
    static constexpr int kSortRole = Qt::UserRole;

    explicit ServerModel(QObject *parent = nullptr);
    ~ServerModel() override;

    /// Begins anew with \a listing of \a folder (http or https, with a slash at its end).
    void setRoot(const QUrl &folder, const ServerListing &listing);
    void clear();
    /// Fills the folder \a index.
    void setListing(const QModelIndex &index, const ServerListing &listing);
    /// The folder \a index could not be read; it can be asked for again.
    void setUnread(const QModelIndex &index);

    QUrl getRoot() const { return rootUrl; }
    bool isFolder(const QModelIndex &index) const;
    /// Where the folder \a index is listed.
    QUrl folderUrl(const QModelIndex &index) const;
    /// The xrvp or xrvps address, without credentials; a folder's ends with a slash.
    QString address(const QModelIndex &index) const;

    QModelIndex index(int row, int column, const QModelIndex &parent = QModelIndex()) const override;
    QModelIndex parent(const QModelIndex &index) const override;
    int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    int columnCount(const QModelIndex &parent = QModelIndex()) const override;
    bool hasChildren(const QModelIndex &parent = QModelIndex()) const override;
    bool canFetchMore(const QModelIndex &parent) const override;
    void fetchMore(const QModelIndex &parent) override;
    QVariant data(const QModelIndex &index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;

Q_SIGNALS:
    void folderWanted(const QModelIndex &index);

private:
    struct Node;
    Node *nodeOf(const QModelIndex &index) const;
    QByteArray pathOf(const Node &node) const;
    QVariant text(const Node &node, int column) const;

    QUrl rootUrl;
    std::unique_ptr<Node> root;
    QIcon folderIcon, imageIcon;
};

} // namespace Korvane::Gui
