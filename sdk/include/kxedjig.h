// A drag on the command line: the jig's entity follows the cursor while the
// user picks or types points, and keywords end the drag early.
//
// drag() shows the prompt (with the keyword list), then calls sampler(),
// which calls acquirePoint() to read one input. For a point (typed, picked
// or the cursor moving in the window) sampler returns kNormal, drag calls
// update() and, for cursor motion, redraws the entity and samples again;
// for a typed or picked point drag returns kNormal. A keyword returns
// kKW1.. (its 1-based position in the list), Enter kNull when the input
// controls accept a null response (else Enter asks again), cancel or the
// end of input kCancel. Points are world coordinates; typed points are in
// user coordinates, relative ones taken from acquirePoint's base point.
#pragma once

#include "kxdbid.h"
#include "kxtypes.h"

#include <string>

class KxDbEntity;

class KxEdJig {
public:
    enum DragStatus : int {
        kCancel = -4,
        kNull = -1,
        kNormal = 0,
        kKW1 = 1,
        kKW2,
        kKW3,
        kKW4,
        kKW5,
        kKW6,
        kKW7,
        kKW8,
        kKW9,
    };
    enum UserInputControls : int {
        kNullResponseAccepted = 0x2,   // Enter ends the drag with kNull
        kDontUpdateLastPoint = 0x8,    // an acquired point leaves LASTPOINT alone
    };
    // How the window draws the cursor during the drag.
    enum CursorType : int { kNoSpecialCursor = -1, kCrosshair = 0, kRectCursor = 1, kRubberBand = 2 };

    KxEdJig() = default;
    KxEdJig(const KxEdJig&) = delete;
    KxEdJig& operator=(const KxEdJig&) = delete;
    virtual ~KxEdJig() = default;

    void setDispPrompt(const wchar_t* prompt) { m_prompt = prompt ? prompt : L""; }
    const wchar_t* dispPrompt() const { return m_prompt.c_str(); }
    // "Local words _Global words", or null for none.
    void setKeywordList(const wchar_t* keywords) { m_keywords = keywords ? keywords : L""; }
    const wchar_t* keywordList() const { return m_keywords.c_str(); }
    void setUserInputControls(int controls) { m_controls = controls; }
    int userInputControls() const { return m_controls; }
    void setSpecialCursorType(int cursor) { m_cursor = cursor; }
    int specialCursorType() const { return m_cursor; }

    DragStatus drag();
    // Reads one input for sampler(); base is the rubber band's anchor and
    // the reference of relative input (LASTPOINT without one).
    DragStatus acquirePoint(KxGePoint3d& point);
    DragStatus acquirePoint(KxGePoint3d& point, const KxGePoint3d& base);
    // Adds entity() to the current space of the working drawing and closes
    // it; the drawing owns it from then on. The null id when that fails.
    KxDbObjectId append();

    virtual DragStatus sampler() = 0;
    virtual bool update() = 0;
    virtual KxDbEntity* entity() const = 0;

private:
    DragStatus acquire(KxGePoint3d& point, const KxGePoint3d* base);

    std::wstring m_prompt;
    std::wstring m_keywords;
    int m_controls = 0;
    int m_cursor = kNoSpecialCursor;
    bool m_promptShown = false;
    bool m_moving = false;
};
