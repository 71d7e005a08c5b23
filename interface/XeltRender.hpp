/*
 * XeltRender for C++: a renderer handle that releases itself, and one function for each command that takes
 * exactly that command's record. Header-only, C++17; the only file it needs is XeltRender.h, which documents
 * the records, the threads and the ownership of what they point to.
 */
#ifndef XELTRENDER_HPP
#define XELTRENDER_HPP

#include "XeltRender.h"

#include <cstdint>
#include <optional>
#include <utility>

class QLayout;
class QWidget;
struct ID3D11Device;

namespace xelt {

/* What Renderer::create makes. */
enum class RendererType : std::int32_t { Yuv = XELT_RENDERER_YUV, YuvSubImage = XELT_RENDERER_YUV_SUBIMAGE };

/*
 * Owns one renderer, or none. Functions of an empty one fail as documented and touch nothing.
 *
 * Threads: any number may call the const functions of one Renderer at the same time. Creation needs the GUI
 * thread. Release, destruction and both ends of a move must not overlap any other call on the same Renderer.
 * "Waits" below means: while another call uses the same renderer, however long that takes.
 * Release before the window or layout that holds the pane is destroyed: a layout's window deletes its
 * widgets. Nothing here throws.
 */
class Renderer
{
public:
    Renderer() noexcept = default;

    /*
     * Creates a renderer of type Yuv.
     *   pLayout  takes the widget, which then belongs to the layout's window; null: the widget has no parent.
     * Returns an empty Renderer on failure. GUI thread; may block up to 2000 ms.
     */
    [[nodiscard]] static Renderer create(QLayout *pLayout = nullptr) noexcept
    {
        return Renderer(Xelt_Create(pLayout));
    }

    /*
     * Creates a renderer by type. The widget has no parent; place it by means of widget().
     * Returns an empty Renderer on failure. GUI thread; may block up to 2000 ms.
     */
    [[nodiscard]] static Renderer create(RendererType type) noexcept
    {
        const auto nCode = static_cast<std::int32_t>(type);
        return Renderer(Xelt_CreateEx(&nCode, sizeof nCode));
    }

    Renderer(Renderer &&other) noexcept : m_pHandle(std::exchange(other.m_pHandle, nullptr)) {}

    Renderer &operator=(Renderer &&other) noexcept
    {
        if (this != &other) {
            release();
            m_pHandle = std::exchange(other.m_pHandle, nullptr);
        }
        return *this;
    }

    Renderer(const Renderer &) = delete;
    Renderer &operator=(const Renderer &) = delete;

    /* As release(). */
    ~Renderer() { release(); }

    /*
     * Ends the renderer and empties this object. The widget leaves its parent and is destroyed a little later
     * by the event loop of its thread. Any thread; waits.
     */
    void release() noexcept
    {
        if (m_pHandle != nullptr) {
            Xelt_Release(std::exchange(m_pHandle, nullptr));
        }
    }

    /* Whether there is a renderer. */
    explicit operator bool() const noexcept { return m_pHandle != nullptr; }

    /* The handle for the C functions, or null. It stays this object's. */
    [[nodiscard]] void *handle() const noexcept { return m_pHandle; }

    /*
     * The pane as a widget (its class is QOpenGLWidget), or null. Valid until release; use it on the GUI
     * thread only. Delete it through release alone.
     */
    [[nodiscard]] QWidget *widget() const noexcept { return static_cast<QWidget *>(m_pHandle); }

    /*
     * Shows a frame. The planes are copied before this returns; the host's overlay callback runs in here.
     * Returns false for a busy renderer, a size that is not positive or cannot be stored, and while the last
     * Direct3D 11 draw failed. Any thread; blocks up to 500 ms for the registry, 500 ms for the renderer, and
     * for a paint in progress.
     */
    bool showFrame(const VideoFrameDesc &frame) const noexcept
    {
        return Xelt_ShowYuvFrame(m_pHandle, &frame, sizeof frame) == 0;
    }

    /*
     * Stops drawing and forgets the overlay callback. The pane turns black, or keeps its last picture after
     * setStopDraw({1}). Any thread; waits.
     */
    void clearDraw() const noexcept { Xelt_ClearDraw(m_pHandle); }

    /*
     * Every setter below returns true when the renderer took the value and false for an empty Renderer. The
     * record is copied. Any thread; waits.
     */

    /* pUser is handed back to the callback and must live as long as the callback is set; {} removes it. */
    bool setDrawInfoCallback(const XeltDrawInfoCallbackPara &callback) const noexcept
    {
        return set(XELTCMD_SET_DRAWINFO_CALLBACK, callback);
    }

    /* Normalised widget units, 0..1; {0, 0, 1, 1} shows everything. */
    bool setEZoomArea(const XeltEZoomArea &area) const noexcept { return set(XELTCMD_SET_EZOOM_AREA, area); }

    /* pParent stays the host's and must live while labels are shown. Null is refused. */
    bool setLabelParent(QWidget *pParent) const noexcept
    {
        // This command's payload pointer is the widget itself; the size only has to be positive.
        return Xelt_SetParam(m_pHandle, XELTCMD_SET_LABEL_PARENT, pParent, sizeof(void *)) == 0;
    }

    /* pDevice, or null, stays the host's and must live until another is set or the renderer is released. */
    bool setD3D11Device(ID3D11Device *pDevice) const noexcept
    {
        return set(XELTCMD_SET_D3D11_DEVICE, static_cast<const void *>(pDevice));
    }

    /* Whether clearDraw leaves the last picture on screen. */
    bool setStopDraw(const XeltStopDrawPara &para) const noexcept
    {
        return set(XELTCMD_SET_STOPDRAW_PARA, para);
    }

    /* A quarter, half or three-quarter turn clockwise or not, then a mirror; {} undoes both. */
    bool setRotate(const XeltRotatePara &para) const noexcept { return set(XELTCMD_SET_ROTATE_PARA, para); }

    /* Mode 0 keeps the frame's aspect ratio, 1 fills the widget. Send it again after a resize. */
    bool setDrawRatioMode(const XeltDrawRatioPara &para) const noexcept
    {
        return set(XELTCMD_SET_DRAW_RATIO_MODE, para);
    }

    /* Widget pixels, inclusive edges. A rectangle below 2 x 2 answers false and is stored all the same. */
    bool setDrawDstRect(const XeltDrawDstRect &rect) const noexcept
    {
        return set(XELTCMD_SET_DRAW_DST_RECT, rect);
    }

    /*
     * Every getter below answers nothing for an empty Renderer. Any thread; waits.
     */

    /* The native window handle. Off the GUI thread it is fetched there if need be: in 500 ms, or nothing. */
    [[nodiscard]] std::optional<std::uint64_t> winId() const noexcept
    {
        return get<std::uint64_t>(XELTCMD_GET_WINID);
    }

    /* The widget's own rectangle in widget pixels, inclusive edges. */
    [[nodiscard]] std::optional<XeltWidgetRect> widgetRect() const noexcept
    {
        return get<XeltWidgetRect>(XELTCMD_GET_WIDGET_RECT);
    }

    /* Whether OpenGL ES is in use: in the context current on this thread, else by Qt's configuration. */
    [[nodiscard]] std::optional<bool> isOpenGLES() const noexcept
    {
        const auto flag = get<std::uint32_t>(XELTCMD_GET_IS_OPENGLES);
        return flag ? std::optional<bool>(*flag != 0) : std::nullopt;
    }

private:
    explicit Renderer(void *pHandle) noexcept : m_pHandle(pHandle) {}

    template <typename Record> bool set(std::uint32_t nCommand, const Record &record) const noexcept
    {
        return Xelt_SetParam(m_pHandle, nCommand, &record, sizeof record) == 0;
    }

    template <typename Record> std::optional<Record> get(std::uint32_t nCommand) const noexcept
    {
        Record record{};
        if (Xelt_GetParam(m_pHandle, nCommand, &record, sizeof record) != 0) {
            return std::nullopt;
        }
        return record;
    }

    void *m_pHandle = nullptr;
};

/*
 * Answers an overlay callback with one record, which is copied. Call it inside that callback, on its thread,
 * with the request that the callback was given. Returns false when the renderer refused it.
 */
inline bool addDrawInfo(const XeltDrawInfoRequest &request, const XeltDrawInfo &record) noexcept
{
    return request.pfnReceiver != nullptr &&
           request.pfnReceiver(&record, sizeof record, request.pObject) == 0;
}

} // namespace xelt

#endif
