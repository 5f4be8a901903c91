// The prompt loops the editing tools run in: pick, open for write, keep an
// undo copy, edit, redraw, and again, until the user cancels or answers
// with empty input. The keyword UNDO restores the state before the latest
// edit, once.
#pragma once

#include <functional>

#include "mledit/MlineEditContext.h"

namespace kdml {

// The edit of one pass, with both picks open for write. Returns false when
// it found nothing to work on: the undo copies of the pass are dropped.
using PassEdit = std::function<bool(MlineEditContext&)>;

// Which picks of a tool on two multilines must be open multilines. A closed
// first pick is refused and asked for again; a closed second pick is
// refused and the pass starts again from the first prompt.
enum class OpenPicks { Any, First, Both };

// Tools on two multilines (first and second). changesSecond: the tool may
// change the second multiline too, so that UNDO restores both.
int runTwoMultilineLoop(MlineEditContext& context, bool changesSecond, const PassEdit& edit,
                        OpenPicks open = OpenPicks::Any);

// Tools on one picked multiline (first); every pass keeps an undo copy,
// even when the edit changes nothing.
int runOneMultilineLoop(MlineEditContext& context, const PassEdit& edit);

// How a tool on two points of one multiline fills its picks.
enum class PointPick { Cut, Weld };

// Tools on one multiline between two points picked on it.
int runTwoPointLoop(MlineEditContext& context, PointPick kind, const PassEdit& edit);

}  // namespace kdml
