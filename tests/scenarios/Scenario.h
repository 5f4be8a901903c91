// Scenarios of the dialogs written once and run two ways on a real session
// (modules loaded from the staged build, offscreen): by the script's dialog
// actions, and by a person's hand, QTest's mouse and key events on the real
// widgets of whichever dialog is top-most when a step comes, as the script's
// lines go to it. Both runs keep what a user keeps: the saved drawing, the
// profile, the style files written and the transcript.
#pragma once

#include "Steps.h"

#include <filesystem>
#include <string>
#include <vector>

namespace scenario {

struct Scenario {
    std::string name;
    std::filesystem::path drawing;  // opened first; empty: a new drawing
    std::vector<Step> steps;
    std::vector<std::string> writtenFiles;  // names in the run's folder, kept
};

// What a run leaves.
struct Outcome {
    std::string drawing;  // the drawing saved after the steps
    std::string profile;
    std::vector<std::string> files;  // the scenario's written files, in order
    std::string transcript;
    std::string commandLine;         // the transcript without what only a script prints
    bool finished = false;           // every step was taken and no dialog is left open
};

// A drawing made by a script of commands in folder (made empty first).
std::filesystem::path prepareDrawing(const std::string& script, const std::filesystem::path& folder);

// Runs the scenario in folder (made empty first), by script or by hand.
Outcome runByScript(const Scenario& scenario, const std::filesystem::path& folder);
Outcome runByHand(const Scenario& scenario, const std::filesystem::path& folder);

}  // namespace scenario
