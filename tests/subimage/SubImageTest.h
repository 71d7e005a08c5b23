// The fixture of the sub-image renderer's own tests: a pane, what was done to it, and what it has to show.
#pragma once

#include "PaneTest.h"

namespace xelttest {

class SubImageTest : public PaneTest
{
protected:
    // As PaneTest's, but sees to types that copy nothing.
    void submit(const HostFrame &frame);
    void submitWithOverlays(const HostFrame &frame, const std::vector<XeltDrawInfo> &vecRecords);

    // The picture with all shapes opaque and below no other, whatever opacity they have.
    ::testing::AssertionResult matches(const Tolerance &tolerance = k_scaled,
                                       const std::string &sName = {}) const;
    ReferenceImage opaqueReference() const;

    static HostFrame ofType(int nType, uint32_t nSeed = 1);
    static HostFrame withLength(HostFrame frame);
    // The pane has no frame any more: its model forgets it.
    void forgetFrame() { m_model = {}; }

    int logged(const std::string &sText) const { return CoreLog::instance().count(sText); }
    std::array<int, 3> at(int x, int y) const;
    // No error is left in the pane's context.
    ::testing::AssertionResult noGlError() const;
};

extern const char *const k_pYv12Text;
extern const char *const k_pNv12Text;
extern const char *const k_pD3D11Text;

} // namespace xelttest
