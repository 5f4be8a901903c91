// What the independent DXF reader (Debian's ezdxf) finds in a saved drawing:
// its audit's errors and fixes and every multiline with its lists, as the
// JSON that tests/dxf/ezdxf_mlines.py prints.
#pragma once

#include <QJsonObject>
#include <QStringList>

#include <string>

struct EzdxfReport {
    bool ran = false;       // the reader ran and printed a report
    std::string problem;    // why it did not
    QJsonObject file;
};

// script: the script in tests/dxf that prints the report, given the
// drawing's path and then arguments.
EzdxfReport readWithEzdxf(const std::string& dxfPath, const char* script = "ezdxf_mlines.py",
                          const QStringList& arguments = {});

// What the reader's audit found in the drawing, errors and then fixes, one
// a line; empty when it found nothing.
std::string auditFindings(const EzdxfReport& report);
