// Reading plotted PDF files back with poppler's tools: the page size as
// pdfinfo gives it, a page rasterised by pdftoppm, the text pdftotext
// finds. Each runs the real program on the file. Rasterise parts of large
// pages: a whole A3 page at 600 dpi is more than Qt reads as an image.
#pragma once

#include <QImage>
#include <QProcess>
#include <QRect>
#include <QRegularExpression>
#include <QString>
#include <QStringList>

#include <filesystem>
#include <string>
#include <utility>

namespace pdf {

// What the program printed on its standard output; empty when it failed.
inline QString runTool(const QString& program, const QStringList& args)
{
    QProcess process;
    process.start(program, args);
    if (!process.waitForFinished(60000) || process.exitStatus() != QProcess::NormalExit || process.exitCode() != 0)
        return {};
    return QString::fromUtf8(process.readAllStandardOutput());
}

inline QString path(const std::filesystem::path& file)
{
    return QString::fromStdString(file.string());
}

// The first page's width and height in points; -1 when pdfinfo cannot
// read the file.
inline std::pair<double, double> pageSize(const std::filesystem::path& file)
{
    static const QRegularExpression size(QStringLiteral("Page size:\\s+([0-9.]+) x ([0-9.]+) pts"));
    const QRegularExpressionMatch match = size.match(runTool(QStringLiteral("pdfinfo"), {path(file)}));
    if (!match.hasMatch())
        return {-1, -1};
    return {match.captured(1).toDouble(), match.captured(2).toDouble()};
}

inline int pageCount(const std::filesystem::path& file)
{
    static const QRegularExpression pages(QStringLiteral("Pages:\\s+([0-9]+)"));
    const QRegularExpressionMatch match = pages.match(runTool(QStringLiteral("pdfinfo"), {path(file)}));
    return match.hasMatch() ? match.captured(1).toInt() : -1;
}

// The first page at dpi, in colour, or the part of it in area (pixels
// from its top-left corner); a null image when it cannot be made.
inline QImage rasterise(const std::filesystem::path& file, int dpi, const QRect& area = {})
{
    const std::filesystem::path prefix = file.parent_path() / (file.stem().string() + "-page");
    QStringList args{QStringLiteral("-r"), QString::number(dpi), QStringLiteral("-singlefile")};
    if (!area.isNull())
        args << QStringLiteral("-x") << QString::number(area.x()) << QStringLiteral("-y") << QString::number(area.y())
             << QStringLiteral("-W") << QString::number(area.width()) << QStringLiteral("-H")
             << QString::number(area.height());
    runTool(QStringLiteral("pdftoppm"), args << path(file) << path(prefix));
    return QImage(path(prefix) + QStringLiteral(".ppm"));
}

inline std::string text(const std::filesystem::path& file)
{
    return runTool(QStringLiteral("pdftotext"), {path(file), QStringLiteral("-")}).toStdString();
}

// Millimetres to pixels at dpi.
inline double pixels(double millimetres, int dpi)
{
    return millimetres / 25.4 * dpi;
}

// The row of a rasterised page at dpi that lies millimetres above the
// page's foot, counted from its top.
inline double rowAbove(const std::filesystem::path& file, double millimetres, int dpi)
{
    return pageSize(file).second / 72 * dpi - pixels(millimetres, dpi);
}

}  // namespace pdf
