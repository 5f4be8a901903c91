// Pieces of the scripts that drive -MLEDIT in end-to-end tests, and reading
// the element lists that LIST shows.
#pragma once

#include "EzdxfReport.h"
#include "KaldoProcess.h"
#include "ListedMlines.h"

#include <gmock/gmock.h>

#include <QJsonArray>
#include <QJsonObject>

#include <cstdio>
#include <string>
#include <utility>
#include <vector>

inline constexpr double kListed = 1e-4;  // LIST shows four decimals

// Picks within one pixel; multilines of scale 10 about their axis, so that
// element lines lie 5 units either side of it (STANDARD).
inline const std::string kSetup = "SETVAR\nPICKBOX\n1\nMLINE\nJ\nZ\nS\n10\n^C\n";

// MLINE through the points, ended with Enter (or closed).
inline std::string mline(const std::vector<std::string>& points, bool close = false)
{
    std::string text = "MLINE\n";
    for (const std::string& p : points)
        text += p + "\n";
    return text + (close ? "C\n" : "\n");
}

// After kSetup, a horizontal multiline and a vertical one crossing it at
// (50, 0).
inline const std::string kCrossingPair = kSetup + mline({"0,0", "100,0"}) + mline({"50,-50", "50,50"});

// MLINE in a style of the Support folder's KALDO.mln, loaded on first use.
inline std::string mlineInStyle(const std::string& style, bool load, const std::vector<std::string>& points)
{
    return "MLINE\nST\n" + style + "\n" + (load ? "KALDO\n" : "") + mline(points).substr(6);
}

inline std::string list(const std::vector<std::string>& points)
{
    std::string text;
    for (const std::string& p : points)
        text += "LIST\n" + p + "\n\n";
    return text;
}

// The element list of one element at one vertex of the n-th listed multiline.
inline std::vector<double> runs(const std::vector<ListedMline>& listed, std::size_t n, std::size_t vertex,
                                std::size_t element)
{
    if (n >= listed.size() || vertex >= listed[n].vertices.size()
        || element >= listed[n].vertices[vertex].elements.size())
        return {};
    return listed[n].vertices[vertex].elements[element];
}

template <class... Values>
auto listIs(Values... values)
{
    return ::testing::ElementsAre(::testing::DoubleNear(values, kListed)...);
}

inline auto listOf(const std::vector<double>& values)
{
    std::vector<::testing::Matcher<double>> matchers;
    for (double value : values)
        matchers.push_back(::testing::DoubleNear(value, kListed));
    return ::testing::ElementsAreArray(matchers);
}

// The vertex positions of the n-th listed multiline, as "x,y".
inline std::vector<std::string> positions(const std::vector<ListedMline>& listed, std::size_t n)
{
    std::vector<std::string> out;
    if (n >= listed.size())
        return out;
    for (const ListedVertex& v : listed[n].vertices) {
        char text[64];
        std::snprintf(text, sizeof text, "%.4f,%.4f", v.position.x, v.position.y);
        out.push_back(text);
    }
    return out;
}

// One list LIST must show: of element `element` at vertex `vertex` of the
// n-th multiline listed.
struct ListedList {
    std::size_t mline, vertex, element;
    std::vector<double> list;
};

// A script after kSetup (scale 10, zero justification, one-pixel picks),
// the points LIST picks afterwards, the vertices of each multiline listed
// (of the first ones; none when left empty) and the lists they must hold.
struct Session {
    std::string name;
    std::string script;
    std::vector<std::string> listAt;
    std::vector<std::vector<std::string>> vertices;
    std::vector<ListedList> lists;
};

// Runs the session and checks what LIST shows; the run, for further checks.
inline KaldoRun expectSession(KaldoProcess& kaldo, const Session& session)
{
    const KaldoRun run = kaldo.runScript(kSetup + session.script + list(session.listAt));
    EXPECT_EQ(run.exitCode, 0) << session.name << ": " << run.err;
    const std::vector<ListedMline> listed = listedMlines(run.out);
    EXPECT_EQ(listed.size(), session.listAt.size()) << session.name << ":\n" << run.out;
    for (std::size_t n = 0; n < session.vertices.size(); ++n)
        EXPECT_THAT(positions(listed, n), ::testing::ElementsAreArray(session.vertices[n]))
            << session.name << ", multiline " << n;
    for (const ListedList& expected : session.lists)
        EXPECT_THAT(runs(listed, expected.mline, expected.vertex, expected.element), listOf(expected.list))
            << session.name << ", multiline " << expected.mline << " vertex " << expected.vertex << " element "
            << expected.element;
    return run;
}

// The world points where the drawn runs of one element along one segment of
// a multiline the reader found start and stop: location + miter * p0 +
// direction * p_i.
inline std::vector<std::pair<double, double>> runEnds(const QJsonObject& mline, int vertex, int element)
{
    const QJsonObject v = mline["vertices"].toArray()[vertex].toObject();
    const QJsonArray params = v["element"].toArray()[element].toArray();
    const QJsonArray at = v["location"].toArray();
    const QJsonArray miter = v["miter"].toArray();
    const QJsonArray along = v["direction"].toArray();
    std::vector<std::pair<double, double>> ends;
    const double p0 = params[0].toDouble();
    for (int i = 1; i < params.size(); ++i) {
        const double d = params[i].toDouble();
        ends.emplace_back(at[0].toDouble() + miter[0].toDouble() * p0 + along[0].toDouble() * d,
                          at[1].toDouble() + miter[1].toDouble() * p0 + along[1].toDouble() * d);
    }
    return ends;
}

// Runs the script, saves the drawing as `file` in the session's folder and
// reads it back with the independent reader: the multilines it found, none
// when the run or the reader failed or the reader's audit found errors or
// made fixes.
inline QJsonArray mlinesReadBack(KaldoProcess& kaldo, const std::string& script, const std::string& file)
{
    const std::string saved = (kaldo.dir() / file).string();
    const KaldoRun run = kaldo.runScript(script, {"--save", QString::fromStdString(saved)});
    EXPECT_EQ(run.exitCode, 0) << run.err;
    const EzdxfReport report = readWithEzdxf(saved);
    EXPECT_TRUE(report.ran) << report.problem;
    const bool clean = auditFindings(report).empty();
    EXPECT_EQ(auditFindings(report), "");
    return run.exitCode == 0 && report.ran && clean ? report.file["mlines"].toArray() : QJsonArray();
}
