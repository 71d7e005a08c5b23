#pragma once

#include "BareWidget.h"
#include "BenchFrame.h"

#include <XeltRender.hpp>

#include <QOpenGLWidget>
#include <QSize>

#include <vector>

// A renderer that is shown nowhere yet; ends the program when there is none to be had. GUI thread.
xelt::Renderer MakeRenderer();

// One window with panes of one size: as many of the library as bare ones. GUI thread only.
class PaneWindow
{
public:
    // The frame must live as long as the window.
    PaneWindow(int nPairs, QSize paneSize, const BenchFrame &frame);

    // Shows the window and waits until every pane has a context. False when that does not happen.
    bool Open();

    const xelt::Renderer &Pane(int nIndex) const { return m_renderers[static_cast<std::size_t>(nIndex)]; }
    QOpenGLWidget &PaneWidget(int nIndex) const;
    BareWidget &Bare(int nIndex) const { return *m_bare[static_cast<std::size_t>(nIndex)]; }

    // True when the library's pane and the bare one show the same picture, and not just one colour.
    bool PicturesAgree(int nIndex) const;

private:
    QWidget m_window; // outlives the renderers
    std::vector<xelt::Renderer> m_renderers;
    std::vector<BareWidget *> m_bare; // owned by m_window
};

// Paints a pane now, into its own framebuffer object and without the window's composition, and waits for GL
// to finish. GUI thread.
void PaintNow(QOpenGLWidget &widget);

// Delivers all that the panes have posted. GUI thread.
void DrainEvents();
