#include "kaldo/view/SaveFile.h"

#include "kaldo/util/FileAccess.h"
#include "kaldo/util/FileWriting.h"

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
            if (!write(device, reason) || !device.flush())
                throw FileError(reason.empty() ? device.errorString().toStdString() : reason);
        });
    } catch (const FileError& e) {
        return e.what();
    }
    return {};
}

std::string saveImage(const std::filesystem::path& file, const QImage& image, const QByteArray& format, int quality)
{
    return saveAtomically(file, [&](QIODevice& device, std::string& reason) {
        QImageWriter writer(&device, format);
        writer.setQuality(quality);
        if (writer.write(image))
            return true;
        reason = writer.errorString().toStdString();
        return false;
    });
}

}  // namespace kaldo::view
