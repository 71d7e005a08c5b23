/*
 * XeltRender: puts decoded video frames on screen.
 *
 * Overview
 *   A renderer is one video pane: a Qt 5 QOpenGLWidget that draws the last frame it was given. A host
 *   creates a renderer for each pane, pushes frames into it from its decoding threads and steers it with
 *   numbered commands. This header is all that a host needs; XeltRender.hpp wraps it for C++.
 *
 * Life cycle
 *   1. Create a QApplication, then a renderer with Xelt_Create or Xelt_CreateEx, on the GUI thread (the
 *      renderer is a widget, and Qt makes widgets there only).
 *   2. Place it: Xelt_Create adds it to a layout. The handle's value is the address of the widget, so a
 *      host that uses Qt may also treat it as a QWidget * for as long as the handle is valid.
 *   3. Xelt_SetParam, Xelt_ShowYuvFrame, Xelt_ClearDraw as often as needed.
 *   4. Xelt_Release. The handle is invalid from that moment; the widget itself is destroyed a little later
 *      by the event loop of its thread.
 *   Renderers that are still registered when the library is unloaded are not released.
 *
 * Threads
 *   Every function may be called from any thread, except that the creators need the GUI thread. Calls on
 *   one renderer exclude each other. Xelt_ShowYuvFrame waits at most 500 ms for its turn and then drops the
 *   frame; every other call waits as long as it takes. A handle is looked up for at most 500 ms. A paint
 *   excludes Xelt_ShowYuvFrame, and Xelt_ClearDraw and Xelt_Release where they end the picture: they wait for it.
 *   A paint of a Direct3D 11 frame uses the device's immediate context on the GUI thread. The host either
 *   leaves that context alone meanwhile or has multithread protection switched on; then IT MUST NOT CALL
 *   WITH THAT PROTECTION ENTERED, BECAUSE THE PAINT THAT THE CALL WAITS FOR MAY BE WAITING FOR IT.
 *   A renderer may be released, and its widget destroyed with the host's window, while other calls on it are
 *   starting, waiting or inside: the end waits for the one that is inside, and the others are answered as for an
 *   unknown handle. ONLY CODE THAT THE LIBRARY CALLS (below) MUST NOT DESTROY THE WIDGET.
 *
 * What the library calls
 *   The overlay callback and the core library's log functions run inside calls and paints, with the renderer's
 *   locks held. From there a call on the same renderer answers -1 at once, or does nothing; its release is
 *   finished by the event loop afterwards. A call on another renderer waits at most 500 ms for its turn. NEITHER
 *   MAY WAIT FOR A THREAD THAT CALLS THE SAME RENDERER, NOR FOR THE GUI THREAD: closing, first showing and moving a
 *   pane wait for the call that is inside it, and a paint waits for the callback of a submission, up to 500 ms.
 *   No lock is held while Qt delivers events of the pane and its labels, paints a label parent or hands a message of
 *   the library's to the host's message handler (with Qt's own messages, of a shader that does not compile, one may
 *   be): what runs there may call every function, also on the same renderer.
 *
 * Ownership
 *   The library copies what it needs out of every record and every plane before the call returns, except
 *   where a field below says otherwise.
 *
 * Results
 *   0 is success and -1 failure. No function throws. A handle that is null, unknown or already released is
 *   answered with the documented result and never dereferenced.
 *
 * All records are little-endian and laid out as the checks at the end of this file say.
 */
#ifndef XELTRENDER_H
#define XELTRENDER_H

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* ---- Codes ---------------------------------------------------------------------------------------- */

/* Renderer type codes that Xelt_CreateEx accepts. 1, 2 and all other values are rejected. */
enum {
    XELT_RENDERER_YUV = 0,          /* 3, 4, 5 and 6 create the same renderer as 0 */
    XELT_RENDERER_YUV_SUBIMAGE = 7, /* fixed-size textures; neither turned nor mirrored */
};

/* Commands of Xelt_SetParam, each with the record that it takes. */
enum {
    XELTCMD_SET_DRAWINFO_CALLBACK = 0, /* XeltDrawInfoCallbackPara */
    XELTCMD_SET_EZOOM_AREA = 1,        /* XeltEZoomArea; THE LENGTH MUST BE EXACTLY 32 */
    XELTCMD_SET_LABEL_PARENT = 2,      /* the payload pointer itself is a QWidget *; see Xelt_SetParam */
    XELTCMD_SET_D3D11_DEVICE = 3,      /* one pointer: the host's ID3D11Device, or null; no reference is taken
                                        * before a frame of VIDEO_DISPLAY_DXGL comes: IT MUST LIVE UNTIL
                                        * ANOTHER IS SET OR THE RENDERER IS RELEASED */
    XELTCMD_SET_STOPDRAW_PARA = 4,     /* XeltStopDrawPara */
    XELTCMD_SET_ROTATE_PARA = 5,       /* XeltRotatePara */
    XELTCMD_SET_DRAW_RATIO_MODE = 6,   /* XeltDrawRatioPara; ALL 4 BYTES ARE READ WHATEVER THE LENGTH */
    XELTCMD_SET_DRAW_DST_RECT = 7      /* XeltDrawDstRect; ALL 16 BYTES ARE READ WHATEVER THE LENGTH */
};

/* Commands of Xelt_GetParam, each with what it writes. 2 is not used and answers -1. */
enum {
    XELTCMD_GET_WINID = 0,       /* native window handle, 8 bytes at most */
    XELTCMD_GET_WIDGET_RECT = 1, /* XeltWidgetRect; 16 BYTES ARE WRITTEN WHATEVER THE LENGTH */
    XELTCMD_GET_IS_OPENGLES = 3  /* uint32_t, 1 on OpenGL ES; 4 BYTES ARE WRITTEN WHATEVER THE LENGTH; see
                                  * Xelt_GetParam for whose context is meant */
};

/* VideoFrameDesc::nDisplayType */
enum {
    VIDEO_DISPLAY_YV12 = 0, /* planes in memory, from a software decoder */
    VIDEO_DISPLAY_NV12 = 3, /* planes in memory, from a DXVA decoder */
    VIDEO_DISPLAY_VAGL = 5, /* VA-API; accepted and recorded (as are 4, stored as 5, and 8), never drawn */
    VIDEO_DISPLAY_DXGL = 6  /* slice of a Direct3D 11 texture array */
};

/* XeltDrawInfo::nType */
enum {
    DRAWINFO_POLYLINE = 0,    /* open line through the points */
    DRAWINFO_OUTLINE = 1,     /* closed line through the points */
    DRAWINFO_OUTLINE_ALT = 2, /* the same */
    DRAWINFO_TEXT = 3,        /* label between point 0 (top left) and point 1 (bottom right) */
    DRAWINFO_FILLED_AREA = 6  /* triangle strip over the points */
};

/* XeltDrawInfo::nTextEncoding; every other value means the system's local 8-bit code page. */
enum { DRAWINFO_ENCODING_GBK = 1, DRAWINFO_ENCODING_UTF8 = 2 };

/* Sizes in bytes of the records that carry a length on the way in. */
enum {
    XELT_FRAME_DESC_SIZE = 112,
    XELT_DRAWINFO_REQUEST_SIZE = 88,
    XELT_DRAWINFO_SIZE = 416,
    XELT_DRAWINFO_MAX_POINTS = 32,
    XELT_DRAWINFO_TEXT_SIZE = 136
};

/* ---- Records -------------------------------------------------------------------------------------- */

/*
 * One decoded frame, passed to Xelt_ShowYuvFrame. At most 112 bytes are read; bytes that the host does not
 * pass count as zero. Plane pointers are read during the call only; the host owns the memory.
 */
typedef struct VideoFrameDesc
{
    /* The whole picture with its planes one after another: luma (width x height bytes), then two chroma
     * planes of a quarter of that each (rows of width / 2 bytes, the second plane at width x height x 5 / 4),
     * or for NV12 one interleaved chroma plane; width x height x 3 / 2 bytes in all. For NV12 it is used only
     * when pPlaneY or pPlaneUV is null. May be null: then nothing is copied and the old picture repaints. */
    const uint8_t *pFrameData;
    uint32_t nReserved8;
    int32_t nDrawInfoKind; /* any value; handed back in XeltDrawInfoRequest::nKind */
    /* Pixels, each at least 1. Chroma is iWidth / 2 x iHeight / 2, rounded down: a picture that is 1 pixel wide
     * or high has none, and shows as if every chroma sample were 0. A picture larger than the context's textures is
     * not drawn, though a frame in memory is accepted; the log says so. */
    int32_t iWidth;
    int32_t iHeight;
    /* VIDEO_DISPLAY_DXGL: an ID3D11Texture2D of the device that was set, at least as large as the picture,
     * which lies at its top left. Paints read it, also after the call: a reference is kept until the next
     * texture, a paint that fails, a frame of another type, or the end of drawing. Null keeps the texture there
     * is. */
    void *pD3D11Texture;
    uint64_t nReserved32;
    int32_t nDisplayType; /* VIDEO_DISPLAY_* */
    uint32_t nReserved44;
    /* NV12, or null: the luma plane, and the interleaved chroma plane. Packed rows are read in one piece,
     * iWidth x iHeight and iWidth x iHeight / 2 bytes (half a row more than whole rows when iHeight is odd);
     * padded ones iWidth bytes at a time, iHeight and iHeight / 2 rows. Rows of a width that is no multiple
     * of 4 show skewed, unless the pane has shown a YV12 frame in the same window before. */
    const uint8_t *pPlaneY;
    const uint8_t *pPlaneUV;
    uint64_t nReserved64;
    /* NV12: bytes from one source row to the next, the same for both planes, AT LEAST iWidth. 0 means packed
     * rows; a negative value copies nothing. With pFrameData, the chroma rows begin nPitch x (iHeight rounded
     * up to a multiple of 16) bytes into it, unless the rows are packed and the height is such a multiple. */
    int32_t nPitch;
    uint8_t aReserved76[12];
    /* Greater than 0: size in bytes of the buffer that the frame needs and, for every type but NV12, the
     * number of bytes readable at pFrameData, all of which are copied. 0 or less: width x height x 3 / 2. */
    int32_t nDataLen;
    uint8_t aReserved92[16];
    uint32_t nTextureSlice; /* VIDEO_DISPLAY_DXGL: array slice (subresource index) of pD3D11Texture */
} VideoFrameDesc;

typedef struct XeltPoint
{
    int32_t x; /* widget pixels from the left edge */
    int32_t y; /* widget pixels from the top edge */
} XeltPoint;

/* One overlay shape or label. The library copies it; the host's record may be reused at once. */
typedef struct XeltDrawInfo
{
    int32_t nType;     /* DRAWINFO_*; other values draw nothing */
    uint32_t nColor;   /* red in bits 0-7, green in bits 8-15, blue in bits 16-23 */
    int32_t nSize;     /* line width in pixels, at least 1; for text the font size in points */
    int32_t nPointNum; /* number of points; 0 or less: not drawn; at most 32 are read */
    XeltPoint aPoints[XELT_DRAWINFO_MAX_POINTS];
    /* Ended by a zero byte or by the end of the field. What Qt takes for rich text is shown as such, unless it could
     * name something to load or give sizes without bounds: then it shows as the text that it is. */
    char aText[XELT_DRAWINFO_TEXT_SIZE];
    int32_t nTextEncoding; /* DRAWINFO_ENCODING_* */
    float fOpacity; /* filled areas: 0 draws opaque under the blended ones, otherwise 0..1 over the picture */
} XeltDrawInfo;

/*
 * Takes one overlay record from the host. May be called only from inside the overlay callback, on its thread,
 * any number of times.
 *   pRecord  XeltDrawInfo to copy.
 *   nLength  bytes at pRecord, at least 1; at most 416 are read, missing ones count as zero.
 *   pObject  XeltDrawInfoRequest::pObject.
 * Returns 0, or -1 for a null record, a null object or a length below 1.
 */
typedef int32_t (*XeltDrawInfoReceiver)(const void *pRecord, int32_t nLength, void *pObject);

/* What the overlay callback is asked. Valid during the callback only. */
typedef struct XeltDrawInfoRequest
{
    uint64_t nReserved0;
    int32_t nKind;   /* nDrawInfoKind of the last frame */
    int32_t nWidth;  /* drawn area in widget pixels: |nRight - nLeft| */
    int32_t nHeight; /* |nBottom - nTop| */
    int32_t nLeft;
    int32_t nTop;
    int32_t nRight;
    int32_t nBottom;
    uint8_t aReserved36[36];
    XeltDrawInfoReceiver pfnReceiver; /* call it once for each record */
    void *pObject;                    /* pass it to pfnReceiver */
} XeltDrawInfoRequest;

/*
 * The host's overlay callback. It is called for every accepted frame, on the thread that submits it, and
 * after a resize on the GUI thread: BOTH MAY HAPPEN AT ONCE. Then only the records of the call that began
 * last are kept. In a submission it runs with the renderer's locks held; what it may call, and what it must not
 * wait for, stands at the top of this file. What it throws ends at the library; the records that it has delivered
 * count.
 *   pReserved  null.
 *   pRequest   what is asked; valid during the call.
 *   nLength    88.
 *   pUser      XeltDrawInfoCallbackPara::pUser.
 * The result is ignored.
 */
typedef int32_t (*XeltDrawInfoCallback)(void *pReserved, const XeltDrawInfoRequest *pRequest, int32_t nLength,
                                        void *pUser);

/*
 * XELTCMD_SET_DRAWINFO_CALLBACK. Xelt_ClearDraw and Xelt_Release forget the callback. After Xelt_ClearDraw
 * with the last picture kept, the next frame clears once more and forgets it again: register it after that
 * frame.
 * A CALL THAT A RESIZE HAS STARTED MAY STILL RUN ON THE GUI THREAD WHEN ANOTHER THREAD'S CALL FORGETS OR
 * REPLACES THE CALLBACK: WHAT pUser POINTS TO MUST OUTLIVE IT.
 */
typedef struct XeltDrawInfoCallbackPara
{
    XeltDrawInfoCallback pfnCallback; /* null: no overlays */
    void *pUser;                      /* the host's; handed back, never dereferenced */
} XeltDrawInfoCallbackPara;

/*
 * XELTCMD_SET_EZOOM_AREA: the part of the widget, in normalised units 0..1, that is magnified to the whole
 * widget. (0, 0, 1, 1) shows everything. An empty or inverted window turns zoom and placement off.
 */
typedef struct XeltEZoomArea
{
    double left;
    double top;
    double right;
    double bottom;
} XeltEZoomArea;

/* XELTCMD_SET_STOPDRAW_PARA */
typedef struct XeltStopDrawPara
{
    int32_t blReserveLastFrm; /* non-zero: Xelt_ClearDraw leaves the last picture on screen */
} XeltStopDrawPara;

/* XELTCMD_SET_ROTATE_PARA; a shorter payload changes only the leading fields. */
typedef struct XeltRotatePara
{
    int32_t nDirection; /* 0 clockwise, any other value counter-clockwise */
    int32_t nAngle;     /* degrees: 0, 90, 180, 270; any other value means no turn */
    int32_t nMirror;    /* 0 none, 1 left-right, 2 upside down; any other value means none */
} XeltRotatePara;

/*
 * XELTCMD_SET_DRAW_RATIO_MODE; worked out once, when set: send it again after a resize. The picture goes from the
 * first to the last pixel's left and top edge, as for XELTCMD_SET_DRAW_DST_RECT: WITH "FILL" THE WIDGET'S LAST COLUMN
 * AND ROW STAY BLACK.
 */
typedef struct XeltDrawRatioPara
{
    int32_t nMode; /* 0 keep the frame's aspect ratio, any other value fill the widget */
} XeltDrawRatioPara;

/*
 * XELTCMD_SET_DRAW_DST_RECT: where the picture goes, in widget pixels. The edges count as inclusive where the size is
 * checked, but the picture ends at the left edge of the column `right` and at the top edge of the row `bottom`: those
 * stay black. {0, 0, width, height} fills a widget of that size to its last pixel; {0, 0, width - 1, height - 1} does
 * not.
 */
typedef struct XeltDrawDstRect
{
    int32_t left;
    int32_t top;
    int32_t right;
    int32_t bottom;
} XeltDrawDstRect;

/* XELTCMD_GET_WIDGET_RECT, in widget pixels with inclusive edges. Mind the order of the fields. */
typedef struct XeltWidgetRect
{
    int32_t top;
    int32_t left;
    int32_t right;
    int32_t bottom;
} XeltWidgetRect;

/* ---- Functions ------------------------------------------------------------------------------------ */

/*
 * Creates a renderer of type 0.
 *   layout  the host's QLayout that takes (and then owns) the widget, or null for a widget without parent.
 * Returns the handle, or null on failure (logged).
 * Thread: GUI thread. May block up to 2000 ms.
 */
void *Xelt_Create(void *layout);

/*
 * Creates a renderer by type code. The widget has no parent; the host places it.
 *   param  buffer that begins with the type code (XELT_RENDERER_*), little-endian; null fails silently.
 *   len    bytes at param; at most 4 are read, missing ones count as zero. MUST NOT BE NEGATIVE.
 * Returns the handle, or null on failure (logged).
 * Thread: GUI thread. May block up to 2000 ms.
 */
void *Xelt_CreateEx(const void *param, int32_t len);

/*
 * Ends a renderer. Waits for a call that is inside it, and for a paint; the widget is detached from its
 * parent and destroyed by its own thread's event loop. Submissions that a failed hardware path holds up come back.
 *   handle  renderer; null answers -1, an unknown one 0.
 * Returns 0, or -1 for null.
 * Thread: any. May block without limit while another call uses the renderer.
 */
int32_t Xelt_Release(void *handle);

/*
 * Sets a parameter.
 *   handle  renderer.
 *   cmd     XELTCMD_SET_*.
 *   data    the command's record; never null. For XELTCMD_SET_LABEL_PARENT the pointer itself is the QWidget
 *           that labels are put on, which must stay alive while labels are shown.
 *   size    bytes at data, at least 1.
 *   THE LIBRARY DOES NOT CHECK THE SIZE AGAINST THE RECORD: PASS EXACTLY THE RECORD AND ITS SIZE.
 *   A zoom window longer than 32 bytes overwrites the renderer; shorter mode and rectangle records are read
 *   past their end.
 * Returns 0, or -1 for an unknown handle or command, a null record, a size below 1, and for a destination
 * rectangle smaller than 2 x 2 (which is stored all the same).
 * Thread: any. Blocks while another call uses the renderer.
 */
int32_t Xelt_SetParam(void *handle, uint32_t cmd, const void *data, uint32_t size);

/*
 * Reads a parameter.
 *   handle  renderer.
 *   cmd     XELTCMD_GET_*.
 *   data    the host's buffer; never null. IT MUST HOLD THE COMMAND'S WHOLE RESULT, WHATEVER THE SIZE SAYS.
 *   size    bytes at data, at least 1.
 * XELTCMD_GET_IS_OPENGLES answers for the context that is current on the calling thread, not for the pane's. With
 * none, as on every decoding thread, it says 1 unless Qt has loaded the desktop OpenGL library: ask where the pane's
 * context is current.
 * Returns 0, or -1 for an unknown handle or command, a null buffer, a size below 1, or a window handle that
 * is not to be had (off the GUI thread: one that has to be made first, and the GUI thread does not get to it within
 * 500 ms; once it has, the next call is answered).
 * Thread: any. Blocks while another call uses the renderer. While it waits for the GUI thread, other calls go on.
 */
int32_t Xelt_GetParam(void *handle, uint32_t cmd, void *data, uint32_t size);

/*
 * Shows a frame: copies its pixels, asks the host's overlay callback for records and requests a repaint.
 *   handle  renderer.
 *   frame   VideoFrameDesc.
 *   size    bytes at frame, at least 1; at most 112 are read.
 * Returns 0, or -1 for an unknown handle, a busy renderer (500 ms), a null or empty descriptor, a size that
 * is not positive or cannot be stored, and while the last Direct3D 11 draw failed.
 * After the hardware path of a XELT_RENDERER_YUV could not be initialised ("InitD3D11EGL faild" in the log), A CALL
 * WAITS UNTIL THE PANE IS RELEASED, DESTROYED OR CLEARED (without the last picture kept) and then answers -1; on the
 * GUI thread and from inside another renderer it answers -1 at once. It holds nothing else up. A clear ends that.
 * Thread: any. May block up to 500 ms for the registry, 500 ms for the renderer, and for a paint in progress.
 */
int32_t Xelt_ShowYuvFrame(void *handle, const void *frame, uint32_t size);

/*
 * Stops drawing: drops the overlays and the overlay callback, ends the zoom and turns the pane black, or,
 * with XELTCMD_SET_STOPDRAW_PARA set, keeps the last picture until the next frame arrives. That frame first
 * clears the pane for good: it ends placement and zoom, forgets the callback and unsets the parameter.
 * A sub-image renderer has no second clear, and leaves its widget as it is when the last frame came with
 * nDataLen.
 *   handle  renderer; an unknown one is ignored.
 * Thread: any. Blocks while another call uses the renderer, and for a paint in progress unless the last picture is
 * kept.
 */
void Xelt_ClearDraw(void *handle);

#ifdef __cplusplus
}
#endif

/* ---- Layout checks -------------------------------------------------------------------------------- */

#ifdef __cplusplus
#define XELT_CHECK(name, condition) static_assert(condition, #name)
#else
#define XELT_CHECK(name, condition) typedef char xelt_check_##name[(condition) ? 1 : -1]
#endif
#define XELT_CHECK_SIZE(type, size) XELT_CHECK(type##_size, sizeof(type) == (size))
#define XELT_CHECK_AT(type, field, offset) XELT_CHECK(type##_##field, offsetof(type, field) == (offset))

XELT_CHECK_SIZE(VideoFrameDesc, XELT_FRAME_DESC_SIZE);
XELT_CHECK_AT(VideoFrameDesc, pFrameData, 0);
XELT_CHECK_AT(VideoFrameDesc, nDrawInfoKind, 12);
XELT_CHECK_AT(VideoFrameDesc, iWidth, 16);
XELT_CHECK_AT(VideoFrameDesc, iHeight, 20);
XELT_CHECK_AT(VideoFrameDesc, pD3D11Texture, 24);
XELT_CHECK_AT(VideoFrameDesc, nDisplayType, 40);
XELT_CHECK_AT(VideoFrameDesc, pPlaneY, 48);
XELT_CHECK_AT(VideoFrameDesc, pPlaneUV, 56);
XELT_CHECK_AT(VideoFrameDesc, nPitch, 72);
XELT_CHECK_AT(VideoFrameDesc, nDataLen, 88);
XELT_CHECK_AT(VideoFrameDesc, nTextureSlice, 108);
XELT_CHECK_SIZE(XeltPoint, 8);
XELT_CHECK_SIZE(XeltDrawInfo, XELT_DRAWINFO_SIZE);
XELT_CHECK_AT(XeltDrawInfo, nType, 0);
XELT_CHECK_AT(XeltDrawInfo, nColor, 4);
XELT_CHECK_AT(XeltDrawInfo, nSize, 8);
XELT_CHECK_AT(XeltDrawInfo, nPointNum, 12);
XELT_CHECK_AT(XeltDrawInfo, aPoints, 16);
XELT_CHECK_AT(XeltDrawInfo, aText, 272);
XELT_CHECK_AT(XeltDrawInfo, nTextEncoding, 408);
XELT_CHECK_AT(XeltDrawInfo, fOpacity, 412);
XELT_CHECK_SIZE(XeltDrawInfoRequest, XELT_DRAWINFO_REQUEST_SIZE);
XELT_CHECK_AT(XeltDrawInfoRequest, nKind, 8);
XELT_CHECK_AT(XeltDrawInfoRequest, nWidth, 12);
XELT_CHECK_AT(XeltDrawInfoRequest, nHeight, 16);
XELT_CHECK_AT(XeltDrawInfoRequest, nLeft, 20);
XELT_CHECK_AT(XeltDrawInfoRequest, nTop, 24);
XELT_CHECK_AT(XeltDrawInfoRequest, nRight, 28);
XELT_CHECK_AT(XeltDrawInfoRequest, nBottom, 32);
XELT_CHECK_AT(XeltDrawInfoRequest, pfnReceiver, 72);
XELT_CHECK_AT(XeltDrawInfoRequest, pObject, 80);
XELT_CHECK_SIZE(XeltDrawInfoCallbackPara, 16);
XELT_CHECK_AT(XeltDrawInfoCallbackPara, pUser, 8);
XELT_CHECK_SIZE(XeltEZoomArea, 32);
XELT_CHECK_SIZE(XeltStopDrawPara, 4);
XELT_CHECK_SIZE(XeltRotatePara, 12);
XELT_CHECK_SIZE(XeltDrawRatioPara, 4);
XELT_CHECK_SIZE(XeltDrawDstRect, 16);
XELT_CHECK_SIZE(XeltWidgetRect, 16);

#undef XELT_CHECK
#undef XELT_CHECK_SIZE
#undef XELT_CHECK_AT

#endif
