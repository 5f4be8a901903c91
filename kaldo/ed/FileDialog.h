// The window's file dialog, shared by every command that asks for a file
// and by the window's menus, so that all of them add the extension alike.
#pragma once

#include <QString>

#include <optional>

class QWidget;

namespace kaldo {

struct FileDialogChoice {
    QString path;
    int fileType = 0;  // the index of the file type it was chosen under
};

struct FileDialogRequest {
    QString title;
    QString start;      // the file or folder shown first
    QString extension;  // without the dot
    // A file to write; else an existing file to open. A name typed for
    // writing without an extension gets ".extension" unless asTyped, before
    // the dialog asks whether to replace an existing file.
    bool forWriting = false;
    bool asTyped = false;
    QString fileTypes;  // "Name (*.ext);;Other (*.ext)"; the extension's files when empty
    int fileType = 0;   // the type shown first
};

// Runs the dialog on the calling (GUI) thread; nothing when no file was
// chosen.
std::optional<FileDialogChoice> chooseFileInDialog(QWidget* owner, const FileDialogRequest& request);

}  // namespace kaldo
