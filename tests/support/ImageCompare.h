// Compares a grabbed picture with the reference. On failure the pictures expected, actual and difference are
// saved as PNG in the artifact folder under the test's name.
#pragma once

#include "Reference.h"

#include <gtest/gtest.h>

#include <QImage>
#include <QString>

namespace xelttest {

// Levels of 0..255, against the unrounded expected value: rounding alone takes up to 0.5.
struct Tolerance
{
    double dMax = 2.75;         // greatest difference of any channel
    double dMean = 0.55;        // mean difference over all channels
    double dIgnoredShare = 0.1; // greatest share of ignored pixels
};

struct Difference
{
    bool blSameSize = false;
    double dMax = 0.0;
    double dMean = 0.0;
    int nWorstX = 0;
    int nWorstY = 0;
    int nIgnored = 0;
    int nCompared = 0;

    bool within(const Tolerance &tolerance) const;
};

Difference compareImages(const QImage &actual, const ReferenceImage &expected);

// For EXPECT_TRUE: says what differs and where the pictures are. sName tells several comparisons of one test
// apart.
::testing::AssertionResult imageMatches(const QImage &actual, const ReferenceImage &expected,
                                        const Tolerance &tolerance = {}, const QString &sName = QString());
// For faulty references: holds when the difference exceeds the tolerance.
::testing::AssertionResult imageDiffers(const QImage &actual, const ReferenceImage &faulty,
                                        const Tolerance &tolerance = {});

// Red, green and blue of one device pixel, raw.
std::array<int, 3> rgbAt(const QImage &image, int x, int y);
// Whether every pixel has the colour, within nSlack levels.
bool isUniform(const QImage &image, const std::array<int, 3> &aRgb, int nSlack = 0);
bool isBlack(const QImage &image);

} // namespace xelttest
