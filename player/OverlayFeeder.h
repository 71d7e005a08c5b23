#pragma once

#include <XeltRender.hpp>

#include <QByteArray>
#include <QRect>
#include <QString>

#include <atomic>
#include <functional>

// Answers a renderer's overlay callback with shapes that move with the stream's time, and with texts.
class OverlayFeeder
{
public:
    // position: time in the stream, in seconds; asked on whatever thread the callback runs. GUI thread only,
    // for the fonts.
    OverlayFeeder(const QString &strPaneName, std::function<double()> position);

    OverlayFeeder(const OverlayFeeder &) = delete;
    OverlayFeeder &operator=(const OverlayFeeder &) = delete;

    // What to register with the renderer; refers to this object.
    XeltDrawInfoCallbackPara callback();

    // Off, it answers with nothing, and what was drawn before goes with the next frame. Any thread.
    void setEnabled(bool blEnabled);

    // Texts stand at the edges of this part of the widget that carries them. Any thread.
    void setTextArea(const QRect &area);

private:
    struct Text
    {
        QByteArray encoded;
        int32_t nEncoding = DRAWINFO_ENCODING_UTF8;
        int nWidth = 0;
    };

    static int32_t answer(void *pReserved, const XeltDrawInfoRequest *pRequest, int32_t nLength, void *pUser);

    void addShapes(const XeltDrawInfoRequest &request, double seconds) const;
    void addTexts(const XeltDrawInfoRequest &request, double seconds) const;
    void addText(const XeltDrawInfoRequest &request, const Text &text, const char *pText, int nLeft, int nTop,
                 uint32_t nColor) const;

    const std::function<double()> m_position;
    Text m_name;
    Text m_chinese;
    Text m_timeCode; // its text is made for each frame
    std::atomic<bool> m_blEnabled{false};
    std::atomic<int> m_nTextLeft{0};
    std::atomic<int> m_nTextTop{0};
    std::atomic<int> m_nTextWidth{0};
    std::atomic<int> m_nTextHeight{0};
};
