#include "d3d11/D3D11VP.h"

#include "d3d11/D3DWarning.h"
#include "log/CLS_OmbrixApi.h"
#include "log/QtMessages.h"

#include <utility>

namespace dx {

namespace {

constexpr char kFile[] = "D3D11VP";
constexpr char kProcess[] = "dx::D3D11VP::process";

} // namespace

D3D11VP::D3D11VP(ComPtr<ID3D11Device> device) : m_dev(std::move(device))
{
    d3d::Failed(m_dev.As(IID_ID3D11VideoDevice, m_viddev), "D3D11VP error@%1. m_dev.As(&m_viddev): (0x%2) %3",
                40);
}

D3D11VP::~D3D11VP() = default;

void D3D11VP::setOutputTexture(ID3D11Texture2D *pTexture)
{
    if (pTexture != m_out.Get()) {
        m_out = ComPtr<ID3D11Texture2D>(pTexture);
    }
    m_outview.Reset(); // also when the texture is the same one
}

bool D3D11VP::ensureResource(uint32_t nWidth, uint32_t nHeight, uint32_t nFormat)
{
    if (!m_viddev) {
        return false; // warned about at construction
    }
    const bool blChanged = nWidth != m_width || nHeight != m_height;
    if ((blChanged || !m_enum) && !createEnumerator(nWidth, nHeight)) {
        return false;
    }
    if (!checkFormat(nFormat)) {
        return false;
    }
    if ((blChanged || !m_vp) && !createProcessor()) {
        return false;
    }
    if ((blChanged || !m_outview) && !createOutputView()) {
        return false;
    }
    m_width = nWidth;
    m_height = nHeight;
    return true;
}

bool D3D11VP::createEnumerator(uint32_t nWidth, uint32_t nHeight)
{
    // The output is as large as the input: scaling is left to the drawing.
    D3D11_VIDEO_PROCESSOR_CONTENT_DESC vpdesc = {};
    vpdesc.InputFrameFormat = D3D11_VIDEO_FRAME_FORMAT_PROGRESSIVE;
    vpdesc.InputWidth = nWidth;
    vpdesc.InputHeight = nHeight;
    vpdesc.OutputWidth = nWidth;
    vpdesc.OutputHeight = nHeight;
    vpdesc.Usage = D3D11_VIDEO_USAGE_PLAYBACK_NORMAL;
    return !d3d::Failed(
        m_viddev->CreateVideoProcessorEnumerator(&vpdesc, m_enum.ReleaseAndGetAddressOf()),
        "D3D11VP error@%1. m_viddev->CreateVideoProcessorEnumerator(&vpdesc, &m_enum): (0x%2) %3", 123);
}

bool D3D11VP::checkFormat(uint32_t nFormat) const
{
    UINT nFlags = 0;
    if (d3d::Failed(m_enum->CheckVideoProcessorFormat(static_cast<DXGI_FORMAT>(nFormat), &nFlags),
                    "D3D11VP error@%1. m_enum->CheckVideoProcessorFormat(format, &flags): (0x%2) %3", 128)) {
        return false;
    }
    if ((nFlags & D3D11_VIDEO_PROCESSOR_FORMAT_SUPPORT_INPUT) == 0) {
        qtlog::Warning("unsupported input format for d3d11 video processor: %d", static_cast<int>(nFormat));
        return false;
    }
    return true;
}

bool D3D11VP::createProcessor()
{
    return !d3d::Failed(m_viddev->CreateVideoProcessor(m_enum.Get(), 0, m_vp.ReleaseAndGetAddressOf()),
                        "D3D11VP error@%1. m_viddev->CreateVideoProcessor(m_enum.Get(), 0, &m_vp): (0x%2) %3",
                        135);
}

bool D3D11VP::createOutputView()
{
    D3D11_VIDEO_PROCESSOR_OUTPUT_VIEW_DESC outputDesc = {};
    outputDesc.ViewDimension = D3D11_VPOV_DIMENSION_TEXTURE2D;
    return !d3d::Failed(m_viddev->CreateVideoProcessorOutputView(m_out.Get(), m_enum.Get(), &outputDesc,
                                                                 m_outview.ReleaseAndGetAddressOf()),
                        "D3D11VP error@%1. m_viddev->CreateVideoProcessorOutputView(m_out.Get(), "
                        "m_enum.Get(), &outputDesc, &m_outview): (0x%2) %3",
                        140);
}

bool D3D11VP::process(ID3D11Texture2D *pTexture, uint32_t nIndex)
{
    if (pTexture == nullptr || !m_out) {
        // The numbers of these two reports are part of their text, by which hosts know them; they do not follow the
        // source.
        XELT_REPORT_ERROR_AT(kFile, kProcess, 68, "[D3D11VP::process] !texture || !m_out fail!");
        return false;
    }
    D3D11_TEXTURE2D_DESC desc = {};
    pTexture->GetDesc(&desc);
    if (!ensureResource(desc.Width, desc.Height, desc.Format)) {
        XELT_REPORT_ERROR_AT(kFile, kProcess, 75, "[D3D11VP::process] ensureResource faild!");
        return false;
    }
    ComPtr<ID3D11VideoProcessorInputView> inview;
    if (!createInputView(pTexture, nIndex, inview)) {
        return false;
    }
    ComPtr<ID3D11DeviceContext> ctx;
    ComPtr<ID3D11VideoContext> videoctx;
    m_dev->GetImmediateContext(ctx.ReleaseAndGetAddressOf());
    if (d3d::Failed(ctx.As(IID_ID3D11VideoContext, videoctx),
                    "D3D11VP error@%1. ctx.As(&videoctx): (0x%2) %3", 88)) {
        return false;
    }
    setStreamState(*videoctx.Get());
    return blit(*videoctx.Get(), inview.Get());
}

bool D3D11VP::createInputView(ID3D11Texture2D *pTexture, uint32_t nIndex,
                              ComPtr<ID3D11VideoProcessorInputView> &inview) const
{
    D3D11_VIDEO_PROCESSOR_INPUT_VIEW_DESC inviewDesc = {};
    inviewDesc.ViewDimension = D3D11_VPIV_DIMENSION_TEXTURE2D;
    inviewDesc.Texture2D.ArraySlice = nIndex;
    return !d3d::Failed(m_viddev->CreateVideoProcessorInputView(pTexture, m_enum.Get(), &inviewDesc,
                                                                inview.ReleaseAndGetAddressOf()),
                        "D3D11VP error@%1. m_viddev->CreateVideoProcessorInputView( texture, m_enum.Get(), "
                        "&inviewDesc, &inview): (0x%2) %3",
                        84);
}

void D3D11VP::setStreamState(ID3D11VideoContext &videoctx) const
{
    if (!m_sourceRect.isEmpty()) {
        // Right and bottom are the width and height, deliberately: source rectangles begin at the origin.
        const RECT rcSource = {m_sourceRect.x(), m_sourceRect.y(), m_sourceRect.width(),
                               m_sourceRect.height()};
        videoctx.VideoProcessorSetStreamSourceRect(m_vp.Get(), 0, TRUE, &rcSource);
    }
    videoctx.VideoProcessorSetStreamAutoProcessingMode(m_vp.Get(), 0, FALSE);
    D3D11_VIDEO_PROCESSOR_COLOR_SPACE cs = {};
    cs.YCbCr_Matrix = m_colorSpace == kColorSpaceBt601 ? 0 : 1;
    cs.Nominal_Range = m_colorRange == kColorRangeFull ? D3D11_VIDEO_PROCESSOR_NOMINAL_RANGE_0_255
                                                       : D3D11_VIDEO_PROCESSOR_NOMINAL_RANGE_16_235;
    videoctx.VideoProcessorSetStreamColorSpace(m_vp.Get(), 0, &cs);
}

bool D3D11VP::blit(ID3D11VideoContext &videoctx, ID3D11VideoProcessorInputView *pInView) const
{
    D3D11_VIDEO_PROCESSOR_STREAM stream = {};
    stream.Enable = TRUE;
    stream.pInputSurface = pInView;
    return !d3d::Failed(videoctx.VideoProcessorBlt(m_vp.Get(), m_outview.Get(), 0, 1, &stream),
                        "D3D11VP error@%1. videoctx->VideoProcessorBlt(m_vp.Get(), m_outview.Get(), 0, 1, "
                        "&stream): (0x%2) %3",
                        109);
}

} // namespace dx
