#include "library/VideoUrl.h"

#include <QDir>
#include <QFileInfo>

std::optional<QUrl> videoUrl(const QString& text)
{
    if (QDir::isAbsolutePath(text))
        return QUrl::fromLocalFile(text);
    QUrl url(text, QUrl::TolerantMode);
    if (!url.isValid())
        return std::nullopt;
    if (url.isLocalFile() && url.host() == u"localhost")
        url.setHost(QString());
    return url;
}

bool videoFileExists(const QUrl& url)
{
    return url.isLocalFile() && QFileInfo::exists(url.toLocalFile());
}
