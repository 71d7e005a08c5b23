// The main renderer, open to tests.
#pragma once

#include "InsideTest.h"
#include "yuv/CLS_ShaderYuv.h"

#include <utility>

namespace xelttest {

class InsideYuv : public InsidePaneOf<CLS_ShaderYuv>
{
public:
    using CLS_ShaderYuv::m_bTypeChanged;
    using CLS_ShaderYuv::m_nTexIdU;
    using CLS_ShaderYuv::m_nTexIdV;
    using CLS_ShaderYuv::m_nTexIdY;

    void ReleaseGLResource() override
    {
        ++m_nReleases;
        CLS_ShaderYuv::ReleaseGLResource();
    }
    // Times that GL objects were given up since the last call.
    int takeReleases() { return std::exchange(m_nReleases, 0); }

private:
    int m_nReleases = 0;
};

using InsideYuvTest = InsideTestOf<InsideYuv>;

} // namespace xelttest
