#include "kaldo/view/PdfPageContents.h"

#include "kaldo/util/FileAccess.h"

#include <QByteArray>
#include <QIODevice>
#include <QRegularExpression>

#include <cstdio>
#include <string>

namespace kaldo::view {

namespace {

constexpr qint64 kCopyChunk = 1 << 20;
// The end of a file holds its trailer and where its cross-references start.
constexpr qint64 kTailSize = 1024;
constexpr int kXrefEntrySize = 20;
// A dictionary of the catalog, the page tree or a page is no longer.
constexpr qint64 kLongestObject = 1 << 16;

[[noreturn]] void unreadable(const char* what)
{
    throw FileError(std::string("the PDF writer's page was not as expected: ") + what);
}

QByteArray readAt(QIODevice& device, qint64 offset, qint64 size)
{
    if (!device.seek(offset))
        unreadable("it cannot be read back");
    return device.read(size);
}

// The number captured first by pattern in text.
qint64 capturedNumber(const QByteArray& text, const char* pattern, const char* what)
{
    const QRegularExpressionMatch match =
        QRegularExpression(QString::fromLatin1(pattern)).match(QString::fromLatin1(text));
    if (!match.hasMatch())
        unreadable(what);
    return match.captured(1).toLongLong();
}

// The one cross-reference section of a file as Qt's PDF writer ends it.
struct Trailer {
    qint64 xref = 0;
    qint64 size = 0;
    qint64 root = 0;
    qint64 info = -1;
};

Trailer readTrailer(QIODevice& pdf)
{
    const qint64 tailStart = std::max<qint64>(0, pdf.size() - kTailSize);
    const QByteArray tail = readAt(pdf, tailStart, kTailSize);
    const qsizetype trailerAt = tail.lastIndexOf("trailer");
    if (trailerAt < 0)
        unreadable("no trailer");
    const QByteArray trailer = tail.mid(trailerAt);
    Trailer result;
    result.xref = capturedNumber(trailer, R"(startxref\s+(\d+))", "no cross-references");
    result.size = capturedNumber(trailer, R"(/Size\s+(\d+))", "no size");
    result.root = capturedNumber(trailer, R"(/Root\s+(\d+)\s+0\s+R)", "no catalog");
    if (trailer.contains("/Info"))
        result.info = capturedNumber(trailer, R"(/Info\s+(\d+)\s+0\s+R)", "no information");
    return result;
}

// The text of object number between "obj" and "endobj".
QByteArray readObject(QIODevice& pdf, const Trailer& trailer, qint64 number)
{
    const QByteArray head = readAt(pdf, trailer.xref, 64);
    const qsizetype firstEntry = head.indexOf('\n', head.indexOf('\n') + 1) + 1;
    if (!head.startsWith("xref") || firstEntry <= 0 || number < 0 || number >= trailer.size)
        unreadable("cross-references of another form");
    const QByteArray entry = readAt(pdf, trailer.xref + firstEntry + number * kXrefEntrySize, kXrefEntrySize);
    const QByteArray object = readAt(pdf, entry.left(10).toLongLong(), kLongestObject);
    const qsizetype start = object.indexOf("obj");
    const qsizetype end = object.indexOf("endobj");
    if (!object.startsWith(QByteArray::number(number) + " 0 obj") || end < 0)
        unreadable("an object not where its cross-reference says");
    return object.mid(start + 3, end - start - 3);
}

// Writes in full or throws.
void writeAll(QIODevice& out, const QByteArray& bytes)
{
    if (out.write(bytes) != bytes.size())
        throw FileError("cannot write the PDF file: " + out.errorString().toStdString());
}

// Copies from device's start to its end; returns the bytes copied.
qint64 copyAll(QIODevice& device, QIODevice& out)
{
    if (!device.seek(0))
        unreadable("it cannot be read back");
    qint64 copied = 0;
    while (!device.atEnd()) {
        const QByteArray chunk = device.read(kCopyChunk);
        if (chunk.isEmpty())
            unreadable("it cannot be read back");
        writeAll(out, chunk);
        copied += chunk.size();
    }
    return copied;
}

QByteArray xrefEntry(qint64 offset)
{
    char entry[kXrefEntrySize + 1];
    std::snprintf(entry, sizeof entry, "%010lld 00000 n \n", static_cast<long long>(offset));
    return QByteArray(entry, kXrefEntrySize);
}

}  // namespace

void addPageContentsUnder(QIODevice& pdf, const std::vector<QIODevice*>& contents, QIODevice& out)
{
    const Trailer trailer = readTrailer(pdf);
    const qint64 pages = capturedNumber(readObject(pdf, trailer, trailer.root), R"(/Pages\s+(\d+)\s+0\s+R)",
                                        "no page tree");
    const qint64 pageNumber = capturedNumber(readObject(pdf, trailer, pages), R"(/Kids\s*\[\s*(\d+)\s+0\s+R)",
                                             "no page");
    QByteArray page = readObject(pdf, trailer, pageNumber);
    static const QRegularExpression pageContents(QStringLiteral(R"(/Contents\s+(\d+\s+0\s+R))"));
    const QRegularExpressionMatch ownContents = pageContents.match(QString::fromLatin1(page));
    if (!ownContents.hasMatch())
        unreadable("no page content");

    qint64 offset = copyAll(pdf, out);
    const auto add = [&](const QByteArray& bytes) {
        writeAll(out, bytes);
        offset += bytes.size();
    };
    QByteArray xref = "xref\n";
    QByteArray listed;
    for (std::size_t i = 0; i < contents.size(); ++i) {
        const qint64 number = trailer.size + 2 * qint64(i);
        listed += QByteArray::number(number) + " 0 R ";
        xref += xrefEntry(offset);
        add(QByteArray::number(number) + " 0 obj\n<<\n/Length " + QByteArray::number(number + 1)
            + " 0 R\n/Filter /FlateDecode\n>>\nstream\n");
        const qint64 length = copyAll(*contents[i], out);
        offset += length;
        add("\nendstream\nendobj\n");
        xref += xrefEntry(offset);
        add(QByteArray::number(number + 1) + " 0 obj\n" + QByteArray::number(length) + "\nendobj\n");
    }
    const qint64 size = trailer.size + 2 * qint64(contents.size());
    xref = "xref\n" + QByteArray::number(pageNumber) + " 1\n" + xrefEntry(offset) + QByteArray::number(trailer.size)
        + " " + QByteArray::number(size - trailer.size) + "\n" + xref.mid(5);
    page.replace(ownContents.capturedStart(), ownContents.capturedLength(),
                 "/Contents [" + listed + ownContents.captured(1).toLatin1() + "]");
    add(QByteArray::number(pageNumber) + " 0 obj" + page + "endobj\n");
    const qint64 xrefAt = offset;
    add(xref + "trailer\n<<\n/Size " + QByteArray::number(size) + "\n/Root " + QByteArray::number(trailer.root)
        + " 0 R\n" + (trailer.info >= 0 ? "/Info " + QByteArray::number(trailer.info) + " 0 R\n" : QByteArray())
        + "/Prev " + QByteArray::number(trailer.xref) + "\n>>\nstartxref\n" + QByteArray::number(xrefAt)
        + "\n%%EOF\n");
}

}  // namespace kaldo::view
