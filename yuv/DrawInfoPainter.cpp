#include "yuv/DrawInfoPainter.h"

#include <algorithm>

namespace yuv {

namespace {

bool IsShape(const XeltDrawInfo &record)
{
    return record.nType == DRAWINFO_POLYLINE || record.nType == DRAWINFO_OUTLINE ||
           record.nType == DRAWINFO_OUTLINE_ALT || record.nType == DRAWINFO_FILLED_AREA;
}

bool IsClosed(const XeltDrawInfo &record)
{
    return record.nType == DRAWINFO_OUTLINE || record.nType == DRAWINFO_OUTLINE_ALT;
}

bool BelongsTo(const XeltDrawInfo &record, DrawInfoPass pass)
{
    const bool blBlended = record.nType == DRAWINFO_FILLED_AREA && record.fOpacity != 0.0f;
    return pass == DrawInfoPass::AllOpaque || blBlended == (pass == DrawInfoPass::OverPicture);
}

// A byte's colour component. The scale is deliberate: below 126 it is negative, which clamps to 0, and 252 is
// full intensity.
float Component(uint32_t nColor, unsigned nShift)
{
    return static_cast<float>(((nColor >> nShift) & 0xFFu) / 126.0 - 1.0);
}

// The widest aliased line of the driver, at least 1.
float MaxLineWidth(QOpenGLExtraFunctions &gl)
{
    GLfloat afRange[2] = {1.0f, 1.0f};
    gl.glGetFloatv(GL_ALIASED_LINE_WIDTH_RANGE, afRange);
    return std::max(afRange[1], 1.0f);
}

int ReadablePoints(const XeltDrawInfo &record)
{
    return std::min<int>(record.nPointNum, XELT_DRAWINFO_MAX_POINTS);
}

} // namespace

void DrawInfoPainter::Paint(QOpenGLExtraFunctions &gl, bool blOpenGLES,
                            const QVector<XeltDrawInfo> &vecRecords, DrawInfoPass pass,
                            const DrawInfoLocations &locations, const geometry::PointMapping &mapping)
{
    if (vecRecords.isEmpty()) {
        return;
    }
    const float fMaxLineWidth = MaxLineWidth(gl);
    // The texture coordinates are four pairs; a shape has more vertices than that.
    gl.glDisableVertexAttribArray(1);
    for (auto it = vecRecords.crbegin(); it != vecRecords.crend(); ++it) {
        const XeltDrawInfo &record = *it;
        if (!IsShape(record) || record.nPointNum < 1 || !BelongsTo(record, pass)) {
            continue;
        }
        const Shape shape = blOpenGLES ? BuildOpenGLES(record, mapping) : BuildDesktop(record, mapping);
        gl.glUniform1i(locations.nDrawFlag, 1);
        gl.glUniform3f(locations.nDrawColor, Component(record.nColor, 0), Component(record.nColor, 8),
                       Component(record.nColor, 16));
        gl.glLineWidth(std::clamp(static_cast<float>(record.nSize), 1.0f, fMaxLineWidth));
        gl.glUniform1f(locations.nDrawAlpha, pass == DrawInfoPass::OverPicture ? record.fOpacity : 0.0f);
        gl.glVertexAttribPointer(0, 2, GL_FLOAT, GL_FALSE, 0, m_afVertices.data());
        gl.glEnableVertexAttribArray(0);
        gl.glDrawArrays(shape.nMode, 0, shape.nVertices);
        if (blOpenGLES) {
            gl.glDisableVertexAttribArray(0);
        }
    }
    gl.glEnableVertexAttribArray(1);
}

int DrawInfoPainter::MapPoints(const XeltDrawInfo &record, const geometry::PointMapping &mapping)
{
    m_afVertices.fill(0.0f);
    const int nPoints = ReadablePoints(record);
    float *pfVertex = m_afVertices.data();
    for (int i = 0; i < nPoints; ++i) {
        *pfVertex++ = mapping.mapX(record.aPoints[i].x);
        *pfVertex++ = mapping.mapY(record.aPoints[i].y);
    }
    return nPoints;
}

DrawInfoPainter::Shape DrawInfoPainter::BuildDesktop(const XeltDrawInfo &record,
                                                     const geometry::PointMapping &mapping)
{
    MapPoints(record, mapping);
    // Points that a record counts but cannot hold are drawn from the zeroed rest of the array, deliberately.
    const int nVertices = std::min(record.nPointNum, static_cast<int>(kMaxStripVertices));
    if (record.nType == DRAWINFO_FILLED_AREA) {
        return {GL_TRIANGLE_STRIP, nVertices};
    }
    return {static_cast<GLenum>(IsClosed(record) ? GL_LINE_LOOP : GL_LINE_STRIP), nVertices};
}

DrawInfoPainter::Shape DrawInfoPainter::BuildOpenGLES(const XeltDrawInfo &record,
                                                      const geometry::PointMapping &mapping)
{
    if (record.nType == DRAWINFO_FILLED_AREA) {
        return {GL_TRIANGLE_STRIP, MapPoints(record, mapping)};
    }
    WidenLine(record.aPoints, ReadablePoints(record), IsClosed(record), std::max(record.nSize, 1),
              m_vecSegments);
    const size_t nVertices = AssembleStrip(m_vecSegments, IsClosed(record), mapping, m_afVertices);
    return {GL_TRIANGLE_STRIP, static_cast<int>(nVertices)};
}

} // namespace yuv
