// One run of the host: the drawing, the editor, the runtime, the profile and
// the crash recorder, installed in kaldo::host() while the session lives and
// cleared after. The host commands are registered in the group
// "KALDO_HOSTCOMMANDS" when the session starts.
#pragma once

#include "kaldo/app/SessionPaths.h"
#include "kaldo/dxf/DxfFile.h"

#include <cstdint>
#include <filesystem>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

class KxDbDatabase;

namespace kaldo {

class CrashRecorder;
class Editor;
class Profile;
class Runtime;

// The file version of an exploded copy: the usual one, or R12 (AC1009)
// for the oldest readers.
enum class CopyVersion { Current, R12 };

// A session could not start (the profile cannot be read).
class SessionError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

class Session {
public:
    explicit Session(SessionPaths paths);
    ~Session();
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    // The running session, or null.
    static Session* current();

    const SessionPaths& paths() const { return paths_; }
    KxDbDatabase& database() { return *database_; }

    // The file of the drawing: empty for a new drawing not saved yet.
    const std::filesystem::path& drawingPath() const { return drawingPath_; }
    // Reads a drawing file and makes it the working drawing. Throws
    // dxf::DxfError, or dxf::Cancelled when report stops the reading; the
    // working drawing then stays as it was. Returns what the reader
    // repaired (dxf::DxfDrawing::repairs).
    std::vector<std::string> openDrawing(const std::filesystem::path& path, const dxf::ProgressReport& report = {});
    // Saves the working drawing (atomically) as path, which then becomes
    // its file. Throws dxf::DxfError, or dxf::Cancelled when report stops
    // the writing; the old file and the modified state then stay as they
    // were. A read-only file is replaced only when replaceReadOnly is true.
    void saveDrawing(const std::filesystem::path& path, bool replaceReadOnly = false,
                     const dxf::ProgressReport& report = {});
    // Saves a copy of the working drawing with every multiline exploded as
    // path; the working drawing, its file and its modified state stay as
    // they were. An R12 copy fills with SOLIDs and leaves out what R12
    // cannot hold, saying in the transcript which kinds and how many.
    // Throws dxf::DxfError. Returns how many were exploded.
    int saveExplodedCopy(const std::filesystem::path& path, bool replaceReadOnly = false,
                         CopyVersion version = CopyVersion::Current);
    // Whether the working drawing changed since it was opened, saved or
    // started.
    bool modified() const;
    // The font file each text style of the working drawing names, by the
    // style's name in capitals (kaldo/dxf keeps text styles as read).
    std::map<std::string, std::string> textStyleFonts() const;
    // Grows by one each time another drawing becomes the working drawing.
    unsigned drawingSerial() const { return drawingSerial_; }
    Editor& editor() { return *editor_; }
    Runtime& runtime() { return *runtime_; }
    Profile& profile() { return *profile_; }
    CrashRecorder& crashRecorder() { return *crashRecorder_; }

    // Loads a module by path or by name from the modules folder (see
    // resolveModulePath). On failure returns false with a message.
    bool loadModule(const std::filesystem::path& module, std::wstring& message);
    // Unloads a module by name or path.
    bool unloadModule(const std::wstring& module, std::wstring& message);
    // Loads every *.krx of the modules folder that is not loaded yet, in name
    // order. Returns the messages of the modules that failed.
    std::vector<std::wstring> loadModulesFolder();

    // Gives up the working drawing to a process about to end, which keeps
    // it until then so that its objects are never torn down one by one.
    std::unique_ptr<KxDbDatabase> releaseDrawingAtExit();

    // Ends the command loop after the current command.
    void requestQuit() { quit_ = true; }
    bool quitRequested() const { return quit_; }

private:
    SessionPaths paths_;
    std::unique_ptr<Profile> profile_;
    std::unique_ptr<CrashRecorder> crashRecorder_;
    std::unique_ptr<KxDbDatabase> database_;
    dxf::KeptSections keptSections_;
    std::filesystem::path drawingPath_;
    std::uint64_t savedChanges_ = 0;
    unsigned drawingSerial_ = 0;
    std::unique_ptr<Editor> editor_;
    std::unique_ptr<Runtime> runtime_;
    bool quit_ = false;
};

}  // namespace kaldo
