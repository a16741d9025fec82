#pragma once

#include "platform/Bundle.h"

#include <QIcon>

/// The helper's pictures as the program shows them. Transparent where their resources are missing.
namespace HelperIcon {

/// The template image "fendix_statusBar". It has the name "fendix_statusBar-symbolic" where an icon
/// of that name is installed: panels prefer a name to a picture, and would show nothing by one that
/// they do not find.
QIcon statusBarIcon(const Bundle& bundle);

/// Of the program's windows.
QIcon applicationIcon(const Bundle& bundle);

} // namespace HelperIcon
