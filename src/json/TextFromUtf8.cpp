#include "json/TextFromUtf8.h"

#include <QStringDecoder>

QString textFromUtf8(std::string_view utf8)
{
    const QByteArrayView bytes(utf8.data(), static_cast<qsizetype>(utf8.size()));
    if (!utf8.starts_with("\xef\xbb\xbf"))
        return QString::fromUtf8(bytes); // faster
    return QStringDecoder(QStringDecoder::Utf8, QStringDecoder::Flag::ConvertInitialBom)(bytes);
}
