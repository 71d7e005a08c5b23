// Records the GL calls that Qt's function tables make while it lives, in words:
//
//   "create buffer", "delete buffer", "create vao", "delete vao"
//   "bind array", "unbind array", "bind element", "unbind element", "bind vao", "unbind vao"
//   "data array 64", "write element 0 12", "map element", "unmap element"
//   "pointer 0 size 2 type 5126 norm 0 stride 16 at 8" (the offset or address as a number)
//   "enable 0", "disable 0", "arrays 5 0 4", "elements 4 6 5123 at 0", "query 34921"
//
// and on request what surrounds these calls:
//
//   "viewport 0 0 64 48", "switch on 3042", "switch off 3042", "blend 770 771 770 771", "finish"
//   "unit 0", "texture 3553 5", "parameter 3553 10241 9729"
//   "image 3553 0 32993 64 48 0 32993 5121 at 0" (level, internal format, size, border, format, type, address)
//   "part 3553 0 0 0 64 48 6403 5121" (level, x, y, size, format, type), "store 3317 1", "line 3.000000"
//   "program 3", "uniform 4 is 0", "uniform 5 is 1.000000" (and three of them), "matrix 2 is 1.000000 0.000000 ..." (by columns)
//
// GlLookup.h stands between Qt and the driver from the first context on. One at a time, on the GUI thread.
#pragma once

#include <string>
#include <vector>

namespace xelttest {

class GlRecorder
{
public:
    GlRecorder();
    ~GlRecorder();
    GlRecorder(const GlRecorder &) = delete;
    GlRecorder &operator=(const GlRecorder &) = delete;

    // What has come since the last call.
    std::vector<std::string> take();

    // While set, no name comes of creating such an object, or no address of mapping.
    bool m_blFailBuffers = false;
    bool m_blFailVertexArrays = false;
    bool m_blFailMap = false;

    // What the context is to say of its largest texture; 0: the truth.
    int m_nMaxTextureSize = 0;

    // Whether the surrounding calls are recorded too.
    bool m_blSurroundings = false;

    void add(const std::string &sCall) { m_vecCalls.push_back(sCall); }
    static GlRecorder *current();

private:
    std::vector<std::string> m_vecCalls;
};

} // namespace xelttest
