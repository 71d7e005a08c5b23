// The sub-image renderer, open to tests.
#pragma once

#include "InsideTest.h"
#include "yuv/CLS_ShaderYuvSubImage.h"

namespace xelttest {

using InsidePane = InsidePaneOf<CLS_ShaderYuvSubImage>;
using InsideTest = InsideTestOf<InsidePane>;

} // namespace xelttest
