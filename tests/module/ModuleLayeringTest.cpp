// The module builds against the SDK alone: every header a source under
// kdmlstyle/ includes in quotes is the module's own (beside the source or
// under kdmlstyle/) or an SDK header, and none is reached through the
// host's source tree.
#include "TreePaths.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <regex>
#include <string>
#include <vector>

namespace fs = std::filesystem;

TEST(ModuleLayering, EverySourceIncludesOnlyModuleAndSdkHeaders)
{
    const fs::path source = sourceDir();
    const fs::path module = source / "kdmlstyle";
    const fs::path sdk = source / "sdk" / "include";
    const std::regex quoted(R"re(^\s*#\s*include\s*"([^"]+)")re");
    const std::regex angled(R"re(^\s*#\s*include\s*<kaldo/)re");
    std::vector<std::string> strays;
    int sources = 0;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(module)) {
        const std::string extension = entry.path().extension().string();
        if (!entry.is_regular_file() || (extension != ".cpp" && extension != ".h"))
            continue;
        ++sources;
        std::ifstream in(entry.path());
        std::string line;
        for (int number = 1; std::getline(in, line); ++number) {
            const std::string where = fs::relative(entry.path(), source).string() + ":" + std::to_string(number);
            std::smatch match;
            if (std::regex_search(line, angled)) {
                strays.push_back(where + " " + line);
            } else if (std::regex_search(line, match, quoted)) {
                const fs::path header = match[1].str();
                if (!fs::exists(entry.path().parent_path() / header) && !fs::exists(module / header)
                    && !fs::exists(sdk / header))
                    strays.push_back(where + " " + line);
            }
        }
    }
    EXPECT_GT(sources, 100) << "the module's sources were found";
    EXPECT_TRUE(strays.empty()) << ::testing::PrintToString(strays);
}
