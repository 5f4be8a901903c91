// The property every drawing kaldo saves must have: kaldo opens it again,
// and saving what it opened gives the same bytes; ezdxf reads it with
// nothing for its audit to find (errors and fixes alike). Checked over the
// fuzz corpus, the test data and every drawing the end-to-end tests leave.
#pragma once

#include <filesystem>
#include <map>
#include <string>
#include <vector>

// Opens the drawing (the extents it was read with, if known, must be
// those of its entities), saves it as savedCopy, opens that and saves it
// again.
// Returns what went wrong ("" when the two saves are the same bytes), or
// why kaldo does not open the drawing at all; opened tells which.
std::string reopenProblem(const std::filesystem::path& drawing, const std::filesystem::path& savedCopy,
                          bool& opened);

// ezdxf's audit of each file, in one run of the reader: for each file the
// findings as text, "" when there are none.
std::map<std::filesystem::path, std::string> ezdxfAuditFindings(const std::vector<std::filesystem::path>& files);

// Every regular file named *.dxf in folder and the folders below it, sorted.
std::vector<std::filesystem::path> drawingsUnder(const std::filesystem::path& folder);
