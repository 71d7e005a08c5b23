// The player of the unpacked archive, which has to find what it needs beside itself.
#include "Options.h"
#include "PatternPicture.h"
#include "PlayerRun.h"
#include "TestEnvironment.h"
#include "d3d11/ComPtr.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QFileInfo>

#include <functional>

#include <windows.h>

namespace {

constexpr int kFrames = 4;

// The folders of the system and nothing else, where this program's own may name those of a build or of Qt.
Environment bareEnvironment()
{
    const QString sWindows = qEnvironmentVariable("SystemRoot");
    EXPECT_FALSE(sWindows.isEmpty());
    return {{QStringLiteral("PATH"), sWindows + QStringLiteral("\\system32;") + sWindows},
            {QStringLiteral("QT_PLUGIN_PATH"), QString()},
            {QStringLiteral("QT_QPA_PLATFORM"), QString()},
            {QStringLiteral("QT_QPA_PLATFORM_PLUGIN_PATH"), QString()}};
}

// Without the lines that the display makes Qt write in every program, if it does.
QStringList complaints(const PlayerResult &result)
{
    QStringList asRest;
    for (const QString &sLine : result.asErrors) {
        if (!xelttest::isDisplaysNoise(sLine.toUtf8())) {
            asRest << sLine;
        }
    }
    return asRest;
}

struct Shown
{
    PlayerResult result;
    QImage image;
};

// The screenshot stays in the folder of the tests' pictures under the name.
Shown play(const char *pszName, int nFrames, const QStringList &asOptions)
{
    const QString sFile =
        QFileInfo(xelttest::artifactDir() + QStringLiteral("/zip-%1.png").arg(QLatin1String(pszName)))
            .absoluteFilePath();
    QFile::remove(sFile);
    Shown shown;
    shown.result =
        runPlayer(patternArguments(nFrames) + asOptions + QStringList{QStringLiteral("--screenshot"), sFile},
                  bareEnvironment());
    EXPECT_FALSE(shown.result.blCrashed);
    shown.image = QImage(sFile).convertToFormat(QImage::Format_RGB32);
    return shown;
}

void expectPlayed(const Shown &shown, const std::function<QRgb(const Clips::Yuv &)> &color)
{
    EXPECT_EQ(shown.result.nStatus, 0);
    EXPECT_EQ(complaints(shown.result), QStringList())
        << qPrintable(complaints(shown.result).join(QLatin1Char('\n')));
    ASSERT_EQ(shown.result.panes.size(), 1U);
    EXPECT_EQ(shown.result.panes[0].nPushed, kFrames);
    EXPECT_EQ(shown.result.panes[0].nRefused, 0);
    expectPattern(shown.image, kFrames, color);
}

// Whether a texture gets the handle by which another device finds it.
bool areTexturesShared()
{
    ComPtr<ID3D11Device> device;
    ComPtr<ID3D11Texture2D> texture;
    ComPtr<IDXGIResource> resource;
    D3D11_TEXTURE2D_DESC desc = {};
    desc.Width = 64;
    desc.Height = 64;
    desc.MipLevels = 1;
    desc.ArraySize = 1;
    desc.Format = DXGI_FORMAT_B8G8R8A8_UNORM;
    desc.SampleDesc.Count = 1;
    desc.BindFlags = D3D11_BIND_RENDER_TARGET | D3D11_BIND_SHADER_RESOURCE;
    desc.MiscFlags = D3D11_RESOURCE_MISC_SHARED;
    HANDLE hShare = nullptr;
    EXPECT_TRUE(SUCCEEDED(D3D11CreateDevice(nullptr, D3D_DRIVER_TYPE_HARDWARE, nullptr,
                                            D3D11_CREATE_DEVICE_BGRA_SUPPORT, nullptr, 0, D3D11_SDK_VERSION,
                                            device.ReleaseAndGetAddressOf(), nullptr, nullptr)));
    return device && SUCCEEDED(device->CreateTexture2D(&desc, nullptr, texture.ReleaseAndGetAddressOf())) &&
           SUCCEEDED(texture.As(__uuidof(IDXGIResource), resource)) &&
           SUCCEEDED(resource->GetSharedHandle(&hShare));
}

} // namespace

TEST(ZipPlayer, PlaysYv12OnAngle)
{
    expectPlayed(play("yv12", kFrames, {}), yv12Color);
}

TEST(ZipPlayer, PlaysNv12OnAngle)
{
    expectPlayed(play("nv12", kFrames, {QStringLiteral("--format"), QStringLiteral("nv12")}), nv12Color);
}

TEST(ZipPlayer, PlaysPaddedNv12OnAngle)
{
    expectPlayed(play("nv12-padded", kFrames, {QStringLiteral("--format"), QStringLiteral("nv12-padded")}),
                 nv12Color);
}

TEST(ZipPlayer, PlaysYv12OnTheSubImageRenderer)
{
    expectPlayed(play("subimage", kFrames, {QStringLiteral("--renderer"), QStringLiteral("subimage")}),
                 yv12Color);
}

TEST(ZipPlayer, PlaysYv12OnDesktopOpenGL)
{
    expectPlayed(play("desktop", kFrames, {QStringLiteral("--desktop-gl")}), yv12Color);
}

// A Direct3D that shares no textures between devices has no way to show them: the player says so.
TEST(ZipPlayer, PlaysTexturesOrSaysThatItCannot)
{
    const QStringList asOptions{QStringLiteral("--format"), QStringLiteral("d3d11")};
    if (areTexturesShared()) {
        expectPlayed(play("d3d11", kFrames, asOptions), textureColor);
        return;
    }
    // Those that come before the first paint are not refused; so many go on until it has come, and end with it.
    const Shown shown = play("d3d11", 1500, asOptions);
    EXPECT_EQ(shown.result.nStatus, kStatusFailed);
    const QStringList asComplaints = complaints(shown.result);
    EXPECT_EQ(asComplaints.filter(QStringLiteral("xeltplay: ")),
              QStringList(QStringLiteral("xeltplay: pane 1: 'test pattern' cannot be shown: the renderer "
                                         "refuses its pictures")))
        << qPrintable(asComplaints.join(QLatin1Char('\n')));
    EXPECT_FALSE(asComplaints.filter(QStringLiteral("GetSharedHandle")).isEmpty()) << "the reason";
    ASSERT_EQ(shown.image.size(), QSize(640, 480));
    QImage black(shown.image.size(), shown.image.format());
    black.fill(Qt::black);
    EXPECT_EQ(shown.image, black);
}

// So what it found was beside it.
TEST(ZipPlayer, DoesNotStartWithoutWhatIsBesideIt)
{
    const QString sAlone = freshPath(QStringLiteral(".exe"));
    ASSERT_TRUE(QFile::copy(QStringLiteral(XELT_TEST_PLAYER), sAlone));
    // A box that says what is missing would wait for somebody to close it.
    const UINT nMode = SetErrorMode(SEM_FAILCRITICALERRORS);
    PlayerRun run({QStringLiteral("--help")}, bareEnvironment(), sAlone);
    const PlayerResult result = run.finish();
    SetErrorMode(nMode);
    EXPECT_TRUE(result.blCrashed);
    EXPECT_EQ(static_cast<quint32>(result.nStatus), 0xC0000135U) << "a DLL was not found";
    EXPECT_EQ(result.sOutput, QString());
}
