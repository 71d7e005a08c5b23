#pragma once

#include <XeltRender.hpp>

#include <QGridLayout>
#include <QOpenGLWidget>
#include <QSize>
#include <QWidget>

#include <cstddef>
#include <vector>

// One window with panes of any renderer type. GUI thread only.
class MixedWindow
{
public:
    // Makes a pane and returns its number; ends the program when there is none to be had.
    std::size_t Add(xelt::RendererType type, QSize size);

    // Shows the window and waits until every pane has a context. False when that does not happen.
    bool Open();

    const xelt::Renderer &Pane(std::size_t nPane) const { return m_panes[nPane]; }
    QOpenGLWidget &Widget(std::size_t nPane) const;

private:
    QWidget m_window; // outlives the renderers
    QGridLayout m_layout{&m_window};
    std::vector<xelt::Renderer> m_panes;
};
