#include "kaldo/ed/Editor.h"

#include "kaldo/core/Host.h"
#include "kaldo/ed/Coordinates.h"
#include "kaldo/ed/Text.h"
#include "kaldo/ed/Units.h"

#include <cmath>

namespace kaldo {

Editor::Editor() : variables_(*this) {}

Editor* currentEditor()
{
    return host().editor;
}

void Editor::write(std::wstring_view text)
{
    if (atLineStart_ && !text.empty() && text.front() == L'\n')
        text.remove_prefix(1);
    if (text.empty())
        return;
    if (transcript_)
        transcript_(text);
    atLineStart_ = text.back() == L'\n';
}

void Editor::redraw(const std::int64_t* entity, int mode)
{
    if (redrawListener_)
        redrawListener_(entity, mode);
}

void Editor::showTextScreen()
{
    if (textScreenListener_)
        textScreenListener_();
}

void Editor::dragged(std::span<const KxDbEntity* const> entities)
{
    if (dragListener_)
        dragListener_(entities);
}

bool Editor::ranTransparent(std::wstring_view text)
{
    text = trimmed(text);
    return text.size() > 1 && text.front() == L'\'' && transparentHandler_ && transparentHandler_(text.substr(1));
}

void Editor::announce(const InputRequest& request) const
{
    if (requestListener_)
        requestListener_(request);
}

std::optional<double> Editor::typedNumber(std::wstring_view text, DragNumbers numbers) const
{
    if (numbers == DragNumbers::Real)
        return parseReal(text);
    if (numbers != DragNumbers::Angle)
        return std::nullopt;
    const AngleConvention angles = angleConvention();
    const auto angle = parseAngle(text, angles.unit);
    if (!angle)
        return std::nullopt;
    return angles.clockwise ? -*angle : *angle;
}

std::wstring Editor::typedCoordinates(const KxGePoint3d& world) const
{
    const KxGePoint3d p = worldToUcs(currentUcs(), world);
    const auto text = [this](double value) {
        return formatDistance(value, variables_.shortValue(L"LUNITS", 2), variables_.shortValue(L"LUPREC", 4),
                              variables_.shortValue(L"DIMZIN", 0));
    };
    std::wstring coordinates = text(p.x) + L"," + text(p.y);
    if (std::abs(p.z) > kxGeTolerance)
        coordinates += L"," + text(p.z);
    return coordinates;
}

AngleConvention Editor::angleConvention() const
{
    return {variables_.shortValue(L"AUNITS", 0), variables_.realValue(L"ANGBASE", 0.0),
            variables_.shortValue(L"ANGDIR", 0) == 1};
}

void Editor::initGet(int flags, std::wstring_view keywords)
{
    controls_ = {flags, parseKeywordList(keywords)};
}

Editor::Controls Editor::takeControls()
{
    return std::exchange(controls_, Controls{});
}

InputEvent Editor::next(bool wantMotion)
{
    while (true) {
        InputEvent event;
        if (!pending_.empty()) {
            event = InputEvent::typed(std::move(pending_.front()));
            pending_.pop_front();
        } else if (source_) {
            event = source_->next();
        }
        switch (event.kind) {
        case InputEvent::Kind::Motion:
            if (!wantMotion)
                continue;
            return event;
        case InputEvent::Kind::Text:
            write(event.text + L"\n");
            return event;
        case InputEvent::Kind::Point:
            write(typedCoordinates(event.point) + L"\n");
            return event;
        case InputEvent::Kind::Cancel:
            pending_.clear();
            if (!event.text.empty())
                write(L"\n" + event.text + L"\n");
            write(L"*Cancel*\n");
            return event;
        default:
            write(L"\n");
            return event;
        }
    }
}

InputEvent Editor::nextDialogInput()
{
    if (!pending_.empty()) {
        InputEvent event = InputEvent::typed(std::move(pending_.front()));
        pending_.pop_front();
        return event;
    }
    while (source_) {
        InputEvent event = source_->next();
        if (event.kind != InputEvent::Kind::Motion)
            return event;
    }
    return InputEvent::end();
}

void Editor::complain(std::wstring_view message, std::wstring_view prompt)
{
    write(L"\n");
    write(message);
    write(L"\n");
    write(prompt);
}

int Editor::ask(std::wstring_view prompt, int flags, const InputRequest& request, const Handler& handle)
{
    write(prompt);
    announce(request);
    while (true) {
        // An entity pick follows the cursor, to show what a click would take.
        const InputEvent event = next(request.kind == InputRequest::Kind::Entity);
        if (event.kind == InputEvent::Kind::Text && ranTransparent(event.text)) {
            write(prompt);
            continue;
        }
        const bool empty = event.kind == InputEvent::Kind::Enter
            || (event.kind == InputEvent::Kind::Text && trimmed(event.text).empty());
        if (event.kind == InputEvent::Kind::Cancel || event.kind == InputEvent::Kind::EndOfInput)
            return RTCAN;
        if (empty) {
            if (!(flags & RSG_NONULL))
                return RTNONE;
            write(prompt);
            continue;
        }
        if (const auto result = handle(event))
            return *result;
    }
}

bool Editor::takeKeyword(const Controls& controls, std::wstring_view text)
{
    if (const auto index = matchKeyword(controls.keywords, text)) {
        keyword_ = controls.keywords[*index].global;
        return true;
    }
    if (controls.flags & RSG_OTHER) {
        keyword_ = std::wstring(text);
        return true;
    }
    return false;
}

int Editor::getCommand(std::wstring& word)
{
    clearControls();
    // The selection made here for the next command stays highlighted, as
    // its entities are now.
    const auto showImplied = [this] {
        redraw(nullptr, 4);
        implied_ = implied_.withoutErased();
        highlight(implied_.ids(), 3);
    };
    showImplied();
    const std::wstring_view prompt = L"\nCommand: ";
    write(prompt);
    announce({});
    while (true) {
        const InputEvent event = next();
        switch (event.kind) {
        case InputEvent::Kind::Point:
            // A pick on a grip drags it; elsewhere it selects for the next
            // command (noun first, then verb), or with Shift takes out.
            if (!event.removing && ranGripDrag(event.point))
                showImplied();
            else
                selectForNextCommand(event.point, event.removing);
            write(prompt);
            announce({});
            break;
        case InputEvent::Kind::Text: {
            const std::wstring_view text = trimmed(event.text);
            if (text.empty())
                return RTNONE;
            const std::size_t blank = text.find_first_of(L" \t");
            word = text.substr(0, blank);
            if (blank != std::wstring_view::npos)
                pending_.emplace_front(trimmed(text.substr(blank)));
            return RTNORM;
        }
        case InputEvent::Kind::Enter: return RTNONE;
        case InputEvent::Kind::Cancel:
            clearImpliedSelection();
            return RTCAN;
        case InputEvent::Kind::EndOfInput: return kEndOfInput;
        default: write(prompt); break;
        }
    }
}

int Editor::getPoint(const KxGePoint3d* base, std::wstring_view prompt, KxGePoint3d& out)
{
    return askPoint(base, false, prompt, out);
}

int Editor::getCorner(const KxGePoint3d& base, std::wstring_view prompt, KxGePoint3d& out)
{
    return askPoint(&base, true, prompt, out);
}

int Editor::askPoint(const KxGePoint3d* base, bool corner, std::wstring_view prompt, KxGePoint3d& out)
{
    const Controls controls = takeControls();
    const KxGePoint3d reference = base ? *base : variables_.pointValue(L"LASTPOINT");
    InputRequest request{InputRequest::Kind::Point, base != nullptr, {}, false, controls.keywords, corner};
    if (base)
        request.base = ucsToWorld(currentUcs(), *base);
    return ask(prompt, controls.flags, request, [&](const InputEvent& event) -> std::optional<int> {
        if (event.kind == InputEvent::Kind::Point) {
            out = worldToUcs(currentUcs(), event.point);
        } else if (const auto point = parsePointInput(event.text, reference, angleConvention())) {
            out = *point;
        } else if (takeKeyword(controls, trimmed(event.text))) {
            return RTKWORD;
        } else {
            complain(L"Invalid point.", prompt);
            return std::nullopt;
        }
        variables_.set(L"LASTPOINT", out);
        return RTNORM;
    });
}

int Editor::getReal(std::wstring_view prompt, double& out)
{
    const Controls controls = takeControls();
    const InputRequest request{InputRequest::Kind::Other, false, {}, false, controls.keywords};
    return ask(prompt, controls.flags, request, [&](const InputEvent& event) -> std::optional<int> {
        const std::wstring_view text = trimmed(event.text);
        const auto value = event.kind == InputEvent::Kind::Text ? parseReal(text) : std::nullopt;
        if (!value) {
            if (event.kind == InputEvent::Kind::Text && takeKeyword(controls, text))
                return RTKWORD;
            complain(L"Requires a number.", prompt);
        } else if ((controls.flags & RSG_NOZERO) && *value == 0) {
            complain(L"Value must not be zero.", prompt);
        } else if ((controls.flags & RSG_NONEG) && *value < 0) {
            complain(L"Value must be positive.", prompt);
        } else {
            out = *value;
            return RTNORM;
        }
        return std::nullopt;
    });
}

int Editor::getString(bool acceptBlanks, std::wstring_view prompt, std::wstring& out)
{
    const Controls controls = takeControls();
    out.clear();
    const InputRequest request{InputRequest::Kind::Text, false, {}, acceptBlanks, controls.keywords};
    return ask(prompt, controls.flags, request, [&](const InputEvent& event) -> std::optional<int> {
        if (event.kind != InputEvent::Kind::Text) {
            complain(L"Requires a text.", prompt);
            return std::nullopt;
        }
        if (const auto index = matchKeyword(controls.keywords, trimmed(event.text))) {
            keyword_ = controls.keywords[*index].global;
            return RTKWORD;
        }
        if (acceptBlanks) {
            out = event.text;
            return RTNORM;
        }
        const std::wstring_view text = trimmed(event.text);
        const std::size_t blank = text.find_first_of(L" \t");
        out = text.substr(0, blank);
        if (blank != std::wstring_view::npos)
            pending_.emplace_front(trimmed(text.substr(blank)));
        return RTNORM;
    });
}

int Editor::getKeyword(std::wstring_view prompt, std::wstring& out)
{
    const Controls controls = takeControls();
    out.clear();
    const InputRequest request{InputRequest::Kind::Other, false, {}, false, controls.keywords};
    return ask(prompt, controls.flags, request, [&](const InputEvent& event) -> std::optional<int> {
        if (event.kind == InputEvent::Kind::Text && takeKeyword(controls, trimmed(event.text))) {
            out = *keyword_;
            return RTNORM;
        }
        complain(L"Invalid option keyword.", prompt);
        return std::nullopt;
    });
}

int Editor::lastKeyword(std::wstring& out) const
{
    if (!keyword_)
        return RTERROR;
    out = *keyword_;
    return RTNORM;
}

Editor::DragInput Editor::readDragInput(std::wstring_view prompt, bool writePrompt, std::wstring_view keywords,
                                        bool acceptEnter, const KxGePoint3d* worldBase, DragNumbers numbers)
{
    const std::vector<Keyword> list = parseKeywordList(keywords);
    const Ucs ucs = currentUcs();
    const KxGePoint3d reference = worldBase ? worldToUcs(ucs, *worldBase) : variables_.pointValue(L"LASTPOINT");
    if (writePrompt) {
        write(prompt);
        announce({InputRequest::Kind::Drag, worldBase != nullptr, worldBase ? *worldBase : KxGePoint3d(), false, list});
    }
    while (true) {
        const InputEvent event = next(true);
        switch (event.kind) {
        case InputEvent::Kind::Motion: return {DragInput::Kind::Motion, event.point};
        case InputEvent::Kind::Point: return {DragInput::Kind::Point, event.point};
        case InputEvent::Kind::Cancel:
        case InputEvent::Kind::EndOfInput: return {DragInput::Kind::Cancel, {}};
        default: break;
        }
        const std::wstring_view text = trimmed(event.text);
        if (ranTransparent(text)) {
            write(prompt);
            continue;
        }
        if (const auto number = typedNumber(text, numbers))
            return {DragInput::Kind::Number, {}, 0, *number};
        if (text.empty()) {
            if (acceptEnter)
                return {DragInput::Kind::Enter, {}};
            write(prompt);
        } else if (const auto index = matchKeyword(list, text)) {
            keyword_ = list[*index].global;
            return {DragInput::Kind::Keyword, {}, static_cast<int>(*index) + 1};
        } else if (const auto point = parsePointInput(text, reference, angleConvention())) {
            return {DragInput::Kind::Point, ucsToWorld(ucs, *point)};
        } else {
            complain(L"Invalid point.", prompt);
        }
    }
}

}  // namespace kaldo
