#pragma once

#include "platform/linux/video/FramePresenter.h"
#include "platform/linux/video/Holds.h"
#include "platform/linux/video/PictureStatistics.h"

#include <QObject>

#include <memory>

/// Where players' pictures go: the display, as far as players need to know it. Main thread only,
/// unless said otherwise.
class FrameOutput : public QObject {
    Q_OBJECT

public:
    FrameOutput();
    ~FrameOutput() override;

    /// The one that was made last. It has to be there before a player is made.
    static FrameOutput& shared();

    /// Whether pictures can be shown at all. While they cannot, nothing is decoded.
    virtual bool canPresent() const = 0;
    /// For the render thread, which calls it while `canPresent()`.
    virtual std::unique_ptr<FramePresenter> makePresenter() = 0;
    /// What such a presenter is called, for people; empty while there is none.
    virtual QString rendererName() const = 0;

    /// Why nobody can see what is shown here.
    Holds& holds() { return m_holds; }
    PictureStatistics& statistics() { return m_statistics; }

Q_SIGNALS:
    /// Presenters that were made earlier must go before this returns; `canPresent()` tells whether
    /// there may be new ones.
    void presentersChanged();
    /// Something that people see, or `statistics().decoder`, may be different.
    void statusChanged();

private:
    Holds m_holds;
    PictureStatistics m_statistics;
};
