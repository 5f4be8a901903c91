// The host's editor: command-line input and output, system variables,
// coordinate systems and file lookup.
//
// Every input function prompts, reads one response and returns RTNORM for a
// valid one, RTNONE for Enter (unless kxedInitGet set RSG_NONULL, which asks
// again), RTCAN when the user cancels or the input ends, RTKWORD when a
// keyword of the list given to kxedInitGet was typed (read it with
// kxedGetInput), RTERROR when there is no editor. Invalid input prints a
// short message and asks again. kxedInitGet's flags and keywords hold for the
// next input function only.
//
// Text the editor hands back is copied into caller buffers of
// KXED_TEXT_SIZE characters (longer text is cut); strings in result buffers
// are host strings the caller frees with kald_free.
#pragma once

#include "kxtypes.h"

#include <cstdarg>
#include <cstddef>
#include <string>

constexpr std::size_t KXED_TEXT_SIZE = 2049;

// Flags (RSG_*) and keywords ("Local words _Global words") for the next input.
int kxedInitGet(int flags, const wchar_t* keywords);

// A point in user coordinates. Typed "x,y", "x,y,z", "@dx,dy[,dz]",
// "@dist<angle" (angle in AUNITS from ANGBASE) or picked in the window.
// Relative input is taken from base when given, else from LASTPOINT.
// A valid point becomes LASTPOINT.
int kxedGetPoint(const double* base, const wchar_t* prompt, double out[3]);
// A real number; RSG_NOZERO and RSG_NONEG refuse zero and negative values.
int kxedGetReal(const wchar_t* prompt, double* out);
// A text into out (KXED_TEXT_SIZE characters). With acceptBlanks 0 the text
// ends at its first blank and what follows feeds the next input. A text that
// selects a keyword of the kxedInitGet list returns RTKWORD.
int kxedGetString(int acceptBlanks, const wchar_t* prompt, wchar_t* out);
// A keyword of the kxedInitGet list; out (KXED_TEXT_SIZE characters)
// receives its global word. With RSG_OTHER any text is returned as typed.
int kxedGetKword(const wchar_t* prompt, wchar_t* out);
// The keyword (global word) or, with RSG_OTHER, the text of the last input
// that returned RTKWORD, into out (KXED_TEXT_SIZE characters).
int kxedGetInput(wchar_t* out);

// Selects an entity of the current space with a point: the entity nearest to
// it within PICKBOX pixels of the current view. RTNORM with the entity's name
// and the point (user coordinates); RTERROR with ERRNO 7 when the point hit
// nothing (the editor has then said "No object found."), RTERROR with ERRNO 52 (OL_ENTSELNULL) on Enter; RTCAN on cancel;
// RTKWORD for a keyword. The name is cleared unless an entity was found.
int kxedEntSel(const wchar_t* prompt, kxds_name out, double outPoint[3]);
// ERRNO after a point that selected nothing.
constexpr int OL_ENTSELPICK = 7;

// Writes text on the command line as it stands.
int kxedPrompt(const wchar_t* text);
// Writes formatted text (wide printf: %ls for wide strings) on the command
// line. Fixed-point reals (%f) of magnitude 1e15 and more come out in
// scientific form with the same precision ("%.4f" of 1e308 writes
// "1.0000E+308"), as the host writes numbers too large to read in full.
int kxutPrintf(const wchar_t* format, ...);
// The text kxutPrintf would write; empty when the format cannot be applied.
std::wstring kxutFormatV(const wchar_t* format, std::va_list args);
// Switches to the text screen (the full command-line history).
int kxedTextScr();
// Asks the view to redraw one entity (or everything for null); mode as the
// redraw listener understands it (1 draw, 2 undraw, 3 highlight, 4 unhighlight).
int kxedRedraw(const kxds_name entity, int mode);

// System variables. A string read so is a host string (kald_free).
int kxedGetVar(const wchar_t* name, kxresbuf* out);
int kxedSetVar(const wchar_t* name, const kxresbuf* value);

// Transforms pt between coordinate systems, each given as a result buffer:
// RTSHORT 0 world, 1 user; RT3DPOINT an entity system by its normal
// (arbitrary-axis rule). With disp non-zero pt is a displacement (no origin).
int kxedTrans(const double pt[3], const kxresbuf* from, const kxresbuf* to, int disp, double out[3]);
int kxdbUcs2Wcs(const double p[3], double out[3], int disp);
int kxdbWcs2Ucs(const double p[3], double out[3], int disp);

// Finds a file: an absolute name as it is, else in the Support folder, the
// drawing's folder and the current folder, in that order. out receives the
// path (size characters). RTNORM when found, else RTERROR.
int kxedFindFile(const wchar_t* name, wchar_t* out, std::size_t size);

// Asks the user for a file name. Returns 0 when a file was chosen, with
// outName a host string (kald_free) holding its path; RTCAN when the user
// gave none, RTERROR when a file to open does not exist.
// Flags: 0x1 asks for a file to write (any name), otherwise the file must
// exist; 0x4 takes the name as typed, otherwise ".extension" is added to a
// name without one (in the dialog too). Other bits are accepted and
// ignored. A window dialog is shown unless FILEDIA is 0, a script feeds
// input or there is no window system; the command line then asks
// "Enter file name <default>: ", listing the keywords that kxedInitGet set
// ("Enter file name or [Exploded] <default>: "): typing one returns RTKWORD
// (read it with kxedGetInput). A dialog offers the file types of filter
// ("Name (*.ext);;Other (*.ext)"); inOutValue, when given, holds the index of
// the type shown first and receives the one the file was chosen under.
// outFlags is accepted for callers that pass it.
int getFileNameByFileDialog(const wchar_t* title, const wchar_t* defaultName, const wchar_t* extension, int flags,
                            wchar_t*& outName, int* outFlags = nullptr, int* inOutValue = nullptr,
                            const wchar_t* filter = nullptr);
