#pragma once

#include "d3d11/ComPtr.h"

#include <QRect>
#include <cstdint>

namespace dx {

// Codes of setColorSpace and setColorRange; every other code means the default.
enum : int32_t {
    kColorSpaceBt601 = 3,
    kColorSpaceBt709 = 4, // default
};
enum : int32_t {
    kColorRangeLimited = 1, // 16 to 235; default
    kColorRangeFull = 2,    // 0 to 255
};

// Converts one slice of a decoder's texture at a time into an RGB render target, by the Direct3D 11 video
// processor. It has no lock and uses the device's immediate context: painting thread only, and nobody else
// may use that context meanwhile. Enumerator, processor and output view stay as long as they fit.
class D3D11VP
{
public:
    // A device without video processing is warned about; then nothing can be converted.
    explicit D3D11VP(ComPtr<ID3D11Device> device);
    ~D3D11VP();
    D3D11VP(const D3D11VP &) = delete;
    D3D11VP &operator=(const D3D11VP &) = delete;

    // What process() converts into; a reference is held. Its size is that of the part to process.
    void setOutputTexture(ID3D11Texture2D *pTexture);
    // Part of the input to process; an empty one stands for the whole input. It begins at the origin.
    void setSourceRect(const QRect &rect) { m_sourceRect = rect; }
    void setColorSpace(int32_t nColorSpace) { m_colorSpace = nColorSpace; }
    void setColorRange(int32_t nColorRange) { m_colorRange = nColorRange; }

    // Makes enumerator, processor and output view fit an input of that size and DXGI_FORMAT. False, with a
    // warning, when that fails; the next call tries again. Of a device without video processing the constructor
    // has warned.
    bool ensureResource(uint32_t nWidth, uint32_t nHeight, uint32_t nFormat);
    // Converts slice nIndex into the output texture. False, with a warning or a log line, when that fails.
    bool process(ID3D11Texture2D *pTexture, uint32_t nIndex);

protected:
    ComPtr<ID3D11Device> m_dev;
    ComPtr<ID3D11Texture2D> m_out;
    ComPtr<ID3D11VideoDevice> m_viddev; // empty when the device has none
    ComPtr<ID3D11VideoProcessorEnumerator> m_enum;
    ComPtr<ID3D11VideoProcessor> m_vp;
    ComPtr<ID3D11VideoProcessorOutputView> m_outview;
    uint32_t m_width = 0; // size that everything was made for; 0 before that
    uint32_t m_height = 0;
    int32_t m_colorSpace = kColorSpaceBt709;
    int32_t m_colorRange = kColorRangeLimited;
    QRect m_sourceRect;

private:
    bool createEnumerator(uint32_t nWidth, uint32_t nHeight);
    bool checkFormat(uint32_t nFormat) const;
    bool createProcessor();
    bool createOutputView();
    bool createInputView(ID3D11Texture2D *pTexture, uint32_t nIndex,
                         ComPtr<ID3D11VideoProcessorInputView> &inview) const;
    void setStreamState(ID3D11VideoContext &videoctx) const;
    bool blit(ID3D11VideoContext &videoctx, ID3D11VideoProcessorInputView *pInView) const;
};

} // namespace dx
