#include "service/GuideModel.h"

#include "service/Base64.h"
#include "service/PictureDecoder.h"

#include <algorithm>
#include <utility>

namespace {

constexpr auto pixelMemoryLimit = qint64{64} * 1024 * 1024;

/// A data URL has its data behind the comma.
QByteArray lastPiece(const QString& text)
{
    const auto pieces = QStringView(text).split(u',', Qt::SkipEmptyParts);
    return pieces.isEmpty() ? QByteArray() : pieces.constLast().toUtf8();
}

class PictureLoader {
public:
    GuideModel::Links load(
        const std::vector<QString>& pictures, const std::vector<QString>& addresses)
    {
        GuideModel::Links links;
        const auto count = std::min(pictures.size(), addresses.size());
        for (std::size_t i = 0; i < count; ++i) {
            const auto data = Base64::decode(lastPiece(pictures[i]));
            if (!data)
                continue;
            auto picture = decode(*data);
            if (!picture)
                continue;
            const QUrl url(addresses[i], QUrl::StrictMode);
            if (!url.isValid())
                continue;
            links.emplace(std::move(picture), url);
        }
        return links;
    }

private:
    /// Null for what is no picture or too large.
    GuideModel::Picture decode(const QByteArray& data)
    {
        auto image = decodePicture(data, m_memoryLeft);
        return image.isNull() ? nullptr : std::make_shared<const QImage>(std::move(image));
    }

    qint64 m_memoryLeft = pixelMemoryLimit;
};

} // namespace

GuideModel::GuideModel(GuideResponse guideResponse) : m_guideResponse(std::move(guideResponse))
{
    PictureLoader loader;
    const auto& data = m_guideResponse.data;
    m_leftPanel = loader.load(data.leftPanel, data.leftPanelUrl);
    m_newFeature = loader.load(data.newFeature, data.newFeatureUrl);
}
