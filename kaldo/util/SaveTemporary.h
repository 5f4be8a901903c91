// The temporary file a save writes beside its target before renaming it
// over the target, and the clean-up of those a killed save left.
//
// A temporary is named ".NAME.kaldo-save-XXXXXX" (NAME the target's name,
// cut so that the whole stays a valid file name; X letters and digits), a
// name no user chooses; it carries a mark of its own (an extended
// attribute, taken off before it becomes the target), and its writer holds
// an exclusive advisory lock (flock) on it from before anyone can use it
// until it is renamed or removed. The clean-up removes only regular files
// of exactly that name that carry the mark and whose lock it can take: no
// running process writes them. Everything else beside the target is left
// alone.
#pragma once

#include "kaldo/util/FileAccess.h"

#include <filesystem>

namespace kaldo {

class SaveTemporary {
public:
    // Creates and locks a new temporary beside target. Throws FileError with
    // the reason alone when the folder takes no new file.
    explicit SaveTemporary(const std::filesystem::path& target);
    SaveTemporary(const SaveTemporary&) = delete;
    SaveTemporary& operator=(const SaveTemporary&) = delete;
    // Removes the temporary unless it was committed.
    ~SaveTemporary();

    int fd() const { return fd_.get(); }
    const std::filesystem::path& path() const { return path_; }

    // Syncs the temporary and renames it over target. Throws FileError with
    // the reason alone.
    void commit(const std::filesystem::path& target);

private:
    FileDescriptor fd_;
    std::filesystem::path path_;
};

// Removes the temporaries of saves of target that no running process holds.
void removeAbandonedTemporaries(const std::filesystem::path& target);

}  // namespace kaldo
