// MLINE: shows the current multiline settings, offers Justification, Scale
// and STyle until a start point is given, keeps CMLJUST, CMLSCALE and
// CMLSTYLE in step with every change, finds a typed style in the drawing or
// loads it from a .mln file, and hands over to the point loop.
#pragma once

#include <optional>
#include <string>

class KxDbDatabase;

namespace kdml {

class CMLineCommand {
public:
    // database: the drawing to work in (not owned; may be null).
    explicit CMLineCommand(KxDbDatabase* database);

    // The command body. RTNORM when the point loop ran, else the input
    // status that ended the command (nothing drawn).
    int run();

    void readSettings();
    void printSettings() const;

    short justification() const { return justification_; }
    // Stores and writes a code of 0 (top) to 2 (bottom) unless it is
    // current; other codes are ignored. The write's status, or RTNORM.
    int setJustification(short code);
    double scale() const { return scale_; }
    // Stores and writes any value; the write's status.
    int setScale(double value);
    std::wstring styleName() const { return styleName_; }
    // Stores and writes the name in upper case; the write's status.
    int setStyleName(const std::wstring& name);

    // The "?" listing: every multiline style of the drawing with its
    // description.
    void listStyles() const;
    // True when the drawing holds the style, after loading it if need be.
    bool findStyle(const std::wstring& name);
    // Asks for a .mln file (a dialog when interactive, a file name when a
    // script or program feeds input) and loads the named style from it.
    bool loadStyle(const std::wstring& name);

private:
    // The options return the status that ends the command, or nothing when
    // the command goes on.
    void runJustificationOption();
    std::optional<int> runScaleOption();
    std::optional<int> runStyleOption();
    // The name of the current justification; empty for an unknown code.
    const wchar_t* justificationName() const;
    // The .mln path to load from, empty when the user gave none.
    std::wstring askMlnPath() const;

    KxDbDatabase* database_;
    short justification_ = 0;  // -1 when CMLJUST could not be read
    double scale_ = 0.0;
    std::wstring styleName_;
};

}  // namespace kdml
