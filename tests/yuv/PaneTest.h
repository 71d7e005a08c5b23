// A pane, what was done to it so far, and the picture that it has to show after that.
#pragma once

#include "CoreLog.h"
#include "Frames.h"
#include "HostWindow.h"
#include "ImageCompare.h"
#include "OverlayHost.h"
#include "Reference.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

namespace xelttest {

class PaneTest : public ::testing::Test
{
protected:
    void SetUp() override;
    void TearDown() override;

    void open(const QSize &widgetSize);
    void *handle() const { return m_pWindow->pane(); }
    HostWindow &window() { return *m_pWindow; }

    // Shows the frame and follows it in the model of the frame buffer.
    void submit(const HostFrame &frame);
    // Submits with the overlay records, through a callback registered for it.
    void submitWithOverlays(const HostFrame &frame, const std::vector<XeltDrawInfo> &vecRecords);

    void turnPicture(int nAngle, int nDirection, int nMirror);
    void zoom(double left, double top, double right, double bottom);
    void ratioMode(int nMode);
    void dstRect(int left, int top, int right, int bottom);

    ReferenceImage reference() const;
    ReferenceImage faultyReference(const Faults &faults) const;
    ::testing::AssertionResult matches(const Tolerance &tolerance = {}, const std::string &sName = {}) const;
    QImage picture() const { return grab(handle()); }

    std::unique_ptr<HostWindow> m_pWindow;
    BufferModel m_model;
    View m_view;
    OverlayHost m_overlays;
};

// How far a pane may be from the reference, in levels. Rounding takes 0.5. Drivers filter a plane to about
// one level, which the conversion multiplies by 1 for luma and by up to 2.04 for chroma; half-precision
// shaders add a little.
constexpr Tolerance k_flat{0.85, 0.5, 0.05};   // flat areas: nothing is filtered
constexpr Tolerance k_exact{2.75, 0.45, 0.05}; // one texel of luma a pixel: only chroma is filtered
constexpr Tolerance k_scaled{4.0, 0.55, 0.05}; // everything is filtered

// The tolerance for a picture of the widget's own size.
inline const Tolerance &ownSizeTolerance()
{
    return scaleFactor() == 1 ? k_exact : k_scaled;
}

// "641x479" for test names.
std::string sizeName(const QSize &size);

} // namespace xelttest
