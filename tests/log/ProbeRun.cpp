#include "ProbeRun.h"

#include "System.h"

#include <QDir>
#include <QProcess>
#include <QProcessEnvironment>

#include <filesystem>

namespace xelttest {

namespace fs = std::filesystem;

namespace {

std::string text(const QByteArray &abOutput)
{
    return QByteArray(abOutput).replace("\r\n", "\n").toStdString();
}

} // namespace

ProbeFolder::ProbeFolder()
    : m_folder(QDir::current().filePath(QStringLiteral("probe-XXXXXX"))),
      m_sProgram(path("host/probe" + fs::path(CORE_PROBE).extension().string()))
{
    fs::create_directories(path("host"));
    std::error_code error;
    fs::create_hard_link(CORE_PROBE, m_sProgram, error);
    if (error) {
        fs::copy_file(CORE_PROBE, m_sProgram);
    }
}

std::string ProbeFolder::path(const std::string &sName) const
{
    return QDir::toNativeSeparators(m_folder.filePath(QString::fromStdString(sName))).toStdString();
}

std::string ProbeFolder::variantPath(const std::string &sVariant)
{
    return std::string(CORE_VARIANTS) + "/" + sVariant + ".so";
}

void ProbeFolder::placeCore(const std::string &sVariant, const std::string &sName) const
{
    fs::create_directories(fs::path(path(sName)).parent_path());
    fs::copy_file(variantPath(sVariant), path(sName), fs::copy_options::overwrite_existing);
}

ProbeResult ProbeFolder::run(const QStringList &arguments, const std::string &sLibraryPath,
                             Display display) const
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.remove(QStringLiteral("LD_LIBRARY_PATH"));
    if (!sLibraryPath.empty()) {
        const QString strVariable = QString::fromLatin1(moduleSearchVariable());
        QStringList lstFolders(QString::fromStdString(sLibraryPath));
        if (environment.contains(strVariable)) {
            lstFolders += environment.value(strVariable);
        }
        environment.insert(strVariable, lstFolders.join(QDir::listSeparator()));
    }
    if (display == Display::None) {
        environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
    }
    // Qt's own notes would stand among those that the tests read.
    environment.insert(QStringLiteral("QT_LOGGING_RULES"), QStringLiteral("*=false"));
    QProcess process;
    process.setProcessEnvironment(environment);
    process.setWorkingDirectory(m_folder.path());
    process.start(QString::fromStdString(m_sProgram), arguments);
    constexpr int k_nTimeoutMs = 60000;
    ProbeResult result;
    if (!process.waitForFinished(k_nTimeoutMs)) {
        process.kill();
        process.waitForFinished();
        return result;
    }
    result.nExitCode = process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
    result.sOutput = text(process.readAllStandardOutput());
    result.sErrors = text(process.readAllStandardError());
    return result;
}

} // namespace xelttest
