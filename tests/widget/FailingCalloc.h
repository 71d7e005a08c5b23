// Lets the frame buffer's allocation fail: the program's calls of calloc go through here.
#pragma once

// While one lives, calloc fails in this program's own code.
class FailingCalloc
{
public:
    FailingCalloc();
    ~FailingCalloc();
    FailingCalloc(const FailingCalloc &) = delete;
    FailingCalloc &operator=(const FailingCalloc &) = delete;

    int failures() const;
};
