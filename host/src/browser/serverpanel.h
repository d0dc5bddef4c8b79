#pragma once

#include "listingclient.h"

#include <QPersistentModelIndex>
#include <QWidget>

#include <deque>

class QLabel;
class QModelIndex;
class QSortFilterProxyModel;
class QToolButton;

namespace Korvane::Gui {

class ServerModel;
class ServerTree;

/// Shows the folders and images of a web server as a tree that fills as it is opened.
class ServerPanel : public QWidget
{
    Q_OBJECT

public:
    explicit ServerPanel(QWidget *parent = nullptr);
    ~ServerPanel() override;

    /// Asks for the folder that \a address names or lies in.
    void browse(const ServerAddress &address);
    void goUp();
    void reload();
    /// Gives up what is under way.
    void stop();
    /// Puts the keyboard into the tree.
    void focusTree();

Q_SIGNALS:
    /// A folder that has something in it was listed at the root.
    void rootShown();
    /// An entry became the current one; \a address is without credentials.
    void addressSelected(const QString &address);
    /// An image was double-clicked, or Return pressed on it.
    void addressActivated(const QString &address);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    QWidget *makeBar();
    void setUpTree();
    void ask(const QUrl &folder, const QString &credentials);
    void askNext();
    void onFolderWanted(const QModelIndex &index);
    void onListed(const QUrl &folder, const ServerListing &listing);
    void onFailed(const QString &sentence);
    void onCurrentChanged(const QModelIndex &index);
    void activate(const QModelIndex &index);
    void giveBack(const QModelIndex &index);
    void showRoot(const QUrl &folder, const ServerListing &listing);
    void tellContent(const ServerListing &listing);
    void setStatus(const QString &text);
    void updateBar();

    ListingClient client;
    ServerModel *model = nullptr;
    QSortFilterProxyModel *sorted = nullptr;
    ServerTree *tree = nullptr;
    QToolButton *upButton = nullptr;
    QToolButton *reloadButton = nullptr;
    QToolButton *stopButton = nullptr;
    QLabel *placeLabel = nullptr;
    QLabel *statusLabel = nullptr;

    QUrl place;          ///< the folder shown, or asked for, at the root
    QUrl asked;          ///< what is asked for now
    QString credentials; ///< sent with it
    bool asksForRoot = false;
    std::deque<QPersistentModelIndex> wanted; ///< folders of the model to be read, the first one being asked for
};

} // namespace Korvane::Gui
