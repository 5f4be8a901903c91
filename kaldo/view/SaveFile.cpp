#include "kaldo/view/SaveFile.h"

#include "kaldo/util/FileAccess.h"
#include "kaldo/util/FileWriting.h"

#include <QBuffer>
#include <QByteArray>
#include <QFile>
#include <QImage>
#include <QImageWriter>

namespace kaldo::view {

std::string saveAtomically(const std::filesystem::path& file,
                           const std::function<bool(QIODevice&, std::string& reason)>& write)
{
    try {
        replaceFile(file, [&](int fd) {
            QFile device;
            if (!device.open(fd, QIODevice::WriteOnly, QFileDevice::DontCloseHandle))
                throw FileError(device.errorString().toStdString());
            std::string reason;
            // The file's own error (a full disk) says more than a writer's
            // "Unknown error".
            if (!write(device, reason) || !device.flush())
                throw FileError(reason.empty() || device.error() != QFileDevice::NoError
                                    ? device.errorString().toStdString()
                                    : reason);
        });
    } catch (const FileError& e) {
        return e.what();
    }
    return {};
}

std::string saveImage(const std::filesystem::path& file, const QImage& image, const QByteArray& format, int quality)
{
    // A picture's bytes are bounded by its pixels, not by the drawing: it is
    // encoded first, so that a failed write is reported by the checked
    // writer (the image writer says only "Unknown error").
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    QImageWriter writer(&buffer, format);
    writer.setQuality(quality);
    if (!writer.write(image))
        return fileMessage("write", file, writer.errorString().toStdString());
    try {
        replaceFile(file, std::string_view(bytes.constData(), std::size_t(bytes.size())));
    } catch (const FileError& e) {
        return e.what();
    }
    return {};
}

}  // namespace kaldo::view
