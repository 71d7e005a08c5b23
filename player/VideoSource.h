#pragma once

#include <XeltRender.h>

#include <QString>

// Where the pictures of a pane come from. Used by one thread.
class VideoSource
{
public:
    enum class Step { Frame, End, Broken };

    VideoSource() = default;
    virtual ~VideoSource() = default;

    VideoSource(const VideoSource &) = delete;
    VideoSource &operator=(const VideoSource &) = delete;

    // On failure problem() says why. May be called again, which starts at the beginning.
    virtual bool open() = 0;

    // After Frame, the functions below tell about the new picture; after Broken, problem() says what is wrong.
    virtual Step next() = 0;

    // Null when the picture cannot be converted. Lasts until the next call of any function that is not const.
    virtual const VideoFrameDesc *frame() = 0;

    // From the beginning of the stream to this picture.
    virtual double frameSeconds() const = 0;

    // How long a picture is shown.
    virtual double frameDuration() const = 0;

    // Goes behind the name of the source.
    virtual const QString &problem() const = 0;
};
