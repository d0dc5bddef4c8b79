#include <QDGui/xrvpbrowser.h>

#include <QDGui/application.h>

#include <QComboBox>
#include <QDialogButtonBox>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QSettings>
#include <QUrl>
#include <QVBoxLayout>

namespace Korvane {
namespace Gui {

namespace {

constexpr int kMaxRecentAddresses = 10;
const QLatin1String kRecentAddressesKey("XRVPBrowser/RecentAddresses");

QString withoutPassword(const QString &address)
{
    QUrl url(address);
    if (url.password().isEmpty())
        return address;
    url.setPassword(QString());
    return url.toString();
}

void rememberAddress(const QString &address)
{
    QStringList addresses = XRVPBrowser::recentAddresses();
    const QString stored = withoutPassword(address);
    addresses.removeAll(stored);
    addresses.prepend(stored);
    Application::instance()->settings()->setValue(kRecentAddressesKey,
                                                  QStringList(addresses.mid(0, kMaxRecentAddresses)));
}

} // namespace

struct XRVPBrowser::Private
{
    QComboBox *addressBox = nullptr;
    QLabel *errorLabel = nullptr;
    QPushButton *okButton = nullptr;
    bool wasAccepted = false;

    void showError()
    {
        const QString entered = addressBox->currentText().trimmed();
        const QString error = checkAddress(entered);
        okButton->setEnabled(error.isEmpty());
        errorLabel->setText(entered.isEmpty() ? QString() : error);
    }
};

XRVPBrowser::XRVPBrowser(QWidget *parent, BrowserProtocol protocol)
    : QDialog(parent)
    , d(new Private)
{
    Q_UNUSED(protocol) // There is only one so far.
    setWindowTitle(tr("Open an XRVP stream"));
    setWindowFlags(windowFlags() & ~Qt::WindowContextHelpButtonHint);

    d->addressBox = new QComboBox(this);
    d->addressBox->setObjectName(QStringLiteral("addressBox"));
    d->addressBox->setEditable(true);
    d->addressBox->setInsertPolicy(QComboBox::NoInsert);
    d->addressBox->setMinimumContentsLength(50);
    d->addressBox->lineEdit()->setPlaceholderText(QStringLiteral("xrvp://server/folder/image.jp2"));

    auto *addressLabel = new QLabel(tr("&Address of the image:"), this);
    addressLabel->setBuddy(d->addressBox);
    d->errorLabel = new QLabel(this);
    d->errorLabel->setObjectName(QStringLiteral("errorLabel"));
    d->errorLabel->setWordWrap(true);

    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    d->okButton = buttons->button(QDialogButtonBox::Ok);

    auto *layout = new QVBoxLayout(this);
    layout->addWidget(addressLabel);
    layout->addWidget(d->addressBox);
    layout->addWidget(d->errorLabel);
    layout->addStretch();
    layout->addWidget(buttons);

    connect(buttons, &QDialogButtonBox::accepted, this, &XRVPBrowser::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &XRVPBrowser::reject);
    connect(d->addressBox, &QComboBox::editTextChanged, this, [this] { d->showError(); });
    d->showError();
}

XRVPBrowser::~XRVPBrowser() = default;

QString XRVPBrowser::getXrvpUrl(QWidget *parent, BrowserProtocol protocol)
{
    // The parent may go, and take the dialog along, while the dialog's event loop runs.
    const QPointer<XRVPBrowser> browser(new XRVPBrowser(parent, protocol));
    const bool isAccepted = browser->exec() == QDialog::Accepted;
    const QString address = isAccepted && browser ? browser->getAddress() : QString();
    delete browser;
    return address;
}

QString XRVPBrowser::getAddress() const
{
    return d->addressBox->currentText().trimmed();
}

void XRVPBrowser::setAddress(const QString &address)
{
    d->addressBox->setEditText(address);
}

QString XRVPBrowser::checkAddress(const QString &address)
{
    const QUrl url(address, QUrl::TolerantMode);
    const bool hasProtocol = address.startsWith(QLatin1String("xrvp://"), Qt::CaseInsensitive) ||
                             address.startsWith(QLatin1String("xrvps://"), Qt::CaseInsensitive);
    if (!hasProtocol)
        return tr("The address must begin with xrvp:// or xrvps://.");
    if (!url.isValid())
        return tr("The address is not well formed: %1.").arg(url.errorString());
    if (url.host().isEmpty())
        return tr("The address does not name a server.");
    if (url.path().isEmpty() || url.path().endsWith(QLatin1Char('/')))
        return tr("The address does not name an image on the server.");
    return QString();
}

QStringList XRVPBrowser::recentAddresses()
{
    return Application::instance()->settings()->value(kRecentAddressesKey).toStringList();
}

void XRVPBrowser::accept()
{
    const QString address = getAddress();
    if (!checkAddress(address).isEmpty()) {
        d->showError();
        return;
    }
    rememberAddress(address);
    d->wasAccepted = true;
    QDialog::accept();
    Q_EMIT urlSelected(address);
}

void XRVPBrowser::showEvent(QShowEvent *event)
{
    // What was opened last time is proposed again, but nobody who looks on shall read a password in it.
    const QString entered = d->wasAccepted ? withoutPassword(getAddress()) : getAddress();
    d->wasAccepted = false;
    d->addressBox->clear();
    d->addressBox->addItems(recentAddresses());
    d->addressBox->setEditText(entered);
    d->addressBox->lineEdit()->selectAll();
    d->addressBox->setFocus();
    QDialog::showEvent(event);
}

} // namespace Gui
} // namespace Korvane
