#pragma once

#include "interface/RendererRegistry.h"

// Ends a renderer whose entry is in the registry no more, and disposes of its widget; nothing where the widget's
// destruction was faster. Waits for a call that is inside. A call from inside that renderer, or from inside another one
// while this one is busy, leaves it to the application's event loop. Any thread.
void EndRenderer(void *handle, const RendererRegistry::EntryPtr &pEntry);
