#pragma once

#include "records/UpgradeInfo.h"
#include "ui/WindowController.h"

#include <functional>
#include <optional>

class ButtonWithHoverBackGround;
class InfoTextView;
class QUrl;

/// Shows the offer of a newer version, one controller an offer.
class UpgradeWindowController : public WindowController {
    Q_OBJECT

public:
    using Open = std::function<void(const QUrl&)>;

    /// `open` is handed the address of the download; by default the browser opens it.
    explicit UpgradeWindowController(
        QString nibName = QStringLiteral("UpgradeWindowController"), Open open = {});

    /// Set before the window is shown.
    std::optional<UpgradeInfo> upgradeInfo;

    ButtonWithHoverBackGround& upgradeButton();
    InfoTextView& infoLabel();

    /// Opens the download's address if there is an offer with a valid one.
    void openDownload() const;

protected:
    void windowDidLoad() override;

private:
    Open m_open;
};
