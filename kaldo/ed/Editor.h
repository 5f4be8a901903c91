// The command line of the host: reads input from the current source, writes
// the transcript, keeps the state of kxedInitGet, the host's system
// variables and the current view. One command thread uses it.
//
// Transcript: prompts and messages as written, then what was typed (echoed
// after the prompt; a clicked point as its typed coordinates) and a line end. A text that starts with a line break
// while the transcript already stands at the start of a line loses that one
// line break, so that prompts written as "\nCommand: " do not leave blank
// lines behind each answer.
#pragma once

#include "kaldo/ed/InputSource.h"
#include "kaldo/ed/Keywords.h"
#include "kaldo/ed/PickIndex.h"
#include "kaldo/ed/PointInput.h"
#include "kaldo/ed/SelectionSet.h"
#include "kaldo/ed/SystemVariables.h"
#include "kaldo/ed/View.h"
#include "kxdbid.h"
#include "kxtypes.h"

#include <deque>
#include <utility>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

class KxDbEntity;

namespace kaldo {

class Editor {
public:
    using TranscriptSink = std::function<void(std::wstring_view)>;
    // Called for kxedRedraw: the entity (null for everything) and the mode.
    using RedrawListener = std::function<void(const std::int64_t* entity, int mode)>;
    // Called while a drag moves its entities with the cursor: they show
    // where the drag would put them.
    using DragListener = std::function<void(std::span<const KxDbEntity* const> entities)>;
    // Runs a transparent command typed with a leading apostrophe ("'HELP")
    // at any prompt; false when name is none (the text is then an answer).
    using TransparentHandler = std::function<bool(std::wstring_view name)>;
    // Runs a grip drag: a point given at the command prompt on a grip of
    // the implied selection, the grip being the entity's stretch point at
    // index, at world point grip.
    using GripHandler = std::function<void(const KxDbObjectId& entity, int index, const KxGePoint3d& grip)>;
    // Called for kxedTextScr: a window shows its larger text window.
    using TextScreenListener = std::function<void()>;
    // Called while an entity pick waits, with the entity a click at the
    // cursor would take (null for none), and with null when the pick ends.
    using HoverListener = std::function<void(const KxDbObjectId& entity)>;

    // What the command line waits for: told to a window each time a prompt
    // starts waiting (not for every cursor motion of a drag).
    struct InputRequest {
        enum class Kind { Command, Point, Entity, Drag, Text, Other } kind = Kind::Command;
        bool hasBase = false;
        KxGePoint3d base;           // world; the anchor of a rubber band
        bool acceptBlanks = false;  // a blank is part of the answer
        std::vector<Keyword> keywords;
        bool corner = false;  // the rubber band is the box from base to the cursor
        // The box is a selection window: to the right of base a window, to
        // the left a crossing.
        bool selectionWindow = false;
    };
    using RequestListener = std::function<void(const InputRequest&)>;

    // getCommand's result when the input has ended (the session then ends).
    static constexpr int kEndOfInput = -5999;

    Editor();

    void setInputSource(InputSource* source) { source_ = source; }
    InputSource* inputSource() const { return source_; }
    bool scriptFeedsInput() const { return source_ && source_->isScript(); }
    // Whether a file choice or a question that a dialog would ask is asked
    // on the command line: while a script feeds input, with FILEDIA 0, and
    // without a window system (kaldo/ed/FileServices.cpp).
    bool asksOnCommandLine();

    void setTranscript(TranscriptSink sink) { transcript_ = std::move(sink); }
    // Writes text on the command line as it stands.
    void write(std::wstring_view text);

    void setRedrawListener(RedrawListener listener) { redrawListener_ = std::move(listener); }
    void redraw(const std::int64_t* entity, int mode);
    void setDragListener(DragListener listener) { dragListener_ = std::move(listener); }
    void dragged(std::span<const KxDbEntity* const> entities);
    void setTransparentHandler(TransparentHandler handler) { transparentHandler_ = std::move(handler); }
    void setGripHandler(GripHandler handler) { gripHandler_ = std::move(handler); }
    // The global name of the command that runs (empty at the command
    // prompt), for help about it.
    void setRunningCommand(std::wstring name) { runningCommand_ = std::move(name); }
    const std::wstring& runningCommand() const { return runningCommand_; }
    void setRequestListener(RequestListener listener) { requestListener_ = std::move(listener); }
    void setTextScreenListener(TextScreenListener listener) { textScreenListener_ = std::move(listener); }
    void setHoverListener(HoverListener listener) { hoverListener_ = std::move(listener); }
    // Switches to the text screen; nothing to show without a window.
    void showTextScreen();

    // Prompts "\nCommand: " and reads a command word: RTNORM with the word;
    // entities still highlighted are unhighlighted first (kxedRedraw mode 4);
    // RTNONE for Enter (the caller repeats the last command); RTCAN; or
    // kEndOfInput. A blank ends the command word: the rest of the line feeds
    // the next input ("SETVAR CMLSCALE" answers the variable prompt).
    int getCommand(std::wstring& word);

    // The next line for a dialog that a script drives (text, Enter, cancel
    // or the end of input), not echoed; cursor motion is skipped.
    InputEvent nextDialogInput();

    void initGet(int flags, std::wstring_view keywords);
    // The keywords initGet set for the next input, and their end without one.
    const std::vector<Keyword>& pendingKeywords() const { return controls_.keywords; }
    void clearControls() { controls_ = {}; }
    int getPoint(const KxGePoint3d* base, std::wstring_view prompt, KxGePoint3d& out);
    // A point as getPoint reads it: the opposite corner of a box from base,
    // which a window shows as the box.
    int getCorner(const KxGePoint3d& base, std::wstring_view prompt, KxGePoint3d& out);
    int getReal(std::wstring_view prompt, double& out);
    int getString(bool acceptBlanks, std::wstring_view prompt, std::wstring& out);
    int getKeyword(std::wstring_view prompt, std::wstring& out);
    // The last keyword read (see kxedGetInput); RTERROR when there is none.
    int lastKeyword(std::wstring& out) const;
    // See kxedEntSel; point is in user coordinates. The picked entity is
    // highlighted (kxedRedraw mode 3) until the next command prompt; a point
    // that hits nothing writes "No object found.". Cursor motion while it
    // waits goes to the hover listener.
    int entSel(std::wstring_view prompt, std::int64_t name[2], KxGePoint3d& point);

    // "Select objects:" until Enter: a point picks the entity within the
    // pick box there, or when there is none starts a window whose opposite
    // corner to the right makes it a window (what lies wholly inside), to
    // the left a crossing (what it crosses too); Window and Crossing ask for
    // two corners, Last takes the last entity of the current space,
    // Previous the previous selection, Remove and Add switch between taking
    // out and adding. Each step says how many it found. Entities in the set
    // are highlighted. An implied selection is taken instead, without a
    // prompt. RTNORM (the set may be empty) or RTCAN; the set becomes the
    // previous selection.
    int selectObjects(SelectionSet& set);
    // A selection made before a command (a window's picks): the next
    // selectObjects takes it.
    void setImpliedSelection(SelectionSet set) { implied_ = std::move(set); }
    // Adds to the implied selection what a point picks at the command
    // prompt (or the window it starts), highlighted; removing takes it out.
    void selectForNextCommand(const KxGePoint3d& picked, bool removing = false);
    // Empties the implied selection and takes its highlight away.
    void clearImpliedSelection();
    const SelectionSet& impliedSelection() const { return implied_; }
    const SelectionSet& previousSelection() const { return previous_; }
    // Picks and windows find entities through this index of what they draw.
    PickIndex& pickIndex() { return pickIndex_; }

    // One response for a drag: a point (world), a keyword or an end. The
    // drag gives its keyword list and whether Enter ends it; the prompt is
    // written when writePrompt is true and again after invalid input.
    // With numbers, typed text that is a number (Real) or an angle in the
    // angular units (Angle: radians, counter-clockwise unless ANGDIR says
    // clockwise) comes as a Number.
    struct DragInput {
        enum class Kind { Point, Motion, Keyword, Enter, Cancel, Number } kind = Kind::Cancel;
        KxGePoint3d world;
        int keyword = 0;  // 1-based position in the list
        double number = 0;
    };
    enum class DragNumbers { None, Real, Angle };
    DragInput readDragInput(std::wstring_view prompt, bool writePrompt, std::wstring_view keywords,
                            bool acceptEnter, const KxGePoint3d* worldBase, DragNumbers numbers = DragNumbers::None);

    SystemVariables& variables() { return variables_; }
    View& view() { return view_; }

    // How a typed angle is read (AUNITS, ANGBASE, ANGDIR).
    AngleConvention angleConvention() const;
    // A world point as it would be typed: "x,y" in user coordinates and the
    // linear units (",z" when z is not 0).
    std::wstring typedCoordinates(const KxGePoint3d& world) const;

private:
    struct Controls {
        int flags = 0;
        std::vector<Keyword> keywords;
    };
    enum class Outcome { Done, Again };

    // What a get function does with a typed text or a picked point: a
    // result, or nothing to ask again (after complaining).
    using Handler = std::function<std::optional<int>(const InputEvent&)>;

    Controls takeControls();
    int askPoint(const KxGePoint3d* base, bool corner, std::wstring_view prompt, KxGePoint3d& out);
    // The entity a pick at world takes: the nearest within the pick box.
    KxDbObjectId entityAt(const KxGePoint3d& world);
    // The next input, echoed on the transcript; motion only when asked for.
    InputEvent next(bool wantMotion = false);
    // The loop every get function shares: prompt, read, and answer cancel,
    // end of input and Enter (RSG_NONULL asks again); the rest goes to handle.
    int ask(std::wstring_view prompt, int flags, const InputRequest& request, const Handler& handle);
    void announce(const InputRequest& request) const;
    // Writes message on a line of its own, then prompt again.
    void complain(std::wstring_view message, std::wstring_view prompt);
    // The number typed text stands for, when numbers are read.
    std::optional<double> typedNumber(std::wstring_view text, DragNumbers numbers) const;
    // Whether text runs a transparent command; the prompt then stands again.
    bool ranTransparent(std::wstring_view text);
    // A point in world coordinates, typed (in user coordinates) or picked;
    // with corner, the opposite corner of a window from it (relative input
    // from it).
    int getWorldPoint(std::wstring_view prompt, const KxGePoint3d* corner, KxGePoint3d& world);
    // One step of selectObjects: what it found (to take out of the set for
    // a pick with Shift held) and the window that found it, if one did; or
    // nothing for Enter.
    enum class StepResult { Found, FoundToRemove, Switched, Ended, Cancelled };
    StepResult selectionStep(bool removing, std::vector<KxDbObjectId>& found, std::optional<Box>& window);
    // What a point picks, or when it hits nothing the window it starts.
    StepResult pickedAt(const KxGePoint3d& picked, std::vector<KxDbObjectId>& found, std::optional<Box>& window);
    // The window from first to an opposite corner asked for: a crossing or
    // not as given, else by the side the corner lies on.
    StepResult windowFrom(const KxGePoint3d& first, std::optional<bool> crossing, std::vector<KxDbObjectId>& found,
                          std::optional<Box>& window);
    // Hands a point at the command prompt that lies on a grip of the
    // implied selection (within the pick box) to the grip handler; false
    // when it lies on none.
    bool ranGripDrag(const KxGePoint3d& world);
    // Adds found to set, highlighted; how many were not in it yet.
    std::size_t addToSelection(SelectionSet& set, std::span<const KxDbObjectId> found);
    // Takes found out of set, unhighlighted; how many were in it.
    std::size_t removeFromSelection(SelectionSet& set, std::span<const KxDbObjectId> found);
    // kxedRedraw of each entity with mode.
    void highlight(std::span<const KxDbObjectId> ids, int mode);
    // What lies in the window (world XY): inside, or also what crosses its
    // edges.
    std::vector<KxDbObjectId> windowed(const Box& window, bool crossing);
    // Whether text selects a keyword of controls (or RSG_OTHER takes any
    // text); remembers it for lastKeyword.
    bool takeKeyword(const Controls& controls, std::wstring_view text);

    InputSource* source_ = nullptr;
    std::deque<std::wstring> pending_;
    TranscriptSink transcript_;
    bool atLineStart_ = true;
    RedrawListener redrawListener_;
    DragListener dragListener_;
    TransparentHandler transparentHandler_;
    GripHandler gripHandler_;
    std::wstring runningCommand_;
    RequestListener requestListener_;
    TextScreenListener textScreenListener_;
    HoverListener hoverListener_;
    Controls controls_;
    std::optional<std::wstring> keyword_;
    SystemVariables variables_;
    View view_;
    PickIndex pickIndex_;
    SelectionSet implied_;
    SelectionSet previous_;
};

// The host's editor, or null outside a session.
Editor* currentEditor();

}  // namespace kaldo
