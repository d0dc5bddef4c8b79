#include <QDGui/xrvpbrowser.h>

#include "addressbox.h"
#include "recentaddresses.h"
#include "serveraddress.h"
#include "servercredentials.h"
#include "serverpanel.h"

#include <QDGui/addressutil.h>
#include <QDGui/application.h>

#include <QDialogButtonBox>
#include <QEvent>
#include <QGridLayout>
#include <QHideEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPointer>
#include <QPushButton>
#include <QScreen>
#include <QSettings>
#include <QStyle>
#include <QToolButton>

#include <algorithm>

namespace Korvane::Gui {

namespace {

const QLatin1String kSizeKey("XRVPBrowser/Size");

/// In average characters and lines.
constexpr int kWidth = 92;
constexpr int kHeight = 30;

bool isControl(QChar character)
{
    return character.category() == QChar::Other_Control;
}

/// What has been typed of a good beginning is no mistake yet.
bool isBeginning(const QString &entered)
{
    return QStringLiteral("xrvps://").startsWith(entered, Qt::CaseInsensitive) ||
           entered.compare(QLatin1String("xrvp://"), Qt::CaseInsensitive) == 0 ||
           QStringLiteral("xrvp://").startsWith(entered, Qt::CaseInsensitive);
}

bool canBeBrowsed(const ServerAddress &address)
{
    return address.hasScheme() && address.hasHost() && address.serverError().isEmpty();
}

/// Red enough to be noticed, on light windows and on dark ones.
QColor errorColor(const QPalette &palette)
{
    return palette.color(QPalette::Window).lightness() < 128 ? QColor(255, 138, 128) : QColor(176, 0, 32);
}

} // namespace

struct XRVPBrowser::Private
{
    explicit Private(XRVPBrowser *browser)
        : q(browser)
    {
    }

    void makeWidgets();
    void makeButtons();
    void placeWidgets();
    QMenu *makeHistoryMenu();
    void connectWidgets();
    QString entered() const { return Util::Address::asStream(addressBox->currentText().trimmed()); }
    void update();
    void tell(const QString &text, bool isError);
    bool choose();
    void restoreSize();

    XRVPBrowser *const q;
    AddressBox *addressBox = nullptr;
    QPushButton *browseButton = nullptr;
    QToolButton *historyButton = nullptr;
    QLabel *errorLabel = nullptr;
    ServerPanel *panel = nullptr;
    QDialogButtonBox *buttons = nullptr;
    QPushButton *okButton = nullptr;
    QPushButton *addButton = nullptr;
    QString browsedAddress; ///< as entered when it was asked for
    bool wasAccepted = false;
    bool hasSize = false;
};

void XRVPBrowser::Private::makeWidgets()
{
    addressBox = new AddressBox(q);
    addressBox->setObjectName(QStringLiteral("addressBox"));
    browseButton = new QPushButton(tr("&Browse"), q);
    browseButton->setObjectName(QStringLiteral("browseButton"));
    browseButton->setToolTip(tr("Show what the server lists in the folder of this address"));
    historyButton = new QToolButton(q);
    historyButton->setObjectName(QStringLiteral("historyButton"));
    historyButton->setIcon(q->style()->standardIcon(QStyle::SP_TrashIcon));
    historyButton->setToolTip(tr("Forget addresses used before"));
    historyButton->setAccessibleName(historyButton->toolTip());
    historyButton->setPopupMode(QToolButton::InstantPopup);
    historyButton->setMenu(makeHistoryMenu());
    errorLabel = new QLabel(q);
    errorLabel->setObjectName(QStringLiteral("errorLabel"));
    errorLabel->setTextFormat(Qt::PlainText);
    errorLabel->setWordWrap(true);
    errorLabel->setMinimumHeight(errorLabel->fontMetrics().lineSpacing());
    panel = new ServerPanel(q);
    makeButtons();
}

void XRVPBrowser::Private::makeButtons()
{
    buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, q);
    okButton = buttons->button(QDialogButtonBox::Ok);
    okButton->setText(tr("&Open"));
    okButton->setToolTip(tr("Open this image and close this window"));
    addButton = buttons->addButton(tr("A&dd"), QDialogButtonBox::ActionRole);
    addButton->setObjectName(QStringLiteral("addButton"));
    addButton->setToolTip(tr("Open this image and keep this window for more"));
    // Return does what the address calls for, whatever button was used last.
    for (QPushButton *button : {browseButton, addButton, buttons->button(QDialogButtonBox::Cancel)})
        button->setAutoDefault(false);
}

void XRVPBrowser::Private::placeWidgets()
{
    auto *addressLabel = new QLabel(tr("&Address of the image, the folder or the server:"), q);
    addressLabel->setBuddy(addressBox);
    auto *layout = new QGridLayout(q);
    layout->addWidget(addressLabel, 0, 0, 1, 3);
    layout->addWidget(addressBox, 1, 0);
    layout->addWidget(historyButton, 1, 1);
    layout->addWidget(browseButton, 1, 2);
    layout->addWidget(errorLabel, 2, 0, 1, 3);
    layout->addWidget(panel, 3, 0, 1, 3);
    layout->addWidget(buttons, 4, 0, 1, 3);
    layout->setColumnStretch(0, 1);
    layout->setRowStretch(3, 1);
    QWidget::setTabOrder(addressBox, historyButton);
    QWidget::setTabOrder(historyButton, browseButton);
    QWidget::setTabOrder(browseButton, panel);
    QWidget::setTabOrder(panel, buttons);
}

QMenu *XRVPBrowser::Private::makeHistoryMenu()
{
    auto *menu = new QMenu(historyButton);
    QAction *forget = menu->addAction(tr("&Remove This Address from the List"));
    QAction *forgetAll = menu->addAction(tr("&Clear the List"));
    QObject::connect(forget, &QAction::triggered, q, [this] { addressBox->forget(entered()); });
    QObject::connect(forgetAll, &QAction::triggered, q, [this] { addressBox->forgetAll(); });
    QObject::connect(menu, &QMenu::aboutToShow, q, [this, forget, forgetAll] {
        const QStringList known = RecentAddresses::entries();
        forget->setEnabled(known.contains(ServerAddress(entered()).printable()));
        forgetAll->setEnabled(!known.isEmpty());
    });
    return menu;
}

void XRVPBrowser::Private::connectWidgets()
{
    QObject::connect(buttons, &QDialogButtonBox::accepted, q, &XRVPBrowser::accept);
    QObject::connect(buttons, &QDialogButtonBox::rejected, q, &XRVPBrowser::reject);
    QObject::connect(addButton, &QPushButton::clicked, q, &XRVPBrowser::addAddress);
    QObject::connect(browseButton, &QPushButton::clicked, q, &XRVPBrowser::browse);
    QObject::connect(addressBox, &QComboBox::editTextChanged, q, [this] { update(); });
    QObject::connect(panel, &ServerPanel::addressSelected, q, &XRVPBrowser::setAddress);
    QObject::connect(panel, &ServerPanel::rootShown, q, [this] {
        // The list is what was asked for, so that arrows work at once; unless something else is being typed by now.
        if (!addressBox->hasFocus() || entered() == browsedAddress)
            panel->focusTree();
    });
    QObject::connect(panel, &ServerPanel::addressActivated, q, [this](const QString &address) {
        q->setAddress(address);
        q->accept();
    });
}

void XRVPBrowser::Private::update()
{
    const QString address = entered();
    const QString error = checkAddress(address);
    const ServerAddress parts(address);
    okButton->setEnabled(error.isEmpty());
    addButton->setEnabled(error.isEmpty());
    browseButton->setEnabled(canBeBrowsed(parts));
    okButton->setDefault(error.isEmpty() || !browseButton->isEnabled());
    browseButton->setDefault(!error.isEmpty() && browseButton->isEnabled());
    if (error.isEmpty() || isBeginning(address))
        tell(QString(), false);
    else if (browseButton->isEnabled() && parts.isFolder())
        tell(tr("This names a folder: choose Browse to see its images."), false);
    else
        tell(error, true);
}

void XRVPBrowser::Private::tell(const QString &text, bool isError)
{
    errorLabel->setText(text);
    QPalette palette = q->palette();
    if (isError)
        palette.setColor(QPalette::WindowText, errorColor(palette));
    errorLabel->setPalette(palette);
}

/// Takes the address among those used; false when it cannot be opened.
bool XRVPBrowser::Private::choose()
{
    const QString address = q->getAddress();
    if (!checkAddress(address).isEmpty()) {
        update();
        return false;
    }
    RecentAddresses::add(address);
    wasAccepted = true;
    return true;
}

void XRVPBrowser::Private::restoreSize()
{
    if (hasSize)
        return;
    hasSize = true;
    const QFontMetrics metrics = q->fontMetrics();
    const QSize usual(metrics.averageCharWidth() * kWidth, metrics.lineSpacing() * kHeight);
    QSize size = Application::instance()->settings()->value(kSizeKey).toSize();
    if (!size.isValid())
        size = usual;
    const QSize room = q->screen() ? q->screen()->availableSize() : size;
    q->resize(size.boundedTo(room).expandedTo(q->minimumSizeHint()));
}

XRVPBrowser::XRVPBrowser(QWidget *parent, BrowserProtocol protocol)
    : QDialog(parent)
    , d(new Private(this))
{
    Q_UNUSED(protocol) // There is only one so far.
    setWindowTitle(tr("Open an XRVP stream"));
    setWindowFlags(windowFlags() & ~Qt::WindowContextHelpButtonHint);
    setSizeGripEnabled(true);
    d->makeWidgets();
    d->placeWidgets();
    d->connectWidgets();
    d->update();
}

XRVPBrowser::~XRVPBrowser() = default;

QString XRVPBrowser::getXrvpUrl(QWidget *parent, BrowserProtocol protocol)
{
    // The parent may go, and take the dialog along, while the dialog's event loop runs.
    const QPointer<XRVPBrowser> browser(new XRVPBrowser(parent, protocol));
    browser->d->addButton->hide(); // One address is all that can be told.
    const bool isAccepted = browser->exec() == QDialog::Accepted;
    QString address = isAccepted && browser ? browser->getAddress() : QString();
    delete browser;
    return address;
}

QString XRVPBrowser::getAddress() const
{
    ServerAddress address(d->entered());
    if (!canBeBrowsed(address) || address.hasCredentials())
        return d->entered();
    address.setCredentials(ServerCredentials::of(address.folderUrl()));
    return address.hasCredentials() ? address.toString() : d->entered();
}

void XRVPBrowser::setAddress(const QString &address)
{
    d->addressBox->setEditText(address);
}

QString XRVPBrowser::checkAddress(const QString &entered)
{
    const QString text = Util::Address::asStream(entered.trimmed());
    const ServerAddress address(text);
    if (!address.hasScheme())
        return tr("The address must begin with xrvp:// or xrvps://.");
    if (!address.hasHost())
        return tr("The address does not name a server.");
    if (std::any_of(text.cbegin(), text.cend(), isControl))
        return tr("The address holds characters that no address can have.");
    const QString serverError = address.serverError();
    if (!serverError.isEmpty())
        return tr("The server's name or port is not well formed: %1.").arg(serverError);
    if (address.isFolder())
        return tr("The address does not name an image on the server.");
    return QString();
}

QStringList XRVPBrowser::recentAddresses()
{
    return RecentAddresses::entries();
}

void XRVPBrowser::accept()
{
    if (!d->choose())
        return;
    const QString address = getAddress();
    QDialog::accept();
    Q_EMIT urlSelected(address);
}

void XRVPBrowser::addAddress()
{
    if (!d->choose())
        return;
    const QString address = getAddress();
    d->addressBox->readRecent();
    d->buttons->button(QDialogButtonBox::Cancel)->setText(tr("Close"));
    Q_EMIT urlSelected(address);
}

void XRVPBrowser::browse()
{
    const ServerAddress address(d->entered());
    if (!canBeBrowsed(address))
        return;
    d->browsedAddress = d->entered();
    d->panel->browse(address);
}

void XRVPBrowser::showEvent(QShowEvent *event)
{
    d->restoreSize();
    // What was opened last time is proposed again, but nobody who looks on shall read a password in it.
    const ServerAddress address(d->entered());
    if (d->wasAccepted && address.hasScheme())
        setAddress(address.printable());
    d->wasAccepted = false;
    d->buttons->button(QDialogButtonBox::Cancel)->setText(tr("Cancel"));
    d->addressBox->readRecent();
    d->addressBox->lineEdit()->selectAll();
    d->addressBox->setFocus();
    QDialog::showEvent(event);
}

void XRVPBrowser::hideEvent(QHideEvent *event)
{
    d->panel->stop();
    if (!event->spontaneous() && !isMaximized())
        Application::instance()->settings()->setValue(kSizeKey, size());
    QDialog::hideEvent(event);
}

void XRVPBrowser::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::PaletteChange && d->errorLabel)
        d->update();
    QDialog::changeEvent(event);
}

} // namespace Korvane::Gui
