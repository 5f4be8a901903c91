#include "mlnfile/MlnReader.h"

#include <algorithm>
#include <cwctype>
#include <memory>

#include "host/FaultGuard.h"
#include "kxcrash.h"
#include "kxdb.h"
#include "kxedunits.h"
#include "mlnfile/MlnBlockScanner.h"
#include "mlnfile/MlnElementTable.h"
#include "mlnfile/StyleElementSetters.h"

namespace kdml {

namespace {

// Where crash reports say the fault happened: the load dialog's reading.
constexpr const char* kFaultSourceLocation =
    "internalcmds\\kdentityeditcmds\\krxmlstyle\\src\\kaldmlinestyleloaddialog";
constexpr int kFaultSourceLine = 441;
// The fault code of a C++ exception (hardware faults give their signal).
constexpr int kExceptionFaultCode = 0;

std::wstring trimmed(const wchar_t* text)
{
    std::wstring_view view(text);
    const auto blank = [](wchar_t c) { return std::iswspace(static_cast<wint_t>(c)) != 0; };
    while (!view.empty() && blank(view.front()))
        view.remove_prefix(1);
    while (!view.empty() && blank(view.back()))
        view.remove_suffix(1);
    return std::wstring(view);
}

double angleOf(const wchar_t* text)
{
    double radians = 0.0;
    return kxdbAngToF(text, 0, &radians) == RTNORM ? radians : 0.0;
}

// Runs scanner steps directly (strict reading) or under a fault guard
// (lenient reading). A step is a lambda that captures by reference only, so
// that it has a trivial destructor.
class ScanSteps {
public:
    explicit ScanSteps(FaultGuard* guard) : guard_(guard) {}
    // False when a fault ended the step.
    template <class Step>
    bool operator()(Step step)
    {
        if (!guard_) {
            step();
            return true;
        }
        return guard_->run(step);
    }

private:
    FaultGuard* guard_;
};

// One read of a style block into a style object.
class StyleBlockReader {
public:
    StyleBlockReader(MlnLineSource& source, KxDbMlineStyle& style, KxDbDatabase* database, MlnReadMode mode,
                     ScanSteps steps)
        : scanner_(source, mode), style_(style), database_(database), mode_(mode), steps_(steps)
    {
    }

    MlnReadResult read(const wchar_t* name)
    {
        bool found = false;
        if (!steps_([&] { found = scanner_.findBlock(name); }) || !found)
            return MlnReadResult::notFound;
        blockFound_ = true;
        const MlnReadResult cutOff = mode_ == MlnReadMode::lenient ? MlnReadResult::found : MlnReadResult::broken;
        KxCmColor fill;
        for (;;) {
            MlnScan scan = MlnScan::failedRead;
            if (!steps_([&] { scan = scanner_.readItem(*item_); }) || scan != MlnScan::read)
                return cutOff;
            switch (item_->kind) {
            case MlnItem::Kind::description:
                style_.setDescription(item_->text);
                break;
            case MlnItem::Kind::flags:
                setStyleFlags(&style_, item_->number);
                break;
            case MlnItem::Kind::fillColorIndex:
                fill.setColorIndex(item_->number);
                style_.setFillColor(fill);
                break;
            case MlnItem::Kind::fillTrueColor:
                fill.setColor(static_cast<std::uint32_t>(item_->number) | kMlnTrueColorMethodBits);
                style_.setFillColor(fill);
                break;
            case MlnItem::Kind::fillColorBookKey:
                fill.setNamesFromDictionaryKey(item_->text);
                style_.setFillColor(fill);
                break;
            case MlnItem::Kind::startAngle:
                style_.setStartAngle(angleOf(item_->text));
                break;
            case MlnItem::Kind::endAngle:
                style_.setEndAngle(angleOf(item_->text));
                break;
            case MlnItem::Kind::elementCount:
                if (!readElements(item_->number))
                    return cutOff;
                break;
            case MlnItem::Kind::end:
                return MlnReadResult::found;
            case MlnItem::Kind::other:
                break;
            }
            if (scanner_.atEnd())
                return MlnReadResult::found;
        }
    }

    bool blockFound() const { return blockFound_; }

private:
    // Reads count element slots (the table takes the first 256, the rest are
    // read to stay in step with the file) and applies them. False when the
    // block was cut off or out of form.
    bool readElements(int count)
    {
        const int stored = std::min(count, static_cast<int>(kMlnReaderSlots));
        setStyleElementCount(&style_, stored);
        // Rows for the elements the block names, never more than the slots:
        // a block of two elements does not pay for 256.
        MlnElementTable table(static_cast<std::size_t>(std::max(stored, 0)));
        for (int i = 0; i < count; ++i) {
            MlnScan scan = MlnScan::failedRead;
            if (!steps_([&] { scan = scanner_.readElementSlot(*slot_); }))
                return false;
            if (scan == MlnScan::failedRead || scan == MlnScan::outOfForm)
                return false;
            if (scan == MlnScan::read && i < stored)
                store(table, static_cast<std::size_t>(i));
        }
        applyMlnElementTable(&style_, table, stored, database_);
        return true;
    }

    void store(MlnElementTable& table, std::size_t i) const
    {
        table.offsets[i] = slot_->offset;
        table.colorIndices[i] = slot_->colorIndex;
        table.trueColors[i] = slot_->trueColor;
        table.colorBookKeys[i] = std::wstring(slot_->colorBookKey);
        table.linetypeNames[i] = std::wstring(slot_->linetypeName);
    }

    MlnBlockScanner scanner_;
    KxDbMlineStyle& style_;
    KxDbDatabase* database_;
    MlnReadMode mode_;
    ScanSteps steps_;
    bool blockFound_ = false;
    std::unique_ptr<MlnItem> item_ = std::make_unique<MlnItem>();
    std::unique_ptr<MlnElementSlot> slot_ = std::make_unique<MlnElementSlot>();
};

}  // namespace

std::vector<std::wstring> listMlnStyleNames(const wchar_t* path, std::wstring* problem)
{
    std::vector<std::wstring> names;
    const auto source = std::make_unique<MlnLineSource>(path);
    while (source->next()) {
        if (!isMlnKey(source->line(), L"2"))
            continue;
        if (!source->next())
            break;
        names.push_back(trimmed(source->line()));
    }
    if (problem && !source->isMissing())
        *problem = source->problem();
    return names;
}

MlnReadResult readMlnStyle(const wchar_t* path, const wchar_t* name, KxDbMlineStyle* style,
                           KxDbDatabase* database, MlnReadMode mode)
{
    const KxDbObjectPtr<KxDbMlineStyle> closeOnExit(mode == MlnReadMode::lenient ? style : nullptr);
    if (!path || !name || !style)
        return MlnReadResult::notFound;
    const auto source = std::make_unique<MlnLineSource>(path);
    if (!source->isOpen())
        return MlnReadResult::notFound;
    if (mode == MlnReadMode::strict) {
        const MlnReadResult result = StyleBlockReader(*source, *style, database, mode, ScanSteps(nullptr)).read(name);
        return source->failed() ? MlnReadResult::broken : result;
    }

    FaultGuard guard;
    StyleBlockReader reader(*source, *style, database, mode, ScanSteps(&guard));
    try {
        const MlnReadResult result = reader.read(name);
        if (guard.faultSignal() != 0)
            reportMlnReadFault(guard.faultSignal(), guard.faultContext(), path);
        return result;
    } catch (...) {
        reportMlnReadFault(kExceptionFaultCode, nullptr, path);
        return reader.blockFound() ? MlnReadResult::found : MlnReadResult::notFound;
    }
}

void reportMlnReadFault(int code, const void* context, const wchar_t* path)
{
    KxCrashRecorder* recorder = kaldGetCrashRecorder();
    if (!recorder)
        return;
    recorder->recordFault(code, context, kFaultSourceLocation, kFaultSourceLine);
    recorder->logMessage(L"An error was occurred while loading a mlstyle file.");
    recorder->attachFile(path, L"A MLSTYLE file that cause an error while loading.");
}

}  // namespace kdml
