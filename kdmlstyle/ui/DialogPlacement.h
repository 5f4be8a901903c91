// Where each dialog of the module reopens: its window rectangle (or only its
// top-left corner) in the "Settings" section of the host's profile, written
// when the dialog is confirmed and restored when it opens again.
#pragma once

class CWnd;

namespace kdml {

// The profile keys of one dialog; right and bottom are null for dialogs
// that keep their position only.
struct PlacementKeys {
    const wchar_t* left;
    const wchar_t* top;
    const wchar_t* right = nullptr;
    const wchar_t* bottom = nullptr;
};

inline constexpr PlacementKeys kStyleManagerPlacement{L"MlstylePosLeft", L"MlstylePosTop", L"MlstylePosRight",
                                                      L"MlstylePosBottom"};
inline constexpr PlacementKeys kLoadDialogPlacement{L"MlstyleLoadDlgPosLeft", L"MlstyleLoadDlgPosTop",
                                                    L"MlstyleLoadDlgPosRight", L"MlstyleLoadDlgPosBottom"};
inline constexpr PlacementKeys kNewStylePlacement{L"MlstyleNewPosLeft", L"MlstyleNewPosTop"};
inline constexpr PlacementKeys kNewModifyPlacement{L"MlstyNewModDlgPosLeft", L"MlstyNewModDlgPosTop"};
inline constexpr PlacementKeys kRenamePlacement{L"MlstyleRenamePosLeft", L"MlstyleRenamePosTop",
                                                L"MlstyleRenamePosRight", L"MlstyleRenamePosBottom"};

// The value of a key that holds nothing (the default of every read).
inline constexpr int kPlacementNotStored = -10000;

// Moves the dialog to its stored place when every key holds a value: four
// keys give position and size, two the position only. With
// onlyWhenNotSmaller a stored rectangle narrower or lower than the window
// is now is left unused.
void restorePlacement(CWnd& dialog, const PlacementKeys& keys, bool onlyWhenNotSmaller = false);
// Writes the dialog's window rectangle (or its top-left corner).
void storePlacement(const CWnd& dialog, const PlacementKeys& keys);

}  // namespace kdml
