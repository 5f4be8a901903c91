#include "ReopenProperty.h"

#include "DxfText.h"
#include "TreePaths.h"

#include "kaldo/dxf/DrawingExtents.h"
#include "kaldo/dxf/DxfError.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>

#include <algorithm>
#include <cstring>
#include <fstream>

std::string reopenProblem(const std::filesystem::path& drawing, const std::filesystem::path& savedCopy, bool& opened)
{
    opened = false;
    kaldo::dxf::DxfDrawing first;
    try {
        first = kaldo::dxf::readDxfFile(drawing);
    } catch (const kaldo::dxf::DxfError& e) {
        return "it does not open: " + std::string(e.what());
    }
    opened = true;
    // Extents known from the reading are those a full pass gives, bit for bit.
    if (first.kept.extents.holdFor(*first.database)) {
        const kaldo::dxf::Extents measured = kaldo::dxf::drawingExtents(*first.database);
        if (std::memcmp(&measured, &first.kept.extents.extents, sizeof measured) != 0)
            return "the extents measured while it was read are not those of its entities";
    }
    std::string saved;
    try {
        saved = toDxfText(first);
    } catch (const kaldo::dxf::DxfError& e) {
        return "it opened but does not save: " + std::string(e.what());
    }
    std::ofstream(savedCopy, std::ios::binary) << saved;
    try {
        kaldo::dxf::DxfDrawing second = fromDxfText(saved);
        if (!second.repairs.empty())
            return "its saved form needed repairs on opening: " + second.repairs.front();
        const std::string again = toDxfText(second);
        if (again != saved)
            return "a second save gives other bytes than the first";
    } catch (const kaldo::dxf::DxfError& e) {
        return "its saved form does not open: " + std::string(e.what());
    }
    return {};
}

std::map<std::filesystem::path, std::string> ezdxfAuditFindings(const std::vector<std::filesystem::path>& files)
{
    std::map<std::filesystem::path, std::string> findings;
    if (files.empty())
        return findings;
    QStringList args{sourceFile("tests/dxf/ezdxf_audit.py")};
    for (const std::filesystem::path& file : files)
        args << QString::fromStdString(file.string());
    QProcess python;
    // Debian's interpreter: the one on PATH may lack ezdxf.
    python.start("/usr/bin/python3", args);
    const bool finished = python.waitForFinished(300000);
    const QJsonObject report = QJsonDocument::fromJson(python.readAllStandardOutput()).object();
    for (const std::filesystem::path& file : files) {
        const QJsonValue found = report.value(QString::fromStdString(file.string()));
        if (!finished || !found.isArray())
            findings[file] = "ezdxf gave no report: " + python.readAllStandardError().toStdString();
        else if (!found.toArray().isEmpty())
            findings[file] = QJsonDocument(found.toArray()).toJson().toStdString();
        else
            findings[file] = "";
    }
    return findings;
}

std::vector<std::filesystem::path> drawingsUnder(const std::filesystem::path& folder)
{
    std::vector<std::filesystem::path> drawings;
    std::error_code ec;
    for (auto it = std::filesystem::recursive_directory_iterator(folder, ec);
         !ec && it != std::filesystem::recursive_directory_iterator(); it.increment(ec))
        if (it->path().extension() == ".dxf" && it->is_regular_file(ec))
            drawings.push_back(it->path());
    std::sort(drawings.begin(), drawings.end());
    return drawings;
}
