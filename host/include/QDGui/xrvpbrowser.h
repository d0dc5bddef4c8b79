#pragma once

#include <QDGui/qdguiglobal.h>

#include <QDialog>

#include <memory>

namespace Korvane {
namespace Gui {

/// Dialog in which a person enters or picks the address of an image stream. Addresses used before are offered again;
/// passwords in them are never stored.
class QDGUI_EXPORT XRVPBrowser : public QDialog
{
    Q_OBJECT

public:
    enum BrowserProtocol { XRVP = 0 };

    explicit XRVPBrowser(QWidget *parent = nullptr, BrowserProtocol protocol = XRVP);
    ~XRVPBrowser() override;

    /// Shows the dialog modally and returns the chosen address, or a null string when cancelled.
    static QString getXrvpUrl(QWidget *parent, BrowserProtocol protocol);

    /// The address as entered, without blanks around it; the chosen one after the dialog was accepted.
    QString getAddress() const;
    void setAddress(const QString &address);

    /// Why \a address cannot be opened, as a sentence for people; empty when it is an xrvp:// or xrvps:// address with
    /// a host and a path.
    static QString checkAddress(const QString &address);

    /// Addresses used before, newest first.
    static QStringList recentAddresses();

public Q_SLOTS:
    void accept() override;

Q_SIGNALS:
    /// The person accepted \a address.
    void urlSelected(const QString &address);

protected:
    void showEvent(QShowEvent *event) override;

private:
    Q_DISABLE_COPY(XRVPBrowser)

    struct Private;
    std::unique_ptr<Private> d;
};

} // namespace Gui
} // namespace Korvane
