#include "kaldo/view/SaveFile.h"

#include "kaldo/util/FileAccess.h"
#include "kaldo/util/FileWriting.h"

#include <QBuffer>
#include <QByteArray>
#include <QImage>
#include <QImageWriter>

namespace kaldo::view {

std::string saveAtomically(const std::filesystem::path& file,
                           const std::function<bool(QIODevice&, std::string& reason)>& write)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    if (std::string reason; !write(buffer, reason))
        return fileMessage("write", file, reason.empty() ? buffer.errorString().toStdString() : reason);
    try {
        replaceFile(file, std::string_view(bytes.constData(), std::size_t(bytes.size())));
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
