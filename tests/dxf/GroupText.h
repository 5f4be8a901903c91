// Writes groups given as alternating code and value texts as DXF lines, so
// that tests can spell out small files.
#pragma once

#include <initializer_list>
#include <string>

inline std::string groupText(std::initializer_list<const char*> codesAndValues)
{
    std::string text;
    for (const char* item : codesAndValues) {
        text += item;
        text += '\n';
    }
    return text;
}

// A small drawing: a header with the handle seed 100, the given entities
// and objects, then EOF.
inline std::string smallDrawing(const std::string& entities, const std::string& objects)
{
    return groupText({"0", "SECTION", "2", "HEADER", "9", "$HANDSEED", "5", "100", "0", "ENDSEC", "0", "SECTION", "2",
                      "ENTITIES"})
           + entities + groupText({"0", "ENDSEC", "0", "SECTION", "2", "OBJECTS"}) + objects
           + groupText({"0", "ENDSEC", "0", "EOF"});
}
