#include "ui/UpgradeWindowController.h"

#include "platform/Bundle.h"
#include "ui/ButtonWithHoverBackGround.h"
#include "ui/InfoTextView.h"
#include "ui/UpgradeWindow.h"

#include <QDesktopServices>
#include <QUrl>

#include <utility>

namespace {

/// The web only: an offer comes from outside, and must neither start a local file nor reach one of
/// the programs that are registered for other schemes.
bool canBeOpened(const QUrl& url)
{
    return url.isValid() && !url.host().isEmpty() &&
           (url.scheme() == QLatin1String("https") || url.scheme() == QLatin1String("http"));
}

/// Versions are short. What is not one shall not take the text view seconds to break into lines.
QString shortened(const QString& version)
{
    constexpr qsizetype lengthLimit = 4096;
    return version.size() <= lengthLimit ? version : version.left(lengthLimit) + u'…';
}

} // namespace

UpgradeWindowController::UpgradeWindowController(QString nibName, Open open)
    : WindowController(std::move(nibName)), m_open(std::move(open))
{
    if (!m_open)
        m_open = &QDesktopServices::openUrl;
}

ButtonWithHoverBackGround& UpgradeWindowController::upgradeButton()
{
    return outlet<ButtonWithHoverBackGround>("upgradeButton");
}

InfoTextView& UpgradeWindowController::infoLabel()
{
    return outlet<InfoTextView>("infoLabel");
}

void UpgradeWindowController::windowDidLoad()
{
    WindowController::windowDidLoad();
    auto& panel = outlet<UpgradeWindow>("UpgradeWindow");
    panel.setWindowController(this);
    panel.setFixedSize(panel.size().expandedTo(panel.minimumSizeHint()));
    panel.setFocus(); // none of its controls has the keyboard at first, see UpgradeWindow
    upgradeButton();  // has to be there; the file says what it does

    const auto image = Bundle::main().pathForResource(
        QStringLiteral("upgrade_back_ground"), QStringLiteral("png"));
    if (image)
        panel.setBackGround(QIcon(*image));

    if (upgradeInfo)
        infoLabel().appendNotes(upgradeInfo->exp);
    else
        infoLabel().setText({});
    // The version takes the place of the notes.
    infoLabel().setText(
        tr("Version: %1", "version")
            .arg(upgradeInfo ? shortened(upgradeInfo->ver) : QStringLiteral("1.0")));
}

void UpgradeWindowController::openDownload() const
{
    if (!upgradeInfo)
        return;
    const QUrl url(upgradeInfo->url, QUrl::StrictMode);
    if (canBeOpened(url))
        m_open(url);
}
