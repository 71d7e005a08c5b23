#pragma once

#include "BenchFrame.h"

#include <QOpenGLFunctions>
#include <QOpenGLShaderProgram>
#include <QOpenGLWidget>

#include <memory>

// The least code that makes the same GL calls as a pane of the library: no locks, no parameters, one format
// for its whole life. The yardstick for painting. GUI thread only.
class BareWidget : public QOpenGLWidget, protected QOpenGLFunctions
{
public:
    explicit BareWidget(const BenchFrame &frame);
    ~BareWidget() override;

    // Copies the frame's pixels.
    void Submit();

protected:
    void initializeGL() override;
    void paintGL() override;

private:
    void UploadPlane(int nUnit, GLenum format, int nWidth, int nHeight, const std::uint8_t *pPixels);
    void DrawYv12();
    void DrawNv12();
    void DrawQuad();

    const BenchFrame &m_frame;
    std::unique_ptr<std::uint8_t[]> m_pPixels;
    std::unique_ptr<QOpenGLShaderProgram> m_pProgram;
    GLuint m_aTextures[3] = {};
    int m_nLocTexY = -1;
    int m_nLocTexU = -1;
    int m_nLocTexV = -1;
    int m_nLocDrawFlag = -1;
};
