#include "FileText.h"
#include "HandDriver.h"
#include "Scenario.h"
#include "TestApplication.h"
#include "TreePaths.h"

#include "kaldo/app/CommandLoop.h"
#include "kaldo/app/Session.h"
#include "kaldo/ed/Editor.h"
#include "kaldo/ed/InputSource.h"
#include "kxstring.h"

#include <gtest/gtest.h>

#include <QRegularExpression>
#include <QStringList>

#include <sstream>

namespace scenario {

namespace {

// A session of the staged host and modules whose files are in folder.
class Run {
public:
    explicit Run(const std::filesystem::path& folder) : session_(paths(folder))
    {
        session_.editor().setTranscript([this](std::wstring_view text) { transcript_ += text; });
        for (const std::wstring& failure : session_.loadModulesFolder())
            ADD_FAILURE() << "module not loaded: " << kxutToMultiByte(failure);
    }

    kaldo::Session& session() { return session_; }

    // Runs commands from source until it ends.
    void feed(kaldo::InputSource& source)
    {
        session_.editor().setInputSource(&source);
        kaldo::runCommandLoop(session_);
        session_.editor().setInputSource(nullptr);
    }

    std::string transcript() const { return kxutToMultiByte(transcript_); }

private:
    static kaldo::SessionPaths paths(const std::filesystem::path& folder)
    {
        testApplication();
        std::filesystem::remove_all(folder);
        std::filesystem::create_directories(folder);
        kaldo::SessionPaths made;
        made.profile = folder / "kaldo.ini";
        made.supportDir = stagedPaths().supportDir;
        made.modulesDir = stagedPaths().modulesDir;
        made.crashDir = folder / "crash";
        return made;
    }

    kaldo::Session session_;
    std::wstring transcript_;
};

// The scenario's steps with "%RUN%" standing for folder.
std::vector<Step> inFolder(std::vector<Step> steps, const std::filesystem::path& folder)
{
    for (Step& step : steps)
        step.text.replace(QStringLiteral("%RUN%"), QString::fromStdString(folder.string()));
    return steps;
}

// The transcript with "%RUN%" for the run's own folder, as the steps
// name it.
std::string inFolder(const std::string& transcript, const std::filesystem::path& folder)
{
    return QString::fromStdString(transcript)
        .replace(QString::fromStdString(folder.string()), QStringLiteral("%RUN%"))
        .toStdString();
}

// What a person's run prints: a script's run also names each dialog and
// message as it opens and closes, and the actions it refused.
std::string asTypedByAPerson(const std::string& transcript)
{
    static const QRegularExpression scriptOnly(
        QStringLiteral("^(Dialog action refused: |Dialog \\d+: |Dialog \\d+ closed: |Message: |Message closed: )"));
    QStringList lines = QString::fromStdString(transcript).split(QLatin1Char('\n'));
    lines.removeIf([](const QString& line) { return scriptOnly.match(line).hasMatch(); });
    return lines.join(QLatin1Char('\n')).toStdString();
}

Outcome run(const Scenario& scenario, const std::filesystem::path& folder, bool byHand)
{
    Outcome outcome;
    {
        Run run(folder);
        if (!scenario.drawing.empty())
            run.session().openDrawing(scenario.drawing);
        const std::vector<Step> steps = inFolder(scenario.steps, folder);
        if (byHand) {
            kaldo::QueuedInputSource typed;
            for (const Step& step : steps) {
                if (step.kind == Step::Kind::Command)
                    typed.push(kaldo::InputEvent::typed(step.text.toStdWString()));
            }
            typed.close();
            HandDriver hand(steps);
            hand.start();
            run.feed(typed);
            outcome.finished = hand.finish();
        } else {
            kaldo::ScriptInputSource script(std::make_unique<std::istringstream>(scriptOf(steps)));
            run.feed(script);
            outcome.finished = true;
        }
        run.session().saveDrawing(folder / "drawing.dxf");
        outcome.transcript = inFolder(run.transcript(), folder);
        outcome.commandLine = asTypedByAPerson(outcome.transcript);
    }
    outcome.drawing = fileText(folder / "drawing.dxf");
    outcome.profile = fileText(folder / "kaldo.ini");
    for (const std::string& name : scenario.writtenFiles)
        outcome.files.push_back(fileText(folder / name));
    return outcome;
}

}  // namespace

Outcome runByScript(const Scenario& scenario, const std::filesystem::path& folder)
{
    return run(scenario, folder, false);
}

Outcome runByHand(const Scenario& scenario, const std::filesystem::path& folder)
{
    return run(scenario, folder, true);
}

std::filesystem::path prepareDrawing(const std::string& script, const std::filesystem::path& folder)
{
    Run run(folder);
    kaldo::ScriptInputSource lines(std::make_unique<std::istringstream>(script));
    run.feed(lines);
    const std::filesystem::path drawing = folder / "start.dxf";
    run.session().saveDrawing(drawing);
    return drawing;
}

}  // namespace scenario
