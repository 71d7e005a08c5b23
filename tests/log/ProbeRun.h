// Runs the probe program in a folder of its own, with the core libraries that a test puts there.
#pragma once

#include <QStringList>
#include <QTemporaryDir>

#include <string>

namespace xelttest {

struct ProbeResult
{
    int nExitCode = -1;
    std::string sOutput;
    std::string sErrors;
};

class ProbeFolder
{
public:
    ProbeFolder();

    // Path of a file or folder in the temporary folder, which also holds the program, in "host".
    std::string path(const std::string &sName) const;
    // Puts a core library there under a name, "host/Ombrix.dll" for the one beside the program.
    void placeCore(const std::string &sVariant, const std::string &sName = "host/Ombrix.dll") const;
    static std::string variantPath(const std::string &sVariant);

    // The program's own display is the off-screen one, unless a real one is asked for.
    enum class Display { None, Real };
    ProbeResult run(const QStringList &arguments, const std::string &sLibraryPath = std::string(),
                    Display display = Display::None) const;

private:
    QTemporaryDir m_folder;
    std::string m_sProgram;
};

} // namespace xelttest
