// A host with a new drawing and an editor fed by a script written in the
// test; the transcript is collected.
#pragma once

#include "kaldo/core/Host.h"
#include "kaldo/ed/Editor.h"
#include "kaldo/ed/InputSource.h"
#include "kxdb.h"

#include <gtest/gtest.h>

#include <memory>
#include <sstream>
#include <string>

namespace kaldo {

class EditorFixture : public ::testing::Test {
protected:
    EditorFixture() : saved_(host())
    {
        host().database = &db;
        host().editor = &editor;
        editor.setTranscript([this](std::wstring_view text) { transcript += text; });
    }
    ~EditorFixture() override { host() = saved_; }

    // Adds the entity to the drawing's current space and closes it.
    KxDbObjectId add(KxDbEntity* entity)
    {
        KxDbObjectId id;
        EXPECT_EQ(db.addToCurrentSpace(entity, id), Kald::eOk);
        entity->close();
        return id;
    }
    KxDbObjectId addLine(const KxGePoint3d& a, const KxGePoint3d& b) { return add(new KxDbLine(a, b)); }

    void script(const std::string& lines)
    {
        source = std::make_unique<ScriptInputSource>(std::make_unique<std::istringstream>(lines));
        editor.setInputSource(source.get());
    }

    KxDbDatabase db;
    Editor editor;
    std::wstring transcript;
    std::unique_ptr<InputSource> source;

private:
    HostState saved_;
};

}  // namespace kaldo
