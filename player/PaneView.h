// The arithmetic of placing, turning and zooming a pane, without any widget.
#pragma once

#include "Options.h"

#include <QPointF>
#include <QRectF>

// The record that turns and mirrors the picture as the settings say.
XeltRotatePara rotatePara(const ViewSettings &view);

// Whether a quarter turn swaps the picture's sides on screen.
bool isQuarterTurn(const ViewSettings &view);

// A quarter turn stretches the drawn rectangle from the widget's width to its height and the other way round.
// This is the rectangle that a turned picture needs to come out in its own proportions, as large as fits.
XeltDrawDstRect turnedRect(const QSize &widget, const QSize &picture);

// What is to be shown after `selection` was marked on screen (in parts of the pane, 0 to 1): the zoom window,
// in the proportions of the pane, that magnifies it.
XeltEZoomArea zoomedTo(const ViewSettings &view, const QRectF &selection);
