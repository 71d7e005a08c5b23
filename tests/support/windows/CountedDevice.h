// Calls of a real Direct3D 11 device's methods, counted and made to fail on demand as softd3d11/SoftD3D11.h says.
// Counted are the methods that the hardware path uses, called by the program or by the library under test; a
// call that failed by itself counts as refused. Living are the objects that such calls have made.
#pragma once

#include "platform/Direct3D11.h"

namespace xelttest {

// Counts from now on. With a stand-in for shared handles, if wanted: of textures that counted calls make, for all
// who open them.
void countCalls(ID3D11Device &device, bool blShareHandles);

// While one lives, what this thread's calls make counts as the device's, which lives on with it.
class MadeOn
{
public:
    explicit MadeOn(ID3D11Device &device);
    ~MadeOn();
    MadeOn(const MadeOn &) = delete;
    MadeOn &operator=(const MadeOn &) = delete;

private:
    ID3D11Device *m_pBefore;
};

// While one lives, this thread's calls are neither counted nor made to fail.
class Uncounted
{
public:
    Uncounted();
    ~Uncounted();
    Uncounted(const Uncounted &) = delete;
    Uncounted &operator=(const Uncounted &) = delete;
};

} // namespace xelttest
