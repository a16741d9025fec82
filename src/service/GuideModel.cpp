#include "service/GuideModel.h"

#include "service/Base64.h"
#include "service/PictureDecoder.h"

#include <algorithm>
#include <utility>

namespace {

constexpr auto pixelMemoryLimit = qint64{64} * 1024 * 1024;

/// A data URL has its data behind the comma. Looked for from the end: a text may be all commas.
QByteArray lastPiece(QStringView text)
{
    while (text.endsWith(u','))
        text.chop(1);
    return text.sliced(text.lastIndexOf(u',') + 1).toUtf8();
}

class PictureLoader {
public:
    GuideModel::Links load(
        const std::vector<QString>& pictures, const std::vector<QString>& addresses)
    {
        GuideModel::Links links;
        const auto count = std::min(pictures.size(), addresses.size());
        for (std::size_t i = 0; i < count; ++i) {
            // First, so that no picture is unpacked in vain.
            const QUrl url(addresses[i], QUrl::StrictMode);
            if (!url.isValid())
                continue;
            const auto data = Base64::decode(lastPiece(pictures[i]));
            if (!data)
                continue;
            if (auto picture = decode(*data))
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
