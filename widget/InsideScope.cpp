#include "widget/InsideScope.h"

namespace {

thread_local const InsideScope *t_pInnermost = nullptr;

} // namespace

InsideScope::InsideScope(const void *pRenderer) : m_pRenderer(pRenderer), m_pOuter(t_pInnermost)
{
    t_pInnermost = this;
}

InsideScope::~InsideScope()
{
    t_pInnermost = m_pOuter;
}

bool InsideScope::IsInside(const void *pRenderer)
{
    for (const InsideScope *pScope = t_pInnermost; pScope != nullptr; pScope = pScope->m_pOuter) {
        if (pScope->m_pRenderer == pRenderer) {
            return true;
        }
    }
    return false;
}

bool InsideScope::IsInsideOther(const void *pRenderer)
{
    for (const InsideScope *pScope = t_pInnermost; pScope != nullptr; pScope = pScope->m_pOuter) {
        if (pScope->m_pRenderer != pRenderer) {
            return true;
        }
    }
    return false;
}

bool InsideScope::IsInsideAny()
{
    return t_pInnermost != nullptr;
}
