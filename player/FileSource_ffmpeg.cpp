#include "FileSource.h"

#include "FramePacker.h"
#include "VideoDecoder.h"

namespace {

class DecodedFile : public VideoSource
{
public:
    DecodedFile(const QString &strFile, FrameLayout layout, int nCodecThreads)
        : m_strFile(strFile), m_nCodecThreads(nCodecThreads), m_packer(layout)
    {
    }

    bool open() override { return m_decoder.open(m_strFile, m_nCodecThreads); }
    Step next() override { return m_decoder.next(); }
    const VideoFrameDesc *frame() override { return m_packer.pack(m_decoder.frame()); }
    double frameSeconds() const override { return m_decoder.frameSeconds(); }
    double frameDuration() const override { return m_decoder.frameDuration(); }
    const QString &problem() const override { return m_decoder.problem(); }

private:
    const QString m_strFile;
    const int m_nCodecThreads;
    VideoDecoder m_decoder;
    FramePacker m_packer;
};

} // namespace

namespace FileSource {

bool isAvailable()
{
    return true;
}

std::unique_ptr<VideoSource> make(const QString &strFile, FrameLayout layout, int nCodecThreads)
{
    av_log_set_level(AV_LOG_QUIET); // what goes wrong is told in one line of our own
    return std::make_unique<DecodedFile>(strFile, layout, nCodecThreads);
}

} // namespace FileSource
