#pragma once

// Says, while it lives, that this thread is inside a renderer with the renderer's locks held: in a call of the host's
// or in a paint. Host code that runs meanwhile and comes back to the same renderer would wait for itself.
class InsideScope
{
public:
    // The renderer by its handle.
    explicit InsideScope(const void *pRenderer);
    ~InsideScope();
    InsideScope(const InsideScope &) = delete;
    InsideScope &operator=(const InsideScope &) = delete;

    // Whether this thread is inside the renderer, inside another one, inside any.
    static bool IsInside(const void *pRenderer);
    static bool IsInsideOther(const void *pRenderer);
    static bool IsInsideAny();

private:
    const void *const m_pRenderer;
    const InsideScope *const m_pOuter;
};
