#include "kaldo/app/commands/VariableText.h"

#include "kaldo/ed/Editor.h"
#include "kaldo/ed/PointInput.h"
#include "kaldo/ed/Text.h"

#include <charconv>
#include <cmath>
#include <limits>

namespace kaldo {

namespace {

std::wstring realText(double value)
{
    char buffer[32];
    const auto result = std::to_chars(buffer, buffer + sizeof buffer, value == 0.0 ? 0.0 : value);
    return std::wstring(buffer, result.ptr);
}

struct TextOf {
    std::wstring operator()(short v) const { return std::to_wstring(v); }
    std::wstring operator()(double v) const { return realText(v); }
    std::wstring operator()(const std::wstring& v) const { return v; }
    std::wstring operator()(const KxGePoint3d& p) const
    {
        return realText(p.x) + L"," + realText(p.y) + L"," + realText(p.z);
    }
};

struct Parse {
    std::wstring_view text;

    std::optional<VariableValue> operator()(short) const
    {
        const std::optional<double> v = parseReal(text);
        if (!v || *v != std::floor(*v) || *v < std::numeric_limits<short>::min()
            || *v > std::numeric_limits<short>::max())
            return std::nullopt;
        return VariableValue(static_cast<short>(*v));
    }
    std::optional<VariableValue> operator()(double) const
    {
        const std::optional<double> v = parseReal(text);
        return v ? std::optional<VariableValue>(*v) : std::nullopt;
    }
    std::optional<VariableValue> operator()(const std::wstring&) const
    {
        return VariableValue(std::wstring(trimmed(text)));
    }
    std::optional<VariableValue> operator()(const KxGePoint3d&) const
    {
        const Editor* editor = currentEditor();
        const auto p = parsePointInput(trimmed(text), KxGePoint3d{},
                                       editor ? editor->angleConvention() : AngleConvention{});
        return p ? std::optional<VariableValue>(*p) : std::nullopt;
    }
};

}  // namespace

std::wstring variableText(const VariableValue& value)
{
    return std::visit(TextOf{}, value);
}

std::optional<VariableValue> parseVariableText(const VariableValue& current, std::wstring_view text)
{
    return std::visit(Parse{text}, current);
}

}  // namespace kaldo
