// Style blocks of a .mln file as tests write them.
#pragma once

#include <string>
#include <vector>

struct MlnElement {
    double offset;
    int color = 256;  // by layer
};

// A style of elements of linetype BYLAYER; flags (group 70), the fill
// colour (62) and the cap angles in degrees as given.
struct MlnStyle {
    std::string name;
    std::string description;
    std::vector<MlnElement> elements;
    int flags = 0;
    int fillColor = 256;
    double startAngle = 90;
    double endAngle = 90;
};

inline std::string mlnStyleBlock(const MlnStyle& style)
{
    std::string text = "MLSTYLE\n2\n " + style.name + "\n70\n " + std::to_string(style.flags) + "\n3\n "
        + style.description + "\n62\n " + std::to_string(style.fillColor) + "\n51\n " + std::to_string(style.startAngle)
        + "\n52\n " + std::to_string(style.endAngle) + "\n71\n " + std::to_string(style.elements.size()) + "\n";
    for (const MlnElement& element : style.elements)
        text += "49\n " + std::to_string(element.offset) + "\n62\n " + std::to_string(element.color)
                + "\n6\n BYLAYER\n";
    return text + "0\n";
}

// No flags, by-layer colours, square caps, elements at the offsets.
inline std::string mlnStyleBlock(const std::string& name, const std::string& description,
                                 const std::vector<double>& offsets)
{
    MlnStyle style{name, description, {}};
    for (double offset : offsets)
        style.elements.push_back({offset});
    return mlnStyleBlock(style);
}
