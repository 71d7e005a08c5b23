#include "Pane.h"

#include "FileSource.h"
#include "PaneView.h"
#include "PatternSource.h"

#include <QEvent>
#include <QFileInfo>
#include <QMouseEvent>
#include <QWidget>

namespace {

DecodeSettings decodeSettings(const Options &options)
{
    DecodeSettings settings;
    settings.layout = options.layout;
    settings.blLoop = options.blLoop;
    settings.blFast = options.blFast;
    settings.frames = options.frames;
    return settings;
}

std::unique_ptr<VideoSource> makeSource(const QString &strSource, const Options &options)
{
    if (options.pattern) {
        return std::make_unique<PatternSource>(*options.pattern, options.layout);
    }
    const int nCodecThreads = options.nPanes > 1 ? 1 : 0; // many panes keep the processors busy by themselves
    return FileSource::make(strSource, options.layout, nCodecThreads);
}

QString paneName(int nNumber, const QString &strSource)
{
    return QStringLiteral("%1 \u00b7 %2").arg(nNumber).arg(QFileInfo(strSource).fileName());
}

xelt::Renderer createRenderer(const Options &options, QLayout *pLayout)
{
    if (!options.blSubImage) {
        return xelt::Renderer::create(pLayout);
    }
    auto renderer = xelt::Renderer::create(xelt::RendererType::YuvSubImage);
    if (renderer) {
        pLayout->addWidget(renderer.widget());
    }
    return renderer;
}

} // namespace

Pane::Pane(int nNumber, const QString &strSource, const Options &options, QLayout *pLayout,
           QWidget *pTextLayer)
    : m_nNumber(nNumber),
      m_strSource(strSource),
      m_view(options.view),
      m_renderer(createRenderer(options, pLayout)),
      m_feeder(paneName(nNumber, strSource), [this] { return m_thread.position(); }),
      m_thread(decodeSettings(options), makeSource(strSource, options), m_renderer),
      m_pTextLayer(pTextLayer),
      m_blOverlay(options.blOverlay)
{
    if (!isValid()) {
        return;
    }
    if (options.layout == FrameLayout::Texture) {
        m_renderer.setD3D11Device(TextureFrames::device());
    }
    m_feeder.setEnabled(m_blOverlay);
    if (m_pTextLayer != nullptr) {
        m_renderer.setLabelParent(m_pTextLayer);
    }
    m_renderer.setDrawInfoCallback(m_feeder.callback());
    m_pRubberBand = new QRubberBand(QRubberBand::Rectangle, widget());
    widget()->installEventFilter(this);
    connect(&m_thread, &DecodeThread::pictureShown, this, &Pane::onPictureShown);
    connect(&m_thread, &DecodeThread::ended, this, &Pane::ended);
}

Pane::~Pane()
{
    stopDecoding();
    waitForDecoding();
    if (isValid()) {
        widget()->removeEventFilter(this);
    }
}

void Pane::start()
{
    m_thread.start();
}

void Pane::stopDecoding()
{
    m_thread.stop();
}

void Pane::waitForDecoding()
{
    m_thread.wait();
}

void Pane::turn(bool blBackwards)
{
    m_view.nAngle = (m_view.nAngle + (blBackwards ? 270 : 90)) % 360;
    place();
}

void Pane::changeMirror()
{
    m_view.nMirror = (m_view.nMirror + 1) % 3;
    place();
}

void Pane::changeRatioMode()
{
    m_view.rcDestination.reset();
    m_view.blFill = !m_view.blFill;
    place();
}

void Pane::showWhole()
{
    m_view.rcZoom = {0.0, 0.0, 1.0, 1.0};
    place();
}

void Pane::toggleOverlay()
{
    m_blOverlay = !m_blOverlay;
    m_feeder.setEnabled(m_blOverlay);
}

void Pane::toggleStopped(bool blKeepPicture)
{
    m_blStopped = !m_blStopped;
    if (!m_blStopped) {
        m_thread.setPaused(false);
        return;
    }
    m_thread.setPaused(true);
    m_renderer.setStopDraw({blKeepPicture ? 1 : 0});
    m_renderer.clearDraw();
}

// Stopping makes the renderer forget the callback and the placement, some of it only when the next picture
// comes; so both are sent when that one has been shown.
void Pane::onPictureShown(int nWidth, int nHeight)
{
    m_picture = QSize(nWidth, nHeight);
    m_renderer.setDrawInfoCallback(m_feeder.callback());
    place();
}

void Pane::onResized()
{
    placeTexts();
    place();
}

void Pane::placeTexts()
{
    const QPoint origin =
        m_pTextLayer != nullptr ? widget()->mapTo(widget()->window(), QPoint(0, 0)) : QPoint(0, 0);
    m_feeder.setTextArea(QRect(origin, widget()->size()));
}

void Pane::place()
{
    m_renderer.setRotate(rotatePara(m_view));
    placePicture();
    m_renderer.setEZoomArea(m_view.rcZoom); // this one repaints
}

// The renderer works the place out when it is told, from the widget's and the picture's size at that time.
void Pane::placePicture()
{
    if (m_view.rcDestination) {
        m_renderer.setDrawDstRect(*m_view.rcDestination);
    } else if (m_picture.isEmpty()) {
        return;
    } else if (!m_view.blFill && isQuarterTurn(m_view)) {
        m_renderer.setDrawDstRect(turnedRect(widget()->size(), m_picture));
    } else {
        m_renderer.setDrawRatioMode({m_view.blFill ? 1 : 0});
    }
}

QString Pane::report() const
{
    const FrameCounts &counts = m_thread.counts();
    return QStringLiteral("pane %1: decoded %2, pushed %3, refused %4, painted %5, %6 frames a second")
        .arg(m_nNumber)
        .arg(counts.nDecoded)
        .arg(counts.nPushed)
        .arg(counts.nRefused)
        .arg(m_nPainted)
        .arg(counts.perSecond, 0, 'f', 2);
}

bool Pane::eventFilter(QObject *pWatched, QEvent *pEvent)
{
    switch (pEvent->type()) {
    case QEvent::Paint:
        ++m_nPainted;
        break;
    case QEvent::Resize:
        onResized();
        break;
    case QEvent::Move:
        placeTexts();
        break;
    case QEvent::MouseButtonPress:
    case QEvent::MouseMove:
    case QEvent::MouseButtonRelease:
    case QEvent::MouseButtonDblClick:
        return onMouse(pEvent);
    default:
        break;
    }
    return QObject::eventFilter(pWatched, pEvent);
}

bool Pane::onMouse(QEvent *pEvent)
{
    const auto *pMouse = static_cast<QMouseEvent *>(pEvent);
    const bool blLeft = pMouse->button() == Qt::LeftButton;
    if (pEvent->type() == QEvent::MouseButtonDblClick && blLeft) {
        showWhole();
    } else if (pEvent->type() == QEvent::MouseButtonPress && blLeft) {
        beginDrag(pMouse->pos());
    } else if (pEvent->type() == QEvent::MouseMove && m_pRubberBand->isVisible()) {
        m_pRubberBand->setGeometry(QRect(m_dragStart, pMouse->pos()).normalized());
    } else if (pEvent->type() == QEvent::MouseButtonRelease && blLeft && m_pRubberBand->isVisible()) {
        endDrag(pMouse->pos());
    }
    return true;
}

void Pane::beginDrag(const QPoint &position)
{
    m_dragStart = position;
    m_pRubberBand->setGeometry(QRect(position, QSize()));
    m_pRubberBand->show();
}

void Pane::endDrag(const QPoint &position)
{
    constexpr int kClickPixels = 6; // less is a click that slipped
    m_pRubberBand->hide();
    const QRectF marked = QRectF(m_dragStart, position).normalized();
    if (marked.width() < kClickPixels && marked.height() < kClickPixels) {
        return;
    }
    const double width = widget()->width();
    const double height = widget()->height();
    m_view.rcZoom = zoomedTo(m_view, QRectF(marked.x() / width, marked.y() / height, marked.width() / width,
                                            marked.height() / height));
    place();
}
