// A process that ends with a pane that was never released: it ends as if there were none.
#include "TestEnvironment.h"

#include <gtest/gtest.h>

#include <QProcess>
#include <QProcessEnvironment>
#include <QTemporaryDir>

#include <algorithm>
#include <string>

namespace {

class Exit : public testing::TestWithParam<const char *>
{
};

// Without the lines that the display makes Qt write in every program, if it does.
std::string complaints(const QByteArray &abErrors)
{
    QByteArray abRest;
    for (const QByteArray &abLine : abErrors.split('\n')) {
        if (!xelttest::isDisplaysNoise(abLine)) {
            abRest += abLine;
        }
    }
    return abRest.toStdString();
}

TEST_P(Exit, WithARegisteredPaneIsQuiet)
{
    // Qt complains on standard error where there is none.
    const QTemporaryDir runtime;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("XDG_RUNTIME_DIR"), runtime.path());
    // The library owns neither a pane nor its mutex: what no one releases is not freed.
    const QString sOptions = environment.value(QStringLiteral("ASAN_OPTIONS"));
    environment.insert(QStringLiteral("ASAN_OPTIONS"), sOptions + QStringLiteral(":detect_leaks=0"));
    QProcess host;
    host.setProcessEnvironment(environment);
    host.start(QStringLiteral(XELT_TEST_EXITING_HOST),
               {QStringLiteral(XELT_TEST_LIBRARY), QString::fromLatin1(GetParam())});
    ASSERT_TRUE(host.waitForFinished(60000));
    EXPECT_EQ(host.exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(host.exitCode(), 0);
    EXPECT_EQ(complaints(host.readAllStandardError()), "");
}

INSTANTIATE_TEST_SUITE_P(Hosts, Exit,
                         testing::Values("no-window", "kept-window", "static-window", "older-static-window",
                                         "static-application"),
                         [](const auto &test) {
                             std::string sName(test.param);
                             sName.erase(std::remove(sName.begin(), sName.end(), '-'), sName.end());
                             return sName;
                         });

} // namespace
