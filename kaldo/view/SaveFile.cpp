#include "kaldo/view/SaveFile.h"

#include <QSaveFile>
#include <QString>

namespace kaldo::view {

std::string saveAtomically(const std::filesystem::path& file,
                           const std::function<bool(QIODevice&, std::string& reason)>& write)
{
    const auto failed = [&](const QString& why) {
        return "cannot write '" + file.string() + "': " + why.toStdString() + ".";
    };
    QSaveFile out(QString::fromStdString(file.string()));
    if (!out.open(QIODevice::WriteOnly))
        return failed(out.errorString());
    std::string reason;
    if (!write(out, reason)) {
        out.cancelWriting();
        return failed(QString::fromStdString(reason.empty() ? out.errorString().toStdString() : reason));
    }
    if (!out.commit())
        return failed(out.errorString());
    return {};
}

}  // namespace kaldo::view
