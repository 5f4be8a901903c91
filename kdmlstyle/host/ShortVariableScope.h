// Sets a short-integer system variable for the span of a scope and puts the
// value it had back at the end (formatting that depends on DIMZIN does this).
#pragma once

namespace kdml {

class ShortVariableScope {
public:
    // Nothing is changed, or restored, when the variable cannot be read.
    ShortVariableScope(const wchar_t* name, short value);
    ~ShortVariableScope();
    ShortVariableScope(const ShortVariableScope&) = delete;
    ShortVariableScope& operator=(const ShortVariableScope&) = delete;

private:
    const wchar_t* name_;
    short saved_ = 0;
    bool restore_ = false;
};

}  // namespace kdml
