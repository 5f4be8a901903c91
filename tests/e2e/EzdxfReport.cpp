#include "EzdxfReport.h"

#include "TreePaths.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QProcess>

EzdxfReport readWithEzdxf(const std::string& dxfPath, const char* script, const QStringList& arguments)
{
    EzdxfReport report;
    QProcess python;
    // Debian's interpreter: the one on PATH may lack ezdxf.
    python.start("/usr/bin/python3", QStringList{sourceFile(std::filesystem::path("tests/dxf") / script),
                                                 QString::fromStdString(dxfPath)}
                                         + arguments);
    if (!python.waitForFinished(120000)) {
        report.problem = "ezdxf did not finish";
        return report;
    }
    if (python.exitStatus() != QProcess::NormalExit || python.exitCode() != 0) {
        report.problem = python.readAllStandardError().toStdString();
        return report;
    }
    report.file = QJsonDocument::fromJson(python.readAllStandardOutput()).object();
    report.ran = true;
    return report;
}

std::string auditFindings(const EzdxfReport& report)
{
    std::string found;
    for (const char* kind : {"errors", "fixes"})
        for (const QJsonValue finding : report.file[kind].toArray())
            found += std::string(kind) + ": " + finding.toString().toStdString() + "\n";
    return found;
}
