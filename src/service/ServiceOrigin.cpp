#include "service/ServiceOrigin.h"

#include <cstdio>

namespace {

bool isHttpsOrigin(const QUrl& url)
{
    return url.isValid() && url.scheme() == u"https" && !url.host().isEmpty() &&
           url.userInfo().isEmpty() && (url.path().isEmpty() || url.path() == u"/") &&
           !url.hasQuery() && !url.hasFragment();
}

} // namespace

QUrl serviceOrigin(const QByteArray& replacement)
{
    QUrl configured(QStringLiteral(TAVELOR_DEFAULT_SERVICE_URL));
    if (replacement.isEmpty())
        return configured;
    QUrl url(QString::fromUtf8(replacement), QUrl::StrictMode);
    if (!isHttpsOrigin(url)) {
        std::fprintf(stderr,
            "TAVELOR_SERVICE_URL is not an https origin like %s; it is not used.\n",
            TAVELOR_DEFAULT_SERVICE_URL);
        return configured;
    }
    url.setPath({});
    return url;
}
