// A host that calls everything from wherever it is called.
#pragma once

#include "Frames.h"
#include "HostWindow.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>

namespace xelttest {

// The answers of the calls on one pane, in the order of the calls.
struct Answers
{
    std::array<int32_t, 4> anSet{};
    std::array<int32_t, 2> anGet{};
    int32_t nShow = 0;

    bool areAll(int32_t nResult) const
    {
        return nShow == nResult && std::count(anSet.begin(), anSet.end(), nResult) == 4 &&
               std::count(anGet.begin(), anGet.end(), nResult) == 2;
    }
    bool areResults() const
    {
        const auto isOne = [](int32_t nResult) { return nResult == 0 || nResult == -1; };
        return isOne(nShow) && std::all_of(anSet.begin(), anSet.end(), isOne) &&
               std::all_of(anGet.begin(), anGet.end(), isOne);
    }
};

// Everything that takes a pane but its release. What is set does not change what pictures look like.
inline Answers callEverything(void *handle, const HostFrame &frame)
{
    Answers answers;
    answers.anSet = {setZoom(handle, 0.0, 0.0, 1.0, 1.0), setRotation(handle, 0), setRatioMode(handle, 1),
                     setReserveLastFrame(handle, 0)};
    XeltWidgetRect rect{};
    uint32_t nOpenGLES = 0;
    answers.anGet = {Xelt_GetParam(handle, XELTCMD_GET_WIDGET_RECT, &rect, sizeof rect),
                     Xelt_GetParam(handle, XELTCMD_GET_IS_OPENGLES, &nOpenGLES, sizeof nOpenGLES)};
    answers.nShow = show(handle, frame);
    Xelt_ClearDraw(handle);
    return answers;
}

// A pane comes and goes, and one goes that never was. Creation is for the GUI thread.
inline testing::AssertionResult createAndRelease(bool blOnGuiThread)
{
    static char s_cNoPane = 0;
    if (Xelt_Release(&s_cNoPane) != 0 || Xelt_Release(nullptr) != -1) {
        return testing::AssertionFailure() << "an unknown handle is answered otherwise";
    }
    if (blOnGuiThread) {
        void *handle = Xelt_Create(nullptr);
        if (handle == nullptr || Xelt_Release(handle) != 0) {
            return testing::AssertionFailure() << "no pane is made or released";
        }
    }
    return testing::AssertionSuccess();
}

} // namespace xelttest
