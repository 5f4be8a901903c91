// The bytes of a file as a test reads them back.
#pragma once

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

inline std::string fileText(const std::filesystem::path& path)
{
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}
