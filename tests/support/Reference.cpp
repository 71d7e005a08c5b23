#include "Reference.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace xelttest {

namespace {

// A texture as GL makes it from the buffer.
struct Texture
{
    int nWidth;
    int nHeight;
    int nChannels;
    std::vector<double> aValues; // 0..1
};

size_t toSize(int n)
{
    return static_cast<size_t>(n);
}

Texture readTexture(const BufferModel &buffer, size_t nOffset, int nWidth, int nHeight, int nChannels,
                    int nAlignment)
{
    Texture texture{nWidth, nHeight, nChannels, {}};
    const int nRowBytes = nWidth * nChannels;
    const size_t nStride = toSize((nRowBytes + nAlignment - 1) / nAlignment * nAlignment);
    texture.aValues.reserve(toSize(nRowBytes) * toSize(nHeight));
    for (size_t nRow = 0; nRow < toSize(nHeight); ++nRow) {
        for (size_t i = 0; i < toSize(nRowBytes); ++i) {
            const size_t nAt = nOffset + nRow * nStride + i;
            texture.aValues.push_back(nAt < buffer.aBytes.size() ? buffer.aBytes[nAt] / 255.0 : 0.0);
        }
    }
    return texture;
}

struct Axis
{
    size_t nFirst;
    size_t nSecond;
    double dWeight; // of the second
};

Axis axisAt(double dCoordinate, int nLength, bool blNearest)
{
    const double dAt = dCoordinate * nLength - 0.5;
    const double dFloor = std::floor(blNearest ? dAt + 0.5 : dAt);
    const auto clamped = [nLength](double d) {
        return static_cast<size_t>(std::clamp(d, 0.0, static_cast<double>(nLength - 1)));
    };
    return {clamped(dFloor), clamped(dFloor + 1), blNearest ? 0.0 : dAt - dFloor};
}

// Bilinear with clamping. A texture without texels is incomplete and reads as black.
double sample(const Texture &texture, int nChannel, double s, double t, bool blNearest)
{
    if (texture.aValues.empty()) {
        return 0.0;
    }
    const Axis x = axisAt(s, texture.nWidth, blNearest);
    const Axis y = axisAt(t, texture.nHeight, blNearest);
    const auto texel = [&](size_t nX, size_t nY) {
        return texture
            .aValues[(nY * toSize(texture.nWidth) + nX) * toSize(texture.nChannels) + toSize(nChannel)];
    };
    const double dTop = texel(x.nFirst, y.nFirst) * (1 - x.dWeight) + texel(x.nSecond, y.nFirst) * x.dWeight;
    const double dLow =
        texel(x.nFirst, y.nSecond) * (1 - x.dWeight) + texel(x.nSecond, y.nSecond) * x.dWeight;
    return dTop * (1 - y.dWeight) + dLow * y.dWeight;
}

struct Conversion
{
    double dOffset; // taken off luma
    double dRedV;
    double dGreenU;
    double dGreenV;
    double dBlueU;
};
constexpr Conversion k_yv12{0.0, 1.4075, -0.3455, -0.7169, 1.779};
constexpr Conversion k_nv12{0.0625, 1.13983, -0.39465, -0.58060, 2.03211};

Texture convertedTexture(const BufferModel &buffer)
{
    Texture texture{buffer.nWidth, buffer.nHeight, 3, {}};
    for (size_t i = 0; i < buffer.aConverted.size(); i += 4) {
        for (const size_t nChannel : {2U, 1U, 0U}) {
            texture.aValues.push_back(buffer.aConverted[i + nChannel] / 255.0);
        }
    }
    return texture;
}

// What a video processor makes of packed NV12: every chroma sample stands for its 2x2 pixels, and the result
// is rounded to bytes before anything is filtered.
Texture convertSlice(const BufferModel &buffer, const Faults &faults)
{
    if (!buffer.aConverted.empty()) {
        return convertedTexture(buffer);
    }
    const bool blBt601 = buffer.blBt601 != faults.blOtherMatrix;
    const double dKr = blBt601 ? 0.299 : 0.2126;
    const double dKb = blBt601 ? 0.114 : 0.0722;
    const double dLumaZero = buffer.blFullRange ? 0.0 : 16.0;
    const double dLumaSpan = buffer.blFullRange ? 255.0 : 219.0;
    const double dChromaSpan = buffer.blFullRange ? 255.0 : 224.0;
    const size_t nWidth = toSize(buffer.nWidth);
    const size_t nLuma = nWidth * toSize(buffer.nHeight);
    Texture texture{buffer.nWidth, buffer.nHeight, 3, {}};
    texture.aValues.reserve(3 * nLuma);
    for (size_t i = 0; i < nLuma; ++i) {
        const size_t nChroma = nLuma + i / nWidth / 2 * nWidth + i % nWidth / 2 * 2;
        const double dY = (buffer.aBytes[i] - dLumaZero) / dLumaSpan + faults.dBlackLevel;
        double dU = (buffer.aBytes[nChroma] - 128.0) / dChromaSpan;
        double dV = (buffer.aBytes[nChroma + 1] - 128.0) / dChromaSpan;
        if (faults.blSwapChroma) {
            std::swap(dU, dV);
        }
        const double dRed = dY + (2 * (1 - dKr) + faults.dCoefficientOff) * dV;
        const double dBlue = dY + 2 * (1 - dKb) * dU;
        const double dGreen =
            dY - 2 * (1 - dKr) * dKr / (1 - dKr - dKb) * dV - 2 * (1 - dKb) * dKb / (1 - dKr - dKb) * dU;
        for (const double d : {dRed, dGreen, dBlue}) {
            texture.aValues.push_back(std::round(255.0 * std::clamp(d, 0.0, 1.0)) / 255.0);
        }
    }
    return texture;
}

class Picture
{
public:
    Picture(const BufferModel &buffer, const Faults &faults) : m_faults(faults)
    {
        m_blConverted = buffer.blSlice;
        if (m_blConverted) {
            m_conversion = {};
            m_aTextures.push_back(convertSlice(buffer, faults));
            return;
        }
        const int nWidth = buffer.nWidth;
        const int nHeight = buffer.nHeight;
        const size_t nLuma = toSize(nWidth) * toSize(nHeight);
        const bool blNv12 = buffer.nType == VIDEO_DISPLAY_NV12;
        m_conversion = blNv12 != faults.blOtherMatrix ? k_nv12 : k_yv12;
        m_conversion.dOffset = (blNv12 ? k_nv12 : k_yv12).dOffset - faults.dBlackLevel;
        m_conversion.dRedV += faults.dCoefficientOff;
        if (blNv12) {
            m_aTextures.push_back(readTexture(buffer, 0, nWidth, nHeight, 1, buffer.nNv12Alignment));
            m_aTextures.push_back(
                readTexture(buffer, nLuma, nWidth / 2, nHeight / 2, 2, buffer.nNv12Alignment));
        } else {
            m_aTextures.push_back(readTexture(buffer, 0, nWidth, nHeight, 1, 1));
            m_aTextures.push_back(readTexture(buffer, nLuma, nWidth / 2, nHeight / 2, 1, 1));
            m_aTextures.push_back(readTexture(buffer, nLuma * 5 / 4, nWidth / 2, nHeight / 2, 1, 1));
        }
    }

    // The colour at texture coordinates (s, t), 0..255, clamped as the framebuffer clamps.
    void colour(double s, double t, double *pRgb) const
    {
        const bool blNearest = m_faults.blNearest;
        if (m_blConverted) {
            for (int i = 0; i < 3; ++i) {
                pRgb[i] = 255.0 * sample(m_aTextures[0], i, s, t, blNearest);
            }
            return;
        }
        const double dY = sample(m_aTextures[0], 0, s, t, blNearest) - m_conversion.dOffset;
        double dU = sample(m_aTextures[1], 0, s, t, blNearest) - 0.5;
        double dV = (m_aTextures.size() > 2 ? sample(m_aTextures[2], 0, s, t, blNearest)
                                            : sample(m_aTextures[1], 1, s, t, blNearest)) -
                    0.5;
        if (m_faults.blSwapChroma) {
            std::swap(dU, dV);
        }
        pRgb[0] = dY + m_conversion.dRedV * dV;
        pRgb[1] = dY + m_conversion.dGreenU * dU + m_conversion.dGreenV * dV;
        pRgb[2] = dY + m_conversion.dBlueU * dU;
        for (int i = 0; i < 3; ++i) {
            pRgb[i] = 255.0 * std::clamp(pRgb[i], 0.0, 1.0);
        }
    }

private:
    Faults m_faults;
    bool m_blConverted = false;
    Conversion m_conversion;
    std::vector<Texture> m_aTextures;
};

struct Quad
{
    double dLeft;
    double dRight;
    double dTop;
    double dBottom;
};

Quad quadOf(const View &view)
{
    const Area &area = view.area;
    const Area &zoom = view.zoom;
    const double dWidth = zoom[2] - zoom[0];
    const double dHeight = zoom[3] - zoom[1];
    if (!(dWidth > 0.0) || !(dHeight > 0.0)) {
        return {-1.0, 1.0, 1.0, -1.0};
    }
    const auto single = [](double d) { return static_cast<double>(static_cast<float>(d)); };
    return {single(2 * (area[0] - zoom[0]) / dWidth - 1), single(2 * (area[2] - zoom[0]) / dWidth - 1),
            single(1 - 2 * (area[1] - zoom[1]) / dHeight), single(1 - 2 * (area[3] - zoom[1]) / dHeight)};
}

// Vertices are snapped to fractions of a pixel; a centre this close to the border may fall on either side.
constexpr double k_dSnap = 1.0 / 64;

bool nearBorder(double dFraction, double dLengthInPixels)
{
    return std::min(std::abs(dFraction), std::abs(1 - dFraction)) * std::abs(dLengthInPixels) < k_dSnap;
}

} // namespace

bool BufferModel::holdsPicture() const
{
    const size_t nLuma = toSize(nWidth) * toSize(nHeight);
    return aBytes.size() >= nLuma * 3 / 2;
}

BufferModel bufferModel(const VideoFrameDesc &desc, const BufferModel &before)
{
    BufferModel after = before;
    const bool blResized = desc.iWidth != before.nWidth || desc.iHeight != before.nHeight;
    const size_t nLuma = toSize(desc.iWidth) * toSize(desc.iHeight);
    const bool blPixels = desc.pFrameData != nullptr || (desc.nDisplayType == VIDEO_DISPLAY_NV12 &&
                                                         desc.pPlaneY != nullptr && desc.pPlaneUV != nullptr);
    const bool blOtherLength = desc.nDataLen > 0 ? desc.nDataLen != before.nAskedSize
                                                 : blPixels && before.aBytes.size() < nLuma * 3 / 2;
    if (before.aBytes.empty() || blResized || blOtherLength) {
        after.nAskedSize = desc.nDataLen;
        after.aBytes.assign(desc.nDataLen > 0 ? toSize(desc.nDataLen) : nLuma * 3 / 2, 0);
    }
    after.nType = desc.nDisplayType;
    after.blSlice = false;
    after.nWidth = desc.iWidth;
    after.nHeight = desc.iHeight;
    const auto put = [&after](size_t nAt, const uint8_t *pFrom, size_t nCount) {
        for (size_t i = 0; i < nCount && nAt + i < after.aBytes.size(); ++i) {
            after.aBytes[nAt + i] = pFrom[i];
        }
    };
    if (desc.nDisplayType != VIDEO_DISPLAY_NV12) {
        if (desc.pFrameData != nullptr) {
            put(0, desc.pFrameData, desc.nDataLen > 0 ? toSize(desc.nDataLen) : nLuma * 3 / 2);
        }
        return after;
    }
    const bool blPlanes = desc.pPlaneY != nullptr && desc.pPlaneUV != nullptr;
    if ((!blPlanes && desc.pFrameData == nullptr) || desc.nPitch < 0) {
        return after;
    }
    const int nPaddedHeight = (desc.iHeight + 15) / 16 * 16;
    const bool blPacked = desc.nPitch == 0 || (desc.nPitch == desc.iWidth && nPaddedHeight == desc.iHeight);
    if (blPacked) {
        put(0, blPlanes ? desc.pPlaneY : desc.pFrameData, nLuma);
        put(nLuma, blPlanes ? desc.pPlaneUV : desc.pFrameData + nLuma,
            blPlanes ? nLuma / 2 : nLuma * 3 / 2 - nLuma);
        return after;
    }
    const size_t nPitch = toSize(desc.nPitch);
    const uint8_t *pLuma = blPlanes ? desc.pPlaneY : desc.pFrameData;
    const uint8_t *pChroma = blPlanes ? desc.pPlaneUV : desc.pFrameData + nPitch * toSize(nPaddedHeight);
    for (size_t nRow = 0; nRow < toSize(desc.iHeight); ++nRow) {
        put(nRow * toSize(desc.iWidth), pLuma + nRow * nPitch, toSize(desc.iWidth));
    }
    for (size_t nRow = 0; nRow < toSize(desc.iHeight / 2); ++nRow) {
        put(nLuma + nRow * toSize(desc.iWidth), pChroma + nRow * nPitch, toSize(desc.iWidth));
    }
    return after;
}

ReferenceImage renderPicture(const BufferModel &buffer, const View &view)
{
    ReferenceImage image;
    image.nWidth = view.deviceSize().width();
    image.nHeight = view.deviceSize().height();
    const size_t nPixels = toSize(image.nWidth) * toSize(image.nHeight);
    image.aRgb.assign(3 * nPixels, 0.0);
    image.aIgnored.assign(nPixels, 0);
    const bool blHasPicture =
        buffer.nType == VIDEO_DISPLAY_YV12 || buffer.nType == VIDEO_DISPLAY_NV12 || buffer.blSlice;
    if (!blHasPicture || !buffer.holdsPicture()) {
        return image;
    }
    const Picture picture(buffer, view.faults);
    const Quad quad = quadOf(view);
    const bool blQuarter = view.nAngle == 90 || view.nAngle == 270;
    const double dWide = (quad.dRight - quad.dLeft) / 2 * (blQuarter ? image.nHeight : image.nWidth);
    const double dHigh = (quad.dTop - quad.dBottom) / 2 * (blQuarter ? image.nWidth : image.nHeight);
    for (int nY = 0; nY < image.nHeight; ++nY) {
        for (int nX = 0; nX < image.nWidth; ++nX) {
            double x = (nX + 0.5 + view.faults.dShiftX) / image.nWidth * 2 - 1;
            double y = 1 - (nY + 0.5 + view.faults.dShiftY) / image.nHeight * 2;
            undoTurnAndMirror(view, x, y);
            const double s = (x - quad.dLeft) / (quad.dRight - quad.dLeft);
            const double t = 1 - (y - quad.dBottom) / (quad.dTop - quad.dBottom);
            const bool blInside = s >= 0 && s <= 1 && t >= 0 && t <= 1;
            if (nearBorder(s, dWide) || nearBorder(t, dHigh)) {
                const double dS = k_dSnap / std::abs(dWide);
                const double dT = k_dSnap / std::abs(dHigh);
                const bool blReached = s >= -dS && s <= 1 + dS && t >= -dT && t <= 1 + dT;
                image.aIgnored[image.index(nX, nY)] = blReached ? 1 : 0;
            }
            if (blInside) {
                picture.colour(s, t, image.pixel(nX, nY));
            }
        }
    }
    return image;
}

} // namespace xelttest
