#pragma once

#include <QDGui/qdguiglobal.h>

#include <QDialog>

#include <memory>

namespace Korvane::Gui {

/// Dialog in which a person enters or picks the address of an image stream. Addresses used before are offered again,
/// and servers that list their folders can be browsed. User names and passwords in addresses are never stored or shown
/// in a list. GUI thread, which it never holds up.
class QDGUI_EXPORT XRVPBrowser : public QDialog
{
    Q_OBJECT

public:
    enum BrowserProtocol { XRVP = 0 };

    explicit XRVPBrowser(QWidget *parent = nullptr, BrowserProtocol protocol = XRVP);
    ~XRVPBrowser() override;

    /// Shows the dialog modally and returns the chosen address, or a null string when cancelled.
    static QString getXrvpUrl(QWidget *parent, BrowserProtocol protocol);

    /// The address to be opened: as entered, without blanks around it. One that has no user name and password gets
    /// those with which its server was browsed.
    QString getAddress() const;
    void setAddress(const QString &address);

    /// Why \a address cannot be opened, as a sentence for people; empty when it is an xrvp:// or xrvps:// address, or a
    /// web address that stands for one, with a host and a path.
    static QString checkAddress(const QString &address);

    /// Addresses used before, newest first.
    static QStringList recentAddresses();

public Q_SLOTS:
    /// Chooses the address and closes the dialog; does nothing while the address cannot be opened.
    void accept() override;
    /// Chooses the address and keeps the dialog for more.
    void addAddress();
    /// Lists the folder that the address names or lies in.
    void browse();

Q_SIGNALS:
    /// The person chose \a address. Emitted once per choice, of which there may be several while the dialog is shown.
    void urlSelected(const QString &address);

protected:
    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    Q_DISABLE_COPY(XRVPBrowser)

    struct Private;
    std::unique_ptr<Private> d;
};

} // namespace Korvane::Gui
