// Draws the host's overlay shapes with the current picture program, which its draw uniforms turn into a
// solid-colour painter. Needs the painting thread with the widget's context current and the program bound.
#pragma once

#include "interface/XeltRender.h"
#include "widget/DisplayGeometry.h"
#include "yuv/LineWidener.h"

#include <QOpenGLExtraFunctions>
#include <QVector>
#include <vector>

namespace yuv {

enum class DrawInfoPass {
    BeforePicture = 0, // opaque, with the depth test on
    OverPicture = 1,   // blended
    AllOpaque,         // every record at once, for a renderer with one pass
};

struct DrawInfoLocations
{
    int nDrawFlag;
    int nDrawColor;
    int nDrawAlpha;
};

class DrawInfoPainter
{
public:
    // Draws the records of a pass from the last to the first. Leaves attribute 0 disabled on OpenGL ES, and
    // attribute 1 as it was, enabled.
    void Paint(QOpenGLExtraFunctions &gl, bool blOpenGLES, const QVector<XeltDrawInfo> &vecRecords,
               DrawInfoPass pass, const DrawInfoLocations &locations, const geometry::PointMapping &mapping);

private:
    // What a record is drawn as: a GL mode and how many of m_afVertices.
    struct Shape
    {
        GLenum nMode;
        int nVertices;
    };
    Shape BuildDesktop(const XeltDrawInfo &record, const geometry::PointMapping &mapping);
    Shape BuildOpenGLES(const XeltDrawInfo &record, const geometry::PointMapping &mapping);
    int MapPoints(const XeltDrawInfo &record, const geometry::PointMapping &mapping);

    std::vector<SegmentQuad> m_vecSegments; // kept for its memory
    StripVertices m_afVertices{};
};

} // namespace yuv
