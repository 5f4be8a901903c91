// Message boxes: the host product's name as caption, the application icon,
// and the usual buttons with their item ids (IDOK 1, IDCANCEL 2, IDYES 6,
// IDNO 7). While a script feeds input the box takes its answer from the
// script.
#pragma once

inline constexpr unsigned MB_OK = 0x0;
inline constexpr unsigned MB_OKCANCEL = 0x1;
inline constexpr unsigned MB_YESNOCANCEL = 0x3;
inline constexpr unsigned MB_YESNO = 0x4;
inline constexpr unsigned MB_ICONSTOP = 0x10;
inline constexpr unsigned MB_ICONQUESTION = 0x20;
inline constexpr unsigned MB_ICONEXCLAMATION = 0x30;
inline constexpr unsigned MB_ICONINFORMATION = 0x40;

// Shows text with the buttons of type and returns the id of the button that
// closed the box (Escape: Cancel, or No when there is no Cancel).
int AfxMessageBox(const wchar_t* text, unsigned type = MB_OK);
