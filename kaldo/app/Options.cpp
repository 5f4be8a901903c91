#include "kaldo/app/Options.h"

#include <QCommandLineParser>
#include <QCoreApplication>

namespace kaldo {

namespace {

const QCommandLineOption scriptOption("script", "Run the command script FILE headless ('-' reads standard input).", "FILE");
const QCommandLineOption profileOption("profile", "Use FILE as the user profile (INI).", "FILE");
const QCommandLineOption supportOption("support", "Use DIR as the Support folder.", "DIR");
const QCommandLineOption crashOption("crash-dir", "Write crash reports into DIR.", "DIR");
const QCommandLineOption loadOption("load", "Load the module FILE at start (repeatable).", "FILE");
const QCommandLineOption noModulesOption("no-modules", "Do not load the modules of the modules folder.");
const QCommandLineOption saveOption("save", "Save the drawing as FILE.dxf when the script ends.", "FILE");
const QCommandLineOption saveExplodedOption("save-exploded",
                                            "Save a copy of the drawing with every multiline exploded as FILE.dxf "
                                            "when the script ends.",
                                            "FILE");
const QCommandLineOption saveExplodedR12Option("save-exploded-r12",
                                               "Save such a copy in the R12 form (AC1009) for the oldest readers as "
                                               "FILE.dxf when the script ends.",
                                               "FILE");
const QCommandLineOption exportOption("export", "Write the drawing as a picture FILE.svg or FILE.png when the script ends.", "FILE");
const QCommandLineOption sizeOption("size", "Longer side of the exported picture in pixels (default 1600).", "PIXELS");
const QCommandLineOption backgroundOption("background", "Background of the exported picture: white (default) or dark.", "COLOUR");
const QCommandLineOption helpOption(QStringList{"h", "help"}, "Show this help.");
const QCommandLineOption versionOption("version", "Show the version.");

void describe(QCommandLineParser& parser)
{
    parser.setApplicationDescription(
        "kaldo, a small CAD host.\n"
        "Without --script the drawing window opens; without a display, commands are read from standard input.\n"
        "The session ends with QUIT or after the script's last line.\n"
        "Exit codes: 0 normal end, 2 a named file or folder cannot be used, 64 bad usage.");
    parser.setSingleDashWordOptionMode(QCommandLineParser::ParseAsLongOptions);
    parser.addOptions({scriptOption, profileOption, supportOption, crashOption, loadOption, noModulesOption,
                       saveOption, saveExplodedOption, saveExplodedR12Option, exportOption, sizeOption,
                       backgroundOption, helpOption, versionOption});
    parser.addPositionalArgument("DRAWING", "The drawing (.dxf) to open; a new drawing without it.", "[DRAWING]");
}

std::filesystem::path toPath(const QString& text)
{
    return std::filesystem::path(text.toStdString());
}

}  // namespace

ParsedOptions parseOptions(const QStringList& args)
{
    QCommandLineParser parser;
    describe(parser);
    ParsedOptions parsed;
    if (!parser.parse(args)) {
        parsed.error = parser.errorText().toStdString();
        return parsed;
    }
    const QStringList positional = parser.positionalArguments();
    if (positional.size() > 1) {
        parsed.error = "Unexpected argument '" + positional.at(1).toStdString() + "': give one drawing.";
        return parsed;
    }
    Options& o = parsed.options;
    if (!positional.isEmpty())
        o.drawing = toPath(positional.first());
    if (parser.isSet(saveOption))
        o.saveAs = toPath(parser.value(saveOption));
    if (parser.isSet(saveExplodedOption))
        o.saveExploded = toPath(parser.value(saveExplodedOption));
    if (parser.isSet(saveExplodedR12Option))
        o.saveExplodedR12 = toPath(parser.value(saveExplodedR12Option));
    if (parser.isSet(exportOption)) {
        o.exportTo = toPath(parser.value(exportOption));
        const std::string ext = o.exportTo->extension().string();
        if (ext != ".svg" && ext != ".png" && ext != ".SVG" && ext != ".PNG") {
            parsed.error = "--export needs a file name ending in .svg or .png.";
            return parsed;
        }
    }
    if (parser.isSet(sizeOption)) {
        bool ok = false;
        o.exportSize = parser.value(sizeOption).toInt(&ok);
        if (!ok || o.exportSize < 16 || o.exportSize > 20000) {
            parsed.error = "--size needs a whole number of pixels from 16 to 20000.";
            return parsed;
        }
    }
    if (parser.isSet(backgroundOption)) {
        const QString colour = parser.value(backgroundOption).toLower();
        if (colour != "white" && colour != "dark") {
            parsed.error = "--background is white or dark.";
            return parsed;
        }
        o.exportBackground = colour == "dark" ? ExportBackground::Dark : ExportBackground::White;
    }
    if (parser.isSet(scriptOption))
        o.script = toPath(parser.value(scriptOption));
    if (parser.isSet(profileOption))
        o.profile = toPath(parser.value(profileOption));
    if (parser.isSet(supportOption))
        o.supportDir = toPath(parser.value(supportOption));
    if (parser.isSet(crashOption))
        o.crashDir = toPath(parser.value(crashOption));
    for (const QString& module : parser.values(loadOption))
        o.modules.push_back(toPath(module));
    o.autoloadModules = !parser.isSet(noModulesOption);
    o.showHelp = parser.isSet(helpOption);
    o.showVersion = parser.isSet(versionOption);
    return parsed;
}

std::string usageText()
{
    QCommandLineParser parser;
    describe(parser);
    // The parser names the program as it was started, a whole path.
    QString text = parser.helpText();
    const QStringList started = QCoreApplication::arguments();
    if (!started.isEmpty())
        text.replace(QStringLiteral("Usage: ") + started.constFirst(), QStringLiteral("Usage: kaldo"));
    return text.toStdString();
}

std::string versionText()
{
    return "kaldo " KALDO_VERSION "\n";
}

}  // namespace kaldo
