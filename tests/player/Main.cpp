#include "Clips.h"
#include "PrivateDisplay.h"

#include <gtest/gtest.h>

#include <QCoreApplication>

#include <cstdio>

int main(int argc, char *argv[])
{
    testing::InitGoogleTest(&argc, argv);
    const QCoreApplication app(argc, argv);
    const PrivateDisplay display;
    if (!display.problem().isEmpty()) {
        std::fprintf(stderr, "Test set-up failed: %s\n", qPrintable(display.problem()));
        return 3;
    }
    const QString sProblem = Clips::make();
    if (!sProblem.isEmpty()) {
        std::fprintf(stderr, "Test set-up failed: %s\n", qPrintable(sProblem));
        return 3;
    }
    return RUN_ALL_TESTS();
}
