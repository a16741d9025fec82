#pragma once

#include "desktop/VirtualDesktop.h"

#include <QImage>
#include <QSocketNotifier>
#include <QTemporaryDir>
#include <QTimer>

#include <memory>
#include <vector>

struct wl_display;
struct wl_global;

/// A compositor that shows nothing, and misbehaves as it is told. It runs in this process, while
/// its loop does, and takes pictures in shared memory on layer surfaces; it has no seats. Its
/// outputs stand side by side. Qt's own part of a client needs more than it has, so clients are
/// given Qt's platform "offscreen".
class FakeCompositor : public VirtualDesktop {
public:
    FakeCompositor();
    ~FakeCompositor() override;

    struct Surface;
    struct Output {
        QRect frame;
        wl_global* global = nullptr; // null when it has been removed
        bool sendsFrameCallbacks = true;
        int surfaceCount = 0; // that have ever been made for it
        int pictureCount = 0; // that have ever come
        QImage picture{};     // the latest; null without a surface
        Surface* surface = nullptr;
    };
    /// Counted from the latest one, because those that have been removed stay.
    Output& output(std::size_t fromLatest = 0) { return *m_outputs.rbegin()[fromLatest]; }
    void setMonitors(Monitors monitors) override;

    bool configuresWithoutSize = false;
    bool closesSurfacesAtOnce = false;
    bool releasesBuffers = true;
    /// Whether an output goes with the next picture, before anything is answered.
    bool removesOutputAtPicture = false;

    /// For clients that come later.
    void removeLayerShell();
    void closeSurface(Output& output);
    void disconnectAll();
    /// As if the latest picture of the output were against the protocol.
    void complain(Output& output);
    /// Whether it takes notice of its clients.
    void setReading(bool isReading);

    void click(const QPoint& /*point*/) override {}
    void cover(const QColor& /*colour*/, Extent /*extent*/) override {}
    void uncover() override {}

private:
    void addOutput(const QRect& frame);
    void commit(Surface& surface);
    void take(Surface& surface);
    static void forget(Surface& surface);
    void remove(Output& output);
    void answerFrames();
    void dispatch();
    void nameDisplay(QProcessEnvironment& environment) const override;
    std::optional<QColor> pixel(const QPoint& point) const override;
    QColor bareColour() const override { return Qt::gray; }

    struct Requests;

    QTemporaryDir m_folder;
    wl_display* m_display;
    wl_global* m_layerShell;
    QSocketNotifier m_notifier;
    QTimer m_frames;
    std::vector<std::unique_ptr<Output>> m_outputs;
};
