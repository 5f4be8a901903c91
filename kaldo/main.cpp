// The kaldo executable: parses the command line and runs a session.
#include "kaldo/app/Options.h"

#include <QApplication>

#include <iostream>

int main(int argc, char** argv)
{
    QApplication app(argc, argv);
    const kaldo::ParsedOptions parsed = kaldo::parseOptions(app.arguments());
    if (!parsed.error.empty()) {
        std::cerr << "kaldo: " << parsed.error << "\n" << kaldo::usageText();
        return kaldo::kExitUsage;
    }
    if (parsed.options.showHelp) {
        std::cout << kaldo::usageText();
        return kaldo::kExitOk;
    }
    if (parsed.options.showVersion) {
        std::cout << "kaldo " KALDO_VERSION "\n";
        return kaldo::kExitOk;
    }
    return kaldo::kExitOk;
}
