// The sample core library by itself.
#include <gtest/gtest.h>

#include <QFile>
#include <QLibrary>
#include <QRegularExpression>
#include <QTemporaryDir>

#include <thread>
#include <vector>

namespace {

using TextFunction = int (*)(const char *);
using PlainFunction = int (*)();
using LevelFunction = int (*)(int *, int *);

// The library reads its settings with the first call, so one set serves the whole process.
class CoreLog : public testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        s_pFolder = new QTemporaryDir;
        qputenv("XELT_CORELOG_LEVEL", "0");
        qputenv("XELT_CORELOG_FILE", logFile().toLocal8Bit());
        qputenv("XELT_CORELOG_FILE_LEVEL", "250");
    }

    static void TearDownTestSuite() { delete s_pFolder; }

    static QString logFile() { return s_pFolder->filePath(QStringLiteral("core.log")); }

    void SetUp() override
    {
        m_library.setFileName(QStringLiteral(XELT_TEST_CORELOG));
        ASSERT_TRUE(m_library.load()) << qPrintable(m_library.errorString());
        // Each test begins with an empty file; the library appends.
        QFile file(logFile());
        if (file.exists()) {
            ASSERT_TRUE(file.resize(0));
        }
    }

    template <typename Function> Function function(const char *pName)
    {
        const auto pFunction = reinterpret_cast<Function>(m_library.resolve(pName));
        EXPECT_NE(pFunction, nullptr) << pName;
        return pFunction;
    }

    static QStringList lines()
    {
        QFile file(logFile());
        EXPECT_TRUE(file.open(QIODevice::ReadOnly | QIODevice::Text));
        const QString sText = QString::fromUtf8(file.readAll());
        EXPECT_TRUE(sText.isEmpty() || sText.endsWith(QLatin1Char('\n')));
        return sText.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    }

    static QTemporaryDir *s_pFolder;
    QLibrary m_library;
};

QTemporaryDir *CoreLog::s_pFolder = nullptr;

const QString kStamp = QStringLiteral("^\\d{4}-\\d\\d-\\d\\d \\d\\d:\\d\\d:\\d\\d\\.\\d{3} ");

} // namespace

TEST_F(CoreLog, levels)
{
    int nFirst = -1;
    int nSecond = -1;
    function<LevelFunction>("sdk_log_get_level")(&nFirst, &nSecond);
    EXPECT_EQ(nFirst, 0);
    EXPECT_EQ(nSecond, 250);
}

TEST_F(CoreLog, trace)
{
    function<TextFunction>("sdk_log_msg")("a trace");
    const QStringList asLines = lines();
    ASSERT_EQ(asLines.size(), 1);
    EXPECT_TRUE(QRegularExpression(kStamp + QStringLiteral("a trace$")).match(asLines[0]).hasMatch())
        << qPrintable(asLines[0]);
}

TEST_F(CoreLog, errorRecordIsOneLine)
{
    function<PlainFunction>("sdk_log_buf_lock")();
    function<PlainFunction>("sdk_log_buf_date")();
    function<TextFunction>("sdk_log_buf_msg")("file: f, func:g, line: 7 ");
    function<TextFunction>("sdk_err_buf_msg_unlock")("it failed");
    const QStringList asLines = lines();
    ASSERT_EQ(asLines.size(), 1);
    const QRegularExpression pattern(kStamp + QStringLiteral("file: f, func:g, line: 7 it failed$"));
    EXPECT_TRUE(pattern.match(asLines[0]).hasMatch()) << qPrintable(asLines[0]);
}

// The library leaves the position out when the level is low.
TEST_F(CoreLog, errorRecordWithoutPosition)
{
    function<PlainFunction>("sdk_log_buf_lock")();
    function<PlainFunction>("sdk_log_buf_date")();
    function<TextFunction>("sdk_err_buf_msg_unlock")("it failed");
    const QStringList asLines = lines();
    ASSERT_EQ(asLines.size(), 1);
    EXPECT_TRUE(QRegularExpression(kStamp + QStringLiteral("it failed$")).match(asLines[0]).hasMatch());
}

TEST_F(CoreLog, recordsOfManyThreadsStayWhole)
{
    const auto pfnLock = function<PlainFunction>("sdk_log_buf_lock");
    const auto pfnDate = function<PlainFunction>("sdk_log_buf_date");
    const auto pfnText = function<TextFunction>("sdk_log_buf_msg");
    const auto pfnUnlock = function<TextFunction>("sdk_err_buf_msg_unlock");
    const auto pfnTrace = function<TextFunction>("sdk_log_msg");
    constexpr int kThreads = 4;
    constexpr int kRecords = 100;
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t) {
        threads.emplace_back([=] {
            const std::string name(20, static_cast<char>('a' + t));
            for (int i = 0; i < kRecords; ++i) {
                pfnLock();
                pfnDate();
                pfnText(name.c_str());
                pfnUnlock(name.c_str());
                pfnTrace(name.c_str());
            }
        });
    }
    for (std::thread &thread : threads) {
        thread.join();
    }
    const QStringList asLines = lines();
    EXPECT_EQ(asLines.size(), 2 * kThreads * kRecords);
    const QRegularExpression pattern(kStamp + QStringLiteral("([a-d])\\1{19}(\\1{20})?$"));
    for (const QString &sLine : asLines) {
        ASSERT_TRUE(pattern.match(sLine).hasMatch()) << qPrintable(sLine);
    }
}

TEST_F(CoreLog, exportsNothingElse)
{
    for (const char *pName : {"sdk_log_debug", "sdk_log_buf_quit_unlock", "sdk_log_set_level", "log_msg"}) {
        EXPECT_EQ(m_library.resolve(pName), nullptr) << pName;
    }
}
