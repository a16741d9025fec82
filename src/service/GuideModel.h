#pragma once

#include "records/GuideResponse.h"

#include <QImage>
#include <QMetaType>
#include <QUrl>

#include <memory>
#include <optional>
#include <unordered_map>

/// The pictures of the guide with the address that each leads to. Never changes.
///
/// A pair is left out when its picture is not strict base64 of a file that `decodePicture` reads or
/// its address is not a valid URL. All pictures together take up at most 64 MiB as pixels, by the
/// sizes that they claim, damaged ones too; those that would exceed what is left of it are left out
/// before they are unpacked. That bounds the memory, and the time to some tenths of a second, so
/// it is made on another thread than the main one.
class GuideModel {
public:
    /// Shared, so that whoever shows a picture keeps it beyond its model. Pictures are told apart
    /// by identity: two equal ones are two entries.
    using Picture = std::shared_ptr<const QImage>;
    using Links = std::unordered_map<Picture, QUrl>;

    explicit GuideModel(GuideResponse guideResponse);

    const Links& leftPanel() const { return m_leftPanel; }
    const Links& newFeature() const { return m_newFeature; }
    /// Always none.
    const std::optional<GuideResponse>& response() const { return m_response; }
    const GuideResponse& guideResponse() const { return m_guideResponse; }

private:
    Links m_leftPanel;
    Links m_newFeature;
    std::optional<GuideResponse> m_response;
    GuideResponse m_guideResponse;
};

Q_DECLARE_METATYPE(GuideModel::Links)
