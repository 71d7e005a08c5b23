/* Sizes, offsets and codes of the interface, written out here a second time: a host compiled today must still
 * fit a library built tomorrow. */

#include <XeltRender.h>

#include <stdio.h>

static int s_nFailures = 0;

static void expect(const char *pName, long lActual, long lExpected)
{
    if (lActual != lExpected) {
        fprintf(stderr, "%s is %ld, expected %ld\n", pName, lActual, lExpected);
        ++s_nFailures;
    }
}

#define SIZE(type, bytes) expect("sizeof " #type, (long)sizeof(type), bytes)
#define FIELD(type, field, at, bytes)                                                 \
    do {                                                                              \
        expect("offset of " #type "." #field, (long)offsetof(type, field), at);       \
        expect("size of " #type "." #field, (long)sizeof(((type *)0)->field), bytes); \
    } while (0)
#define CODE(name, value) expect(#name, (long)(name), value)

static void frame(void)
{
    SIZE(VideoFrameDesc, 112);
    FIELD(VideoFrameDesc, pFrameData, 0, 8);
    FIELD(VideoFrameDesc, nDrawInfoKind, 12, 4);
    FIELD(VideoFrameDesc, iWidth, 16, 4);
    FIELD(VideoFrameDesc, iHeight, 20, 4);
    FIELD(VideoFrameDesc, pD3D11Texture, 24, 8);
    FIELD(VideoFrameDesc, nDisplayType, 40, 4);
    FIELD(VideoFrameDesc, pPlaneY, 48, 8);
    FIELD(VideoFrameDesc, pPlaneUV, 56, 8);
    FIELD(VideoFrameDesc, nPitch, 72, 4);
    FIELD(VideoFrameDesc, nDataLen, 88, 4);
    FIELD(VideoFrameDesc, nTextureSlice, 108, 4);
    CODE(VIDEO_DISPLAY_YV12, 0);
    CODE(VIDEO_DISPLAY_NV12, 3);
    CODE(VIDEO_DISPLAY_VAGL, 5);
    CODE(VIDEO_DISPLAY_DXGL, 6);
}

static void overlays(void)
{
    SIZE(XeltPoint, 8);
    FIELD(XeltPoint, x, 0, 4);
    FIELD(XeltPoint, y, 4, 4);
    SIZE(XeltDrawInfo, 416);
    FIELD(XeltDrawInfo, nType, 0, 4);
    FIELD(XeltDrawInfo, nColor, 4, 4);
    FIELD(XeltDrawInfo, nSize, 8, 4);
    FIELD(XeltDrawInfo, nPointNum, 12, 4);
    FIELD(XeltDrawInfo, aPoints, 16, 256);
    FIELD(XeltDrawInfo, aText, 272, 136);
    FIELD(XeltDrawInfo, nTextEncoding, 408, 4);
    FIELD(XeltDrawInfo, fOpacity, 412, 4);
    SIZE(XeltDrawInfoRequest, 88);
    FIELD(XeltDrawInfoRequest, nKind, 8, 4);
    FIELD(XeltDrawInfoRequest, nWidth, 12, 4);
    FIELD(XeltDrawInfoRequest, nHeight, 16, 4);
    FIELD(XeltDrawInfoRequest, nLeft, 20, 4);
    FIELD(XeltDrawInfoRequest, nTop, 24, 4);
    FIELD(XeltDrawInfoRequest, nRight, 28, 4);
    FIELD(XeltDrawInfoRequest, nBottom, 32, 4);
    FIELD(XeltDrawInfoRequest, pfnReceiver, 72, 8);
    FIELD(XeltDrawInfoRequest, pObject, 80, 8);
    SIZE(XeltDrawInfoCallbackPara, 16);
    FIELD(XeltDrawInfoCallbackPara, pfnCallback, 0, 8);
    FIELD(XeltDrawInfoCallbackPara, pUser, 8, 8);
    CODE(DRAWINFO_POLYLINE, 0);
    CODE(DRAWINFO_OUTLINE, 1);
    CODE(DRAWINFO_OUTLINE_ALT, 2);
    CODE(DRAWINFO_TEXT, 3);
    CODE(DRAWINFO_FILLED_AREA, 6);
    CODE(DRAWINFO_ENCODING_GBK, 1);
    CODE(DRAWINFO_ENCODING_UTF8, 2);
}

static void parameters(void)
{
    SIZE(XeltEZoomArea, 32);
    FIELD(XeltEZoomArea, left, 0, 8);
    FIELD(XeltEZoomArea, top, 8, 8);
    FIELD(XeltEZoomArea, right, 16, 8);
    FIELD(XeltEZoomArea, bottom, 24, 8);
    SIZE(XeltStopDrawPara, 4);
    SIZE(XeltRotatePara, 12);
    FIELD(XeltRotatePara, nDirection, 0, 4);
    FIELD(XeltRotatePara, nAngle, 4, 4);
    FIELD(XeltRotatePara, nMirror, 8, 4);
    SIZE(XeltDrawRatioPara, 4);
    SIZE(XeltDrawDstRect, 16);
    FIELD(XeltDrawDstRect, left, 0, 4);
    FIELD(XeltDrawDstRect, top, 4, 4);
    FIELD(XeltDrawDstRect, right, 8, 4);
    FIELD(XeltDrawDstRect, bottom, 12, 4);
    SIZE(XeltWidgetRect, 16);
    FIELD(XeltWidgetRect, top, 0, 4);
    FIELD(XeltWidgetRect, left, 4, 4);
    FIELD(XeltWidgetRect, right, 8, 4);
    FIELD(XeltWidgetRect, bottom, 12, 4);
}

static void commands(void)
{
    CODE(XELT_RENDERER_YUV, 0);
    CODE(XELT_RENDERER_YUV_SUBIMAGE, 7);
    CODE(XELTCMD_SET_DRAWINFO_CALLBACK, 0);
    CODE(XELTCMD_SET_EZOOM_AREA, 1);
    CODE(XELTCMD_SET_LABEL_PARENT, 2);
    CODE(XELTCMD_SET_D3D11_DEVICE, 3);
    CODE(XELTCMD_SET_STOPDRAW_PARA, 4);
    CODE(XELTCMD_SET_ROTATE_PARA, 5);
    CODE(XELTCMD_SET_DRAW_RATIO_MODE, 6);
    CODE(XELTCMD_SET_DRAW_DST_RECT, 7);
    CODE(XELTCMD_GET_WINID, 0);
    CODE(XELTCMD_GET_WIDGET_RECT, 1);
    CODE(XELTCMD_GET_IS_OPENGLES, 3);
}

int main(void)
{
    frame();
    overlays();
    parameters();
    commands();
    return s_nFailures == 0 ? 0 : 1;
}
