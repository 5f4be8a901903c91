// A host for dialog tests: an offscreen application, an editor fed by a
// script written in the test (its transcript collected), a profile and a
// crash recorder in a temporary folder, and the module's resource library
// current, so that real dialogs load their templates and images.
#pragma once

#include "TestApplication.h"
#include "TreePaths.h"
#include "kaldo/core/Host.h"
#include "kaldo/ed/Editor.h"
#include "kaldo/ed/InputSource.h"
#include "kaldo/rx/Runtime.h"
#include "kaldo/util/CrashRecorder.h"
#include "kaldo/util/Profile.h"
#include "kxdb.h"
#include "kxhost.h"
#include "kxstring.h"

#include <QTemporaryDir>
#include <dlfcn.h>
#include <gtest/gtest.h>

#include <memory>
#include <sstream>
#include <string>

class DialogFixture : public ::testing::Test {
protected:
    DialogFixture()
        : saved_(kaldo::host()), root_(dir_.path().toStdString()), profile(root_ / "kaldo.ini"),
          recorder(root_ / "crash")
    {
        testApplication();
        kaldo::host().database = &db;
        kaldo::host().editor = &editor;
        kaldo::host().runtime = &runtime;
        kaldo::host().profile = &profile;
        kaldo::host().crashRecorder = &recorder;
        editor.setTranscript([this](std::wstring_view text) { transcript += text; });
        library_ = dlopen((stagedPaths().modulesDir / "KdMLStyleRes.so").c_str(), RTLD_NOW | RTLD_LOCAL);
        kxrxSetResourceHandle(library_);
    }
    ~DialogFixture() override
    {
        kxrxSetResourceHandle(nullptr);
        kaldo::host() = saved_;
        if (library_)
            dlclose(library_);
    }

    // The lines the next dialogs read.
    void script(const std::string& lines)
    {
        source_ = std::make_unique<kaldo::ScriptInputSource>(std::make_unique<std::istringstream>(lines));
        editor.setInputSource(source_.get());
        transcript.clear();
    }

    const std::filesystem::path& root() const { return root_; }

private:
    kaldo::HostState saved_;
    QTemporaryDir dir_;
    std::filesystem::path root_;
    std::unique_ptr<kaldo::InputSource> source_;
    void* library_ = nullptr;

protected:
    KxDbDatabase db;
    kaldo::Editor editor;
    kaldo::Runtime runtime;
    kaldo::Profile profile;
    kaldo::CrashRecorder recorder;
    std::wstring transcript;
};
