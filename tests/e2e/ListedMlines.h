// Lines and multilines as the LIST command shows them in a session's
// transcript.
#pragma once

#include <string>
#include <vector>

struct ListedVec {
    double x = 0, y = 0, z = 0;
};

// One vertex of a multiline as LIST shows it.
struct ListedVertex {
    ListedVec position, direction, miter;
    std::vector<std::vector<double>> elements, fills;
};

struct ListedMline {
    double scale = 0;
    int justification = -1;
    bool closed = false;
    std::string style;
    ListedVec normal;
    std::vector<ListedVertex> vertices;
};

// What LIST prints for a line, in world coordinates.
inline std::string listedLine(const std::string& from, const std::string& to)
{
    return "  from point: " + from + "\n    to point: " + to + "\n";
}

// Every multiline LIST showed in the transcript, in order.
std::vector<ListedMline> listedMlines(const std::string& transcript);
