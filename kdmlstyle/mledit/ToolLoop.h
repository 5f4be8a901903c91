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

// Tools on two multilines (first and second). changesSecond: the tool may
// change the second multiline too, so that UNDO restores both.
int runTwoMultilineLoop(MlineEditContext& context, bool changesSecond, const PassEdit& edit);

// How a tool on two points of one multiline fills its picks.
enum class PointPick { Cut, Weld };

// Tools on one multiline between two points picked on it.
int runTwoPointLoop(MlineEditContext& context, PointPick kind, const PassEdit& edit);

}  // namespace kdml
