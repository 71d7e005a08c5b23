#pragma once

#include "interface/XeltRender.h"
#include "log/CLS_OmbrixApi.h"
#include "widget/DisplayGeometry.h"
#include "widget/FrameMutex.h"

#include <QMutex>
#include <QOpenGLExtraFunctions>
#include <QOpenGLWidget>
#include <QPointer>
#include <QRect>
#include <QSize>
#include <QVector>
#include <array>
#include <atomic>
#include <functional>
#include <utility>
#include <vector>

class QLabel;
class QLayout;

// The video pane that every renderer derives from: parameters, display geometry, frame buffer, labels and the
// two locks. The GUI thread runs the Qt overrides and everything about labels; host threads reach it through
// the exported functions, which serialise them with a lock of their own.
//
// Lock order: m_mutexFrame, then m_mutexDrawInfo, then m_mutexParameters.
class CLS_ShaderBase : public QOpenGLWidget, protected QOpenGLExtraFunctions
{
    Q_OBJECT

public:
    static constexpr size_t kLabelCount = 48;

    explicit CLS_ShaderBase(QWidget *pParent);
    ~CLS_ShaderBase() override;

    // The operations behind the exports, in slot order. Results are 0 or -1.
    virtual int32_t SetParentLayout(QLayout *pLayout);
    virtual int32_t UnInit();
    virtual int32_t ShowYuvFrame(const void *pData, int32_t nLength) = 0;
    virtual int32_t SetParam(uint32_t nCommand, const void *pPayload, int32_t nLength);
    virtual int32_t GetParam(uint32_t nCommand, void *pBuffer, int32_t nLength);
    virtual void ClearDraw();
    // Makes a zeroed frame buffer of nSize bytes, or of a 4:2:0 frame when nSize is below 1. Needs
    // m_mutexFrame. -1 without a size, or when the buffer cannot be had (the sizes are stored all the same).
    virtual int32_t InitFrameBuffer(int32_t nWidth, int32_t nHeight, int32_t nSize);
    // Needs the widget's context current and m_mutexFrame.
    virtual void ReleaseGLResource();
    virtual void ClearDrawInfo();

    // The host is not asked for overlay records any more. Any thread.
    void ForgetDrawInfoCallback();

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

    // Called when the widget's destruction begins, while it is still whole. GUI thread.
    using DestroyHook = std::function<void()>;
    void SetDestroyHook(DestroyHook fnHook) { m_fnDestroyHook = std::move(fnHook); }

    // What is left of a call when it has ended and no lock is held: waiting, and what runs code of the host's. It
    // gets the call's result and gives the final one. One that uses the renderer is for the renderer's own thread.
    using Afterwards = std::function<int32_t(int32_t nResult)>;
    // GUI thread.
    bool IsBeingPainted() const { return m_blPainting; }
    // Empty where nothing is left. Needs the exports' lock.
    Afterwards TakeAfterwards() { return std::exchange(m_fnAfterwards, nullptr); }

Q_SIGNALS:
    // Asks the GUI thread to rebuild the labels.
    void signalDrawTextInfo();

public Q_SLOTS:
    // GUI thread.
    void DeleteLabels();

protected:
    bool event(QEvent *pEvent) override;
    void resizeGL(int nWidth, int nHeight) override;

    // Rebuilds the labels from the text records. GUI thread, no lock held: code of the host's runs meanwhile.
    void AddLabel();
    // The same from inside a paint, where a label parent must not be painted at once.
    void AddLabelWhilePainting();
    // Blanks every label. As above.
    void ClearLabels();
    // Does it when the call that this thread is inside has ended, or at once when it is inside none. Gives what the
    // call is to answer for now. Needs the exports' lock in a call.
    int32_t AfterCall(Afterwards fnAfterwards, int32_t nResult);
    // Does it then as well, but from the event loop when this thread is inside another renderer or a paint. GUI thread.
    void RunUnlocked(void (CLS_ShaderBase::*pfnWork)());
    void ComputeQuadVertices(geometry::QuadVertices &afOut) const;
    // Asks the host for overlay records, which it delivers before this returns, and keeps the kind it was
    // asked for. The host's result, or 0 without a callback, when the kind is not kept. Any thread.
    int32_t NotifyDrawInfo(int32_t nKind, int32_t &nKeptKind);
    // Drops the old overlay records and asks for new ones. True when there were or are some. Any thread.
    bool RenewDrawInfo(int32_t nKind, int32_t &nKeptKind);
    // The same with the kind that was kept last.
    bool RepeatDrawInfo(int32_t &nKeptKind);
    // Whether any overlay record is held.
    bool HasDrawInfo();
    // The overlay records as they are now.
    QVector<XeltDrawInfo> DrawInfo();
    // What a frame of the stored size does when there is no buffer, as after a failed allocation.
    enum class MissingBuffer { Allocate, Leave };
    // Sees to a buffer for a frame in memory. False when the frame cannot be stored: nResult is then what the
    // submission answers. A frame without a size is reported. Needs m_mutexFrame.
    bool EnsureFrameBuffer(const VideoFrameDesc &frame, MissingBuffer missing, const LogPosition &position,
                           int32_t &nResult);
    // Needs m_mutexFrame.
    void FreeFrameBuffer();
    // The first thing that a derived destructor does: afterwards no export reaches this object.
    void BeginDestruction();

    // Bytes of m_pFrameBuffer that frames are copied into.
    size_t FrameBufferBytes() const { return m_nFrameBufferBytes; }
    // Whether the frame buffer has room for a picture of the frame size. A host may have declared fewer
    // bytes; such a frame must not be uploaded. Needs m_mutexFrame.
    bool HoldsWholeFrame() const;
    // Whether a texture may have the frame's size, nLargest wide or high at most. One that may not is reported, but for
    // the sizes reported last. Needs m_mutexFrame.
    bool FitsTextures(int32_t nLargest, const LogPosition &position);
    // Whether this is the GUI thread with the widget's own context current. Any thread.
    bool IsContextCurrent() const;
    // What a change of contexts has to lock: m_mutexFrame, or null inside a call or a paint, where nobody else can have
    // it. A host's callback may show the window or move the pane. GUI thread.
    FrameMutex *FrameMutexToBorrow();
    // Says that the widget is being painted, with Qt's own code around it. GUI thread.
    class PaintScope
    {
    public:
        explicit PaintScope(CLS_ShaderBase &widget)
            : m_widget(widget), m_blOuter(std::exchange(widget.m_blPainting, true))
        {
        }
        ~PaintScope() { m_widget.m_blPainting = m_blOuter; }
        PaintScope(const PaintScope &) = delete;
        PaintScope &operator=(const PaintScope &) = delete;

    private:
        CLS_ShaderBase &m_widget;
        const bool m_blOuter;
    };

    // Parameters that a paint reads, as they are now. Any thread.
    struct Picture
    {
        geometry::NormRect rcDrawArea;
        geometry::NormRect rcEZoom;
        XeltRotatePara rotation;
    };
    Picture CurrentPicture() const;
    // Placement and zoom back to the whole widget, or the zoom alone. Any thread.
    void ResetPlacement();
    void ResetZoom();

    FrameMutex m_mutexFrame;
    QMutex m_mutexDrawInfo; // guards m_vecDrawInfo, its requests, the host's callback and the kept kind
    int32_t m_nVideoWidth = 0;
    int32_t m_nVideoHeight = 0;
    uint8_t *m_pFrameBuffer = nullptr;
    uint8_t *m_pPlaneY = nullptr;  // NV12: into m_pFrameBuffer
    uint8_t *m_pPlaneUV = nullptr; // NV12: into m_pFrameBuffer
    bool m_bTypeChanged = false;
    std::atomic<int32_t> m_nDisplayType{0}; // the sub-image renderer looks at it without a lock
    bool m_blGLReady = false;
    int32_t m_nFrameBufferSize = 0;    // as asked for
    std::atomic<uint64_t> m_hWinId{0}; // follows the native window
    void *m_pD3D11Device = nullptr;
    XeltDrawInfoCallback m_pfnDrawInfo = nullptr;
    void *m_pDrawInfoUser = nullptr;
    geometry::NormRect m_rcEZoom; // m_mutexParameters guards it, the drawn area and the rotation
    QVector<XeltDrawInfo> m_vecDrawInfo;
    QRect m_rcDraw;
    geometry::NormRect m_rcDrawArea;
    std::atomic<QWidget *> m_pLabelParent{nullptr}; // set by host threads, used by the GUI thread
    QPointer<QLabel> m_pLabels[kLabelCount];        // guarded pointers: a label goes with its parent
    bool m_blLabelsShown = false;
    int32_t blReserveLastFrm = 0;
    int32_t m_blUnInit = 0;
    int32_t m_nVideoRotateDirection = 0;
    int32_t m_nVideoRotateAngle = 0;
    int32_t mirrorType = 0;

private:
    int32_t OnSetDrawInfoCallback(const void *pPayload, size_t nLength);
    int32_t OnSetEZoomArea(const void *pPayload, size_t nLength);
    int32_t OnSetLabelParent(const void *pPayload);
    int32_t OnSetD3D11Device(const void *pPayload, size_t nLength);
    int32_t OnSetStopDrawPara(const void *pPayload, size_t nLength);
    int32_t OnSetVideoRotatePara(const void *pPayload, size_t nLength);
    int32_t SetDrawRatioMode(int32_t nMode);
    int32_t SetDrawDstRect(int32_t nLeft, int32_t nTop, int32_t nRight, int32_t nBottom);
    void UpdateDrawArea(const QRect &rcWidget);

    int32_t OnGetWinId(void *pBuffer, size_t nLength);
    int32_t OnGetWidgetRect(void *pBuffer) const;
    static int32_t OnGetIsOpenGLES(void *pBuffer);
    // Asks the GUI thread's event loop for the window; what waits for its answer. Any thread.
    Afterwards RequestWinId(void *pBuffer, size_t nLength);

    // The host delivers its overlay records through this one.
    static int32_t ReceiveDrawInfo(const void *pRecord, int32_t nLength, void *pObject);
    int32_t AppendDrawInfo(const void *pRecord, size_t nLength);

    // A text record and the label that is to show it.
    struct SlotRecord
    {
        size_t nSlot;
        XeltDrawInfo record;
    };
    struct LabelRebuild
    {
        bool blShown = false;   // some text record stands in the list
        bool blChanged = false; // some label is not what it was
    };
    class RebuildScope;
    enum class ParentPaint { AtOnce, Later };
    // The text records that have a label. Any thread.
    std::vector<SlotRecord> TakeTexts(bool &blShown);
    // The rest: GUI thread, no lock held. Of a widget that is gone on the way nothing is touched.
    void RebuildLabels(ParentPaint paint);
    // Brings the label slots up to date with the text records.
    LabelRebuild ShowLabels(const RebuildScope &scope);
    // True when the slot's label changed.
    bool ShowLabel(size_t nSlot, const XeltDrawInfo &record);
    bool BlankLabel(size_t nSlot);
    QLabel *NewLabel();

    uint64_t m_nDrawInfoRequest = 0; // number of the last request for overlay records
    DestroyHook m_fnDestroyHook;
    Afterwards m_fnAfterwards; // guarded by the exports' lock
    QMetaObject::Connection m_labelParentDestroyed;
    std::array<XeltDrawInfo, kLabelCount> m_aLabelRecords{}; // what each label shows
    bool m_blRebuildingLabels = false;                       // GUI thread
    bool m_blPainting = false;                               // GUI thread
    // The allocation is longer than this where an upload reads rows past their end.
    size_t m_nFrameBufferBytes = 0;
    mutable QMutex m_mutexParameters;   // what it guards is read and written, nothing else happens under it
    std::array<QSize, 8> m_aszTooLarge; // sizes reported last
    size_t m_nTooLarge = 0;             // the next one's place
};
