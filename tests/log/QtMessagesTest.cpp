// Qt's message channel: what waits while a deferral lives, in which order it is written, what is filtered.
#include "log/QtMessages.h"

#include "QtMessages.h"

#include <gmock/gmock.h>

#include <QLoggingCategory>
#include <thread>

namespace {

using namespace xelttest;
using testing::ElementsAre;
using testing::IsEmpty;

TEST(QtMessageChannel, WritesAtOnceWithoutADeferral)
{
    QtMessages messages;
    qtlog::Debug("%s: %d", "count", -3);
    EXPECT_THAT(messages.take(), ElementsAre(debugLine("count: -3")));
    qtlog::Warning("%#x %%", 0x3000U);
    const auto vecMessages = messages.take();
    ASSERT_THAT(vecMessages, ElementsAre(warningLine("0x3000 %")));
    EXPECT_FALSE(vecMessages.front().blHasPosition);
}

TEST(QtMessageChannel, TextsAreUtf8AndMayBeLong)
{
    const std::string sText = "gr\xc3\xbc\xc3\x9f \xf0\x9f\x8e\xac " + std::string(10000, 'x');
    QtMessages messages;
    qtlog::Debug("%s", sText.c_str());
    {
        const qtlog::Deferral deferral;
        qtlog::Warning("%s", sText.c_str());
    }
    EXPECT_THAT(messages.take(), ElementsAre(debugLine(sText), warningLine(sText)));
}

TEST(QtMessageChannel, MessagesWaitForTheEndOfTheDeferral)
{
    QtMessages messages;
    {
        const qtlog::Deferral deferral;
        qtlog::Debug("first");
        qtlog::Warning("second");
        qtlog::Debug("third");
        EXPECT_THAT(messages.take(), IsEmpty());
    }
    const auto vecMessages = messages.take();
    ASSERT_THAT(vecMessages, ElementsAre(debugLine("first"), warningLine("second"), debugLine("third")));
    for (const QtMessage &message : vecMessages) {
        EXPECT_FALSE(message.blHasPosition) << message;
    }
    qtlog::Debug("after");
    EXPECT_THAT(messages.take(), ElementsAre(debugLine("after")));
}

TEST(QtMessageChannel, TheOutermostDeferralWritesForThoseInside)
{
    QtMessages messages;
    {
        const qtlog::Deferral outer;
        qtlog::Debug("outer");
        {
            const qtlog::Deferral inner;
            qtlog::Debug("inner");
        }
        EXPECT_THAT(messages.take(), IsEmpty());
        qtlog::Debug("outer again");
    }
    EXPECT_THAT(messages.take(),
                ElementsAre(debugLine("outer"), debugLine("inner"), debugLine("outer again")));
}

TEST(QtMessageChannel, OtherThreadsDoNotWait)
{
    QtMessages messages;
    const qtlog::Deferral deferral;
    qtlog::Debug("waits");
    std::thread([] { qtlog::Debug("other thread"); }).join();
    EXPECT_THAT(messages.take(), ElementsAre(debugLine("other thread")));
}

TEST(QtMessageChannel, DisabledDebugMessagesAreNotEvenFormatted)
{
    QtMessages messages;
    QLoggingCategory::defaultCategory()->setEnabled(QtDebugMsg, false);
    const auto *pszForbidden = reinterpret_cast<const char *>(1);
    qtlog::Debug("%s", pszForbidden);
    {
        const qtlog::Deferral deferral;
        qtlog::Debug("%s", pszForbidden);
        qtlog::Warning("still said");
        QLoggingCategory::defaultCategory()->setEnabled(QtDebugMsg, true);
    }
    EXPECT_THAT(messages.take(), ElementsAre(warningLine("still said")));
}

TEST(QtMessageChannel, DisabledWarningsAreDropped)
{
    QtMessages messages;
    QLoggingCategory::defaultCategory()->setEnabled(QtWarningMsg, false);
    qtlog::Warning("at once");
    {
        const qtlog::Deferral deferral;
        qtlog::Warning("deferred");
    }
    QLoggingCategory::defaultCategory()->setEnabled(QtWarningMsg, true);
    EXPECT_THAT(messages.take(), IsEmpty());
}

// A host's handler that calls the library, which has messages of its own and defers them.
std::vector<std::string> g_vecHandled;

void callingHandler(QtMsgType, const QMessageLogContext &, const QString &sText)
{
    g_vecHandled.push_back(sText.toStdString());
    const qtlog::Deferral deferral;
    qtlog::Debug("of the handler for %s", qUtf8Printable(sText));
}

TEST(QtMessageChannel, AHandlerMayHaveMessagesOfItsOwn)
{
    const QtMessages enabled; // debug messages
    g_vecHandled.clear();
    const QtMessageHandler pfnBefore = qInstallMessageHandler(callingHandler);
    testing::internal::CaptureStderr();
    {
        const qtlog::Deferral deferral;
        qtlog::Debug("first");
        qtlog::Debug("second");
    }
    const std::string sErrorOutput = testing::internal::GetCapturedStderr();
    qInstallMessageHandler(pfnBefore);
    EXPECT_THAT(g_vecHandled, ElementsAre("first", "second"));
    // Where Qt writes what comes while a handler runs.
    EXPECT_EQ(sErrorOutput, "of the handler for first\nof the handler for second\n");
}

void throwingHandler(QtMsgType, const QMessageLogContext &, const QString &sText)
{
    g_vecHandled.push_back(sText.toStdString());
    throw 1;
}

TEST(QtMessageChannel, AThrowingHandlerCostsNoOtherMessage)
{
    const QtMessages enabled;
    g_vecHandled.clear();
    const QtMessageHandler pfnBefore = qInstallMessageHandler(throwingHandler);
    {
        const qtlog::Deferral deferral;
        qtlog::Debug("first");
        qtlog::Warning("second");
    }
    qtlog::Debug("third");
    qInstallMessageHandler(pfnBefore);
    EXPECT_THAT(g_vecHandled, ElementsAre("first", "second", "third"));
}

} // namespace
