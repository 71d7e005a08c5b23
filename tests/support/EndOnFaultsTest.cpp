// A test whose picture is painted by code that faults must not go on as if nothing had been.
#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QWidget>

#include <cstdio>
#include <cstdlib>

namespace {

// Paints by writing to no memory.
class Faulty : public QWidget
{
protected:
    void paintEvent(QPaintEvent * /*pEvent*/) override
    {
        std::fputs("painting\n", stderr);
        *m_pNowhere = 1;
    }

private:
    int *volatile m_pNowhere = nullptr;
};

[[noreturn]] void paintAndGoOn()
{
    Faulty window;
    window.resize(200, 100);
    window.show();
    for (int i = 0; i < 200; ++i) {
        QCoreApplication::processEvents(QEventLoop::AllEvents, 50);
    }
    std::_Exit(0);
}

TEST(EndOnFaultsDeathTest, InAWindowsProcedureToo)
{
    testing::GTEST_FLAG(death_test_style) = "threadsafe";
#ifdef _WIN32
    const char *pszWords = "Fault c0000005 at .*support_test";
#else
    const char *pszWords = "painting"; // and then the system's own way, or a sanitizer's
#endif
    EXPECT_EXIT(
        paintAndGoOn(), [](int nStatus) { return nStatus != 0; }, pszWords);
}

} // namespace
