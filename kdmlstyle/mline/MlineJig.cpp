#include "mline/MlineJig.h"

#include "mline/MlineTexts.h"

#include "kxed.h"

namespace kdml {

namespace {

// A direction variable (UCSXDIR, UCSYDIR), or fallback when it cannot be read.
KxGeVector3d directionVariable(const wchar_t* name, const KxGeVector3d& fallback)
{
    kxresbuf value;
    if (kxedGetVar(name, &value) != RTNORM || value.restype != RT3DPOINT)
        return fallback;
    return {value.resval.rpoint[0], value.resval.rpoint[1], value.resval.rpoint[2]};
}

}  // namespace

KaldMLineJig::KaldMLineJig() : mline_(std::make_unique<KxDbMline>()) {}

KaldMLineJig::~KaldMLineJig() = default;

void KaldMLineJig::setUp(KxDbDatabase* database, const KxGePoint3d& startPoint, short justification, double scale,
                         const std::wstring& styleName)
{
    if (!mline_)
        return;
    if (database) {
        mline_->setDatabaseDefaults(database);
        setStyle(*database, styleName);
    }
    mline_->appendSeg(startPoint);
    lastPoint_ = startPoint;
    mline_->setScale(scale);
    mline_->setJustification(justification);
    setNormalFromUcs();
}

void KaldMLineJig::setStyle(KxDbDatabase& database, const std::wstring& styleName)
{
    KxDbDictionary* opened = nullptr;
    if (database.getMLStyleDictionary(opened, KxDb::kForRead) != Kald::eOk)
        return;
    const KxDbObjectPtr<KxDbDictionary> styles(opened);
    KxDbObjectId style;
    if (styles->getAt(styleName.c_str(), style) == Kald::eOk)
        mline_->setStyle(style);
}

void KaldMLineJig::setNormalFromUcs()
{
    const KxGeVector3d x = directionVariable(L"UCSXDIR", {1, 0, 0});
    const KxGeVector3d y = directionVariable(L"UCSYDIR", {0, 1, 0});
    mline_->setNormal(normalized(cross(x, y), kxGeTolerance));
}

int KaldMLineJig::run()
{
    if (!mline_)
        return 0;
    int result = kNormal;
    for (bool finished = false; !finished;) {
        const int n = mline_->numVertices();
        if (n == 3) {
            setDispPrompt(textOf(mlinetext::kNextOrUndo));
            setKeywordList(textOf(mlinetext::kUndoKeywords));
        } else if (n >= 4) {
            setDispPrompt(textOf(mlinetext::kNextOrCloseUndo));
            setKeywordList(textOf(mlinetext::kCloseUndoKeywords));
        } else {
            setDispPrompt(textOf(mlinetext::kNextPoint));
            setKeywordList(nullptr);
        }
        result = drag();
        switch (result) {
        case kNormal:
            mline_->appendSeg(cursorPoint_);
            lastPoint_ = cursorPoint_;
            break;
        case kNull:
        case kCancel:
            removeLastVertex();
            finished = true;
            break;
        case kKW1:  // Undo with two fixed vertices, Close with three or more
            if (n <= 2)
                break;
            removeLastVertex();
            if (mline_->numVertices() > 2) {
                mline_->setClosedMline(true);
                result = kNull;
                finished = true;
            } else {
                lastPoint_ = mline_->vertexAt(0);
                writeLastPoint();
            }
            break;
        case kKW2:  // Undo of the Close/Undo list
            removeLastVertex();
            lastPoint_ = mline_->vertexAt(mline_->numVertices() - 2);
            writeLastPoint();
            break;
        default: break;
        }
    }
    finish();
    return result;
}

KxEdJig::DragStatus KaldMLineJig::sampler()
{
    setUserInputControls(kNullResponseAccepted);
    setSpecialCursorType(kCrosshair);
    KxGePoint3d point;
    const DragStatus status = acquirePoint(point, lastPoint_);
    if (status == kNormal)
        cursorPoint_ = point;
    return status;
}

bool KaldMLineJig::update()
{
    const int n = mline_->numVertices();
    if (n == 1)
        mline_->appendSeg(cursorPoint_);
    else if (n >= 2)
        mline_->moveVertexAt(n - 1, cursorPoint_);
    return true;
}

KxDbEntity* KaldMLineJig::entity() const
{
    return KxDbMline::cast(mline_.get());
}

void KaldMLineJig::removeLastVertex()
{
    KxGePoint3d removed;
    mline_->removeLastSeg(removed);
}

void KaldMLineJig::writeLastPoint() const
{
    const double world[3] = {lastPoint_.x, lastPoint_.y, lastPoint_.z};
    kxresbuf value;
    value.restype = RT3DPOINT;
    if (kxdbWcs2Ucs(world, value.resval.rpoint, 0) == RTNORM)
        kxedSetVar(L"LASTPOINT", &value);
}

void KaldMLineJig::finish()
{
    if (mline_->numVertices() > 1 && !append().isNull())
        mline_.release();  // the drawing owns it now
    mline_.reset();
}

}  // namespace kdml
