#include "kaldo/ed/FileDialog.h"

#include <QFileDialog>

namespace kaldo {

std::optional<FileDialogChoice> chooseFileInDialog(QWidget* owner, const FileDialogRequest& request)
{
    const QString fileTypes = !request.fileTypes.isEmpty() ? request.fileTypes
        : request.extension.isEmpty()                       ? QString()
                                                            : QStringLiteral("*.%1").arg(request.extension);
    QFileDialog dialog(owner, request.title, request.start, fileTypes);
    dialog.setAcceptMode(request.forWriting ? QFileDialog::AcceptSave : QFileDialog::AcceptOpen);
    dialog.setFileMode(request.forWriting ? QFileDialog::AnyFile : QFileDialog::ExistingFile);
    if (request.forWriting && !request.asTyped)
        dialog.setDefaultSuffix(request.extension);
    const QStringList types = dialog.nameFilters();
    if (request.fileType > 0 && request.fileType < types.size())
        dialog.selectNameFilter(types[request.fileType]);
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty())
        return std::nullopt;
    return FileDialogChoice{dialog.selectedFiles().front(), int(std::max<qsizetype>(0, types.indexOf(dialog.selectedNameFilter())))};
}

}  // namespace kaldo
