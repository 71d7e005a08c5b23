// Writers, painters and those who make and destroy surfaces, all at once.
#include "EglFixture.h"
#include "RawContext.h"

#include <QOpenGLFunctions>

#include <algorithm>
#include <atomic>
#include <thread>
#include <vector>

namespace xelttest {
namespace {

class SoftEglThreadTest : public EglFixture
{
};

TEST_F(SoftEglThreadTest, ShowsWholePicturesWhileOthersWrite)
{
    const QSize size(40, 30);
    SharedTexture texture(device(), size);
    std::vector<QImage> pictures;
    for (int nSeed = 0; nSeed < 4; ++nSeed) {
        pictures.push_back(texture.write(nSeed));
    }
    const EGLSurface hSurface = makeSurface(texture);
    GLuint nTexture = context().makeTexture();
    EXPECT_TRUE(bind(hSurface));
    std::atomic<bool> blStop{false};
    std::thread writer([&] {
        for (int nSeed = 0; !blStop; ++nSeed) {
            texture.write(nSeed % 4);
        }
    });
    for (int i = 0; i < 100; ++i) {
        const QImage picture = context().draw(nTexture, size);
        EXPECT_NE(pictures.end(), std::find(pictures.begin(), pictures.end(), picture)) << i;
    }
    blStop = true;
    writer.join();
    expectNextWriteShown(texture, 2, context(), nTexture);
    EXPECT_TRUE(release(hSurface));
    EXPECT_TRUE(destroy(hSurface));
    context().gl().glDeleteTextures(1, &nTexture);
}

TEST_F(SoftEglThreadTest, StandsSurfacesComingAndGoing)
{
    const QSize size(16, 16);
    SharedTexture texture(device(), size);
    texture.write(0);
    std::atomic<bool> blStop{false};
    std::atomic<int> nMade{0};
    std::vector<std::thread> threads;
    for (int i = 0; i < 2; ++i) {
        threads.emplace_back([&] {
            while (!blStop) {
                const EGLSurface hSurface = makeSurface(texture);
                EXPECT_NE(EGL_NO_SURFACE, hSurface);
                EXPECT_TRUE(bind(hSurface)); // without a context: no effect
                EXPECT_TRUE(destroy(hSurface));
                ++nMade;
            }
        });
    }
    threads.emplace_back([&] {
        for (int nSeed = 1; !blStop; ++nSeed) {
            texture.write(nSeed);
        }
    });
    for (int i = 0; i < 50 || nMade < 200; ++i) {
        const EGLSurface hSurface = makeSurface(texture);
        GLuint nTexture = context().makeTexture();
        EXPECT_TRUE(bind(hSurface));
        context().draw(nTexture, size);
        EXPECT_TRUE(i % 2 == 0 ? release(hSurface) : destroy(hSurface));
        EXPECT_TRUE(i % 2 == 0 ? destroy(hSurface) : release(hSurface));
        context().gl().glDeleteTextures(1, &nTexture);
    }
    blStop = true;
    for (std::thread &thread : threads) {
        thread.join();
    }
}

// The handle of a context that is gone comes again at once on the other thread.
TEST_F(SoftEglThreadTest, StandsContextsComingAndGoing)
{
    const QSize size(8, 4);
    std::vector<std::thread> threads;
    for (int i = 0; i < 2; ++i) {
        threads.emplace_back([&, i] {
            SharedTexture texture(device(), size);
            const EGLSurface hSurface = makeSurface(texture);
            for (int nRound = 0; nRound < 80 && !HasFailure(); ++nRound) {
                RawContext raw(display());
                EXPECT_TRUE(raw.makeCurrent());
                const GLuint nTexture = RawContext::makeTexture();
                const QImage expected = texture.write(2 * nRound + i);
                EXPECT_TRUE(bind(hSurface));
                EXPECT_EQ(expected, RawContext::read(nTexture, size)) << nRound;
                if (nRound % 2 == 0) {
                    EXPECT_TRUE(raw.destroy()); // while it is current
                }
            }
            EXPECT_TRUE(destroy(hSurface));
            EXPECT_NE(EGL_FALSE, eglReleaseThread());
        });
    }
    for (std::thread &thread : threads) {
        thread.join();
    }
}

} // namespace
} // namespace xelttest
