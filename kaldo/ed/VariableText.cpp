#include "kaldo/ed/VariableText.h"

#include "kaldo/ed/Editor.h"
#include "kaldo/ed/Text.h"
#include "kaldo/ed/Units.h"

#include <cmath>

namespace kaldo {

namespace {

bool isAngle(std::wstring_view name)
{
    return equalsNoCase(name, L"ANGBASE");
}

}  // namespace

bool isSystemVariable(std::wstring_view name)
{
    Editor* editor = currentEditor();
    return editor && editor->variables().exists(name);
}

std::wstring variableAsText(std::wstring_view name)
{
    Editor* editor = currentEditor();
    const auto value = editor ? editor->variables().get(name) : std::nullopt;
    if (!value)
        return {};
    const SystemVariables& vars = editor->variables();
    const auto distance = [&](double v) {
        return formatDistance(v, vars.shortValue(L"LUNITS", 2), vars.shortValue(L"LUPREC", 4), 0);
    };
    if (const auto* s = std::get_if<short>(&*value))
        return std::to_wstring(*s);
    if (const auto* r = std::get_if<double>(&*value)) {
        if (isAngle(name))
            return formatAngle(*r, vars.shortValue(L"AUNITS", 0), vars.shortValue(L"AUPREC", 0), 0);
        return distance(*r);
    }
    if (const auto* text = std::get_if<std::wstring>(&*value))
        return *text;
    const auto& p = std::get<KxGePoint3d>(*value);
    return distance(p.x) + L"," + distance(p.y) + L"," + distance(p.z);
}

int setVariableFromText(std::wstring_view name, std::wstring_view text)
{
    Editor* editor = currentEditor();
    const auto current = editor ? editor->variables().get(name) : std::nullopt;
    if (!current)
        return RTERROR;
    std::optional<VariableValue> value;
    if (std::holds_alternative<short>(*current)) {
        const auto number = parseReal(text);
        if (number && *number == std::trunc(*number) && std::abs(*number) <= 32767)
            value = static_cast<short>(*number);
    } else if (std::holds_alternative<double>(*current)) {
        const auto number = isAngle(name) ? parseAngle(text, editor->variables().shortValue(L"AUNITS", 0))
                                          : parseReal(text);
        if (number)
            value = *number;
    } else if (std::holds_alternative<std::wstring>(*current)) {
        value = std::wstring(trimmed(text));
    } else if (const auto point = parsePointInput(text, {}, editor->angleConvention());
               point && trimmed(text).front() != L'@') {
        value = *point;
    }
    return value ? editor->variables().set(name, *value) : RTERROR;
}

}  // namespace kaldo
