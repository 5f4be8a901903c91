#include "ListedMlines.h"

#include <cstdio>
#include <sstream>

namespace {

// "X=1.0000  Y=2.0000  Z=0.0000" after the given label.
ListedVec vecAfter(const std::string& line, const std::string& label)
{
    ListedVec v;
    std::sscanf(line.c_str() + line.find(label) + label.size(), " X=%lf Y=%lf Z=%lf", &v.x, &v.y, &v.z);
    return v;
}

std::vector<double> numbersIn(const std::string& text)
{
    std::istringstream in(text);
    std::vector<double> values;
    for (double value; in >> value;)
        values.push_back(value);
    return values;
}

}  // namespace

std::vector<ListedMline> listedMlines(const std::string& transcript)
{
    std::vector<ListedMline> found;
    std::istringstream in(transcript);
    for (std::string line; std::getline(in, line);) {
        if (line.rfind("MLINE  handle:", 0) == 0) {
            found.emplace_back();
        } else if (found.empty()) {
            continue;
        } else if (line.rfind("  scale: ", 0) == 0) {
            std::sscanf(line.c_str(), "  scale: %lf  justification: %d", &found.back().scale,
                        &found.back().justification);
            found.back().closed = line.find("closed") != std::string::npos;
        } else if (line.rfind("  style: ", 0) == 0) {
            found.back().style = line.substr(9, line.find("  normal:") - 9);
            found.back().normal = vecAfter(line, "normal:");
        } else if (line.rfind("  vertex ", 0) == 0) {
            found.back().vertices.push_back({vecAfter(line, ":"), {}, {}, {}, {}});
        } else if (found.back().vertices.empty()) {
            continue;
        } else if (line.rfind("    direction:", 0) == 0) {
            found.back().vertices.back().direction = vecAfter(line, "direction:");
        } else if (line.rfind("    miter:", 0) == 0) {
            found.back().vertices.back().miter = vecAfter(line, "miter:");
        } else if (line.rfind("    element ", 0) == 0) {
            const std::size_t colon = line.find(':');
            const std::size_t fill = line.find("fill:");
            found.back().vertices.back().elements.push_back(numbersIn(line.substr(colon + 1, fill - colon - 1)));
            found.back().vertices.back().fills.push_back(numbersIn(line.substr(fill + 5)));
        }
    }
    return found;
}
