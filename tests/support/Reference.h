// An independent renderer on the CPU, in double precision: what a pane has to show.
//
// The picture is worked out from a model of the renderer's frame buffer (bufferModel), read the way GL reads
// it (row alignment, sizes rounded down, zero beyond the end), sampled bilinearly with clamping at the
// centres of the device pixels, converted, placed and turned.
#pragma once

#include "Frames.h"
#include "TestEnvironment.h"

#include <QSize>

#include <array>
#include <cstdint>
#include <vector>

namespace xelttest {

// Left, top, right, bottom in widget units 0..1.
using Area = std::array<double, 4>;

// The bytes that a submission leaves in the renderer's frame buffer, or, for the type of Direct3D textures,
// the slice of the texture as packed NV12.
struct BufferModel
{
    int nType = -1; // display type; -1: no frame
    int nWidth = 0;
    int nHeight = 0;
    int nAskedSize = 0;          // nDataLen of the frame that the buffer was made for
    int nNv12Alignment = 4;      // of rows in uploads; a YV12 paint in the same context leaves 1
    std::vector<uint8_t> aBytes; // what lies beyond reads as zero
    bool blSlice = false;        // it is such a slice
    bool blBt601 = false;        // how the slice is converted
    bool blFullRange = false;
    // Rows of B, G, R, A where a real video processor has converted the slice; otherwise the definition counts.
    std::vector<uint8_t> aConverted;

    // Whether the planes that the type uploads lie wholly inside.
    bool holdsPicture() const;
};

// After showing desc (type 0 or 3, valid sizes) on a pane whose buffer was `before`; a reallocation zeroes
// it.
BufferModel bufferModel(const VideoFrameDesc &desc, const BufferModel &before = {});

// Deliberate mistakes, to prove that a comparison notices them.
struct Faults
{
    double dShiftX = 0.0; // device pixels
    double dShiftY = 0.0;
    bool blSwapChroma = false;
    bool blOtherMatrix = false;   // the other format's coefficients, with the right offset
    double dCoefficientOff = 0.0; // added to the red coefficient of V
    double dBlackLevel = 0.0;     // added to luma
    bool blNearest = false;       // no interpolation
    bool blTurnOtherWay = false;
    bool blMirrorBeforeTurn = false;
};

struct View
{
    QSize widgetSize;
    double dPixelRatio = 1.0;
    Area area{0.0, 0.0, 1.0, 1.0};
    Area zoom{0.0, 0.0, 1.0, 1.0};
    int nDirection = 0;
    int nAngle = 0;
    int nMirror = 0;
    Faults faults;

    QSize deviceSize() const;
};

// Expected colours, 0..255 and not rounded, three doubles a pixel, top row first. Pixels of aIgnored are on
// an edge that rasterisation may put on either side.
struct ReferenceImage
{
    int nWidth = 0;
    int nHeight = 0;
    std::vector<double> aRgb;
    std::vector<uint8_t> aIgnored;

    double *pixel(int x, int y) { return &aRgb[3 * index(x, y)]; }
    const double *pixel(int x, int y) const { return &aRgb[3 * index(x, y)]; }
    size_t index(int x, int y) const
    {
        return static_cast<size_t>(y) * static_cast<size_t>(nWidth) + static_cast<size_t>(x);
    }
};

// Black where the picture does not reach.
ReferenceImage renderPicture(const BufferModel &buffer, const View &view);
// Adds the overlay records as they come out in the flavour: shapes of the first pass stand over the picture,
// a later record over an earlier one; blended areas go on top, an earlier record over a later one.
void renderOverlays(ReferenceImage &image, const View &view, const std::vector<XeltDrawInfo> &vecRecords,
                    GlFlavour flavour);

// The drawn area after the ratio-mode and destination-rectangle commands.
Area ratioArea(const QSize &widgetSize, int nVideoWidth, int nVideoHeight, int nMode);
Area dstArea(const QSize &widgetSize, int left, int top, int right, int bottom);

// Clip space -> clip space of the turn and the mirror, and its inverse.
void turnAndMirror(const View &view, double &x, double &y);
void undoTurnAndMirror(const View &view, double &x, double &y);

} // namespace xelttest
