// A style block of a .mln file as tests write it: no flags, by-layer
// colours, square caps and elements of linetype BYLAYER at the offsets.
#pragma once

#include <string>
#include <vector>

inline std::string mlnStyleBlock(const std::string& name, const std::string& description,
                                 const std::vector<double>& offsets)
{
    std::string text = "MLSTYLE\n2\n " + name + "\n70\n 0\n3\n " + description + "\n62\n 256\n51\n 90\n52\n 90\n71\n "
        + std::to_string(offsets.size()) + "\n";
    for (double offset : offsets)
        text += "49\n " + std::to_string(offset) + "\n62\n 256\n6\n BYLAYER\n";
    return text + "0\n";
}
