#include "kaldo/dxf/MlineRecord.h"

#include "kaldo/db/MlineLayout.h"
#include "kaldo/dxf/DxfError.h"
#include "kaldo/dxf/GroupWriter.h"
#include "kaldo/dxf/RecordWriting.h"
#include "kaldo/util/Utf8.h"
#include "kxdbdatabase.h"
#include "kxdbmline.h"
#include "kxdbmlstyle.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <memory>
#include <utility>
#include <vector>

namespace kaldo::dxf {

namespace {

enum MlineFlags : int { kHasVertices = 1, kClosed = 2, kSuppressStart = 4, kSuppressEnd = 8 };

// Collects the vertices group by group, checking each list against its
// count; their lists go to the scratch store, whose room is kept from
// multiline to multiline, so that reading one like the one before
// allocates nothing for its lists. Room is made for what the record holds,
// never for what its counts claim. Unless told to keep them, it holds one
// vertex at a time and tells each one's position to a callback once
// complete, as a record is checked.
template <class Completed>
class VertexCollector {
public:
    VertexCollector(std::size_t groups, KxDbMlineListStore& scratch, bool keep, Completed completed)
        : groups_(groups), lists_(scratch), keep_(keep), completed_(std::move(completed))
    {
        lists_.clear();
    }

    bool take(const Group& g)
    {
        switch (g.code) {
        case 11:
            finishList();
            if (!vertices_.empty())
                complete(vertices_.back());
            if (!keep_ && !vertices_.empty()) {
                lists_.clear();
                vertices_.pop_back();
            }
            vertices_.push_back(KxDbMlineVertex{KxGePoint3d(toReal(g), 0, 0), {}, {}, lists_.openVertex()});
            return true;
        case 21: current(g).position.y = toReal(g); return true;
        case 31: current(g).position.z = toReal(g); return true;
        case 12: current(g).axis.x = toReal(g); return true;
        case 22: current(g).axis.y = toReal(g); return true;
        case 32: current(g).axis.z = toReal(g); return true;
        case 13: current(g).miter.x = toReal(g); return true;
        case 23: current(g).miter.y = toReal(g); return true;
        case 33: current(g).miter.z = toReal(g); return true;
        case 74:
        case 75: {
            finishList();
            const auto count = toInteger(g);
            if (count < 0 || count > 100000)
                throw DxfError(g.line + 1, "a parameter count of " + std::to_string(count) + ".");
            KxDbMlineVertex& v = current(g);
            // An element starts with both lists empty; its area-fill
            // values follow its element values.
            if (g.code == 74)
                lists_.openElement(v.lists);
            else if (v.lists.elements == 0)
                throw DxfError(g.line, "area-fill parameters (75) before the element's parameters (74).");
            listCode_ = g.code == 74 ? 41 : 42;
            remaining_ = long(count);
            listLine_ = g.line;
            return true;
        }
        case 41:
        case 42:
            if (g.code != listCode_ || remaining_ == 0)
                throw DxfError(g.line, "group " + std::to_string(g.code) + " where no such parameter is due.");
            lists_.appendValue(g.code == 42, toReal(g));
            --remaining_;
            return true;
        default:
            return false;
        }
    }

    // The vertex count the record announces (72), to make room at once for
    // as many vertices as its groups can hold.
    void expect(long vertices)
    {
        if (vertices > 0 && keep_)
            vertices_.reserve(std::min(std::size_t(vertices), groups_));
    }

    // Ends the last list and vertex.
    void finish()
    {
        finishList();
        if (!vertices_.empty())
            complete(vertices_.back());
    }
    // The vertices once finished, when kept.
    std::vector<KxDbMlineVertex> release() { return std::move(vertices_); }

    std::size_t count() const { return count_; }
    // The elements every vertex lists: the first vertex's, and the first
    // other number a later vertex lists (-1 when none does).
    long firstElements() const { return firstElements_; }
    long otherElements() const { return otherElements_; }

private:
    KxDbMlineVertex& current(const Group& g)
    {
        if (vertices_.empty())
            throw DxfError(g.line, "group " + std::to_string(g.code) + " comes before the first vertex (11).");
        return vertices_.back();
    }
    void finishList()
    {
        if (remaining_ > 0)
            throw DxfError(listLine_, "the list announces more parameters than follow it.");
        listCode_ = 0;
    }

    void complete(const KxDbMlineVertex& v)
    {
        const auto elements = long(v.lists.elements);
        if (count_++ == 0)
            firstElements_ = elements;
        else if (elements != firstElements_ && otherElements_ < 0)
            otherElements_ = elements;
        completed_(v.position);
    }

    const std::size_t groups_;
    KxDbMlineListStore& lists_;
    const bool keep_;
    const Completed completed_;
    std::vector<KxDbMlineVertex> vertices_;
    std::size_t count_ = 0;
    long firstElements_ = 0;
    long otherElements_ = -1;
    int listCode_ = 0;
    long remaining_ = 0;
    long listLine_ = 0;
};

// Reads the record into mline, its vertices to the collector, and gives
// every error the record holds; the style is left to the caller.
template <class Collector>
void readInto(KxDbMline& mline, const Record& record, RecordBasics& basics,
              const std::function<bool(const Group&)>& other, MlineStyleLink& style, Collector& vertices)
{
    double scale = 1;
    int justification = 0;
    int flags = 0;
    long vertexCount = -1;
    long elementCount = -1;
    KxGeVector3d normal{0, 0, 1};
    style.line = record.line();
    walkRecord(record, basics, [&](const Group& g) {
        if (vertices.take(g))
            return true;
        switch (g.code) {
        case 2:
            style.name = wideFromUtf8(g.value);
            return true;
        case 340:
            style.handle = toHandle(g);
            style.line = g.line + 1;
            return true;
        case 40: scale = toReal(g); return true;
        case 70: justification = int(toInteger(g)); return true;
        case 71: flags = int(toInteger(g)); return true;
        case 72:
            vertexCount = long(toInteger(g));
            vertices.expect(vertexCount);
            return true;
        case 73:
            elementCount = long(toInteger(g));
            return true;
        case 10:
        case 20:
        case 30:
            toReal(g);  // the start point is the first vertex
            return true;
        case 210: normal.x = toReal(g); return true;
        case 220: normal.y = toReal(g); return true;
        case 230: normal.z = toReal(g); return true;
        default:
            return other(g);
        }
    });
    vertices.finish();
    if (vertexCount >= 0 && std::size_t(vertexCount) != vertices.count())
        throw DxfError(record.line(), "the multiline announces " + std::to_string(vertexCount)
                                          + " vertices but has " + std::to_string(vertices.count()) + ".");
    // The first vertex that lists another number of elements than announced.
    const long wrong = vertices.firstElements() != elementCount ? vertices.firstElements() : vertices.otherElements();
    if (elementCount >= 0 && vertices.count() > 0 && wrong >= 0)
        throw DxfError(record.line(), "a vertex of the multiline has " + std::to_string(wrong)
                                          + " elements instead of " + std::to_string(elementCount) + ".");
    if (KxDbSystemInternals::getImpObject(&mline)->setStoredProperties({}, justification, scale, normal,
                                                                       flags & kClosed, flags & kSuppressStart,
                                                                       flags & kSuppressEnd)
        != Kald::eOk)
        throw DxfError(record.line(), "the multiline's justification, scale or normal is out of range.");
}

}  // namespace

KxDbMline* readMline(const Record& record, RecordBasics& basics, const std::function<bool(const Group&)>& other,
                     MlineStyleLink& style, KxDbMlineListStore& scratch)
{
    auto mline = std::make_unique<KxDbMline>();
    VertexCollector vertices(record.size(), scratch, true, [](const KxGePoint3d&) {});
    readInto(*mline, record, basics, other, style, vertices);
    // The reader takes finite numbers only, which the multiline accepts.
    KxDbSystemInternals::getImpObject(mline.get())->setStoredVertices(vertices.release(), scratch);
    return mline.release();
}

MlineOutline checkMline(const Record& record, RecordBasics& basics, const std::function<bool(const Group&)>& other,
                        MlineStyleLink& style, KxDbMlineListStore& scratch,
                        ExtentsBox& positions)
{
    KxDbMline probe;
    VertexCollector vertices(record.size(), scratch, false, [&positions](const KxGePoint3d& p) { positions.add(p); });
    readInto(probe, record, basics, other, style, vertices);
    return {vertices.count(), vertices.otherElements() >= 0 ? -1 : vertices.firstElements()};
}

std::size_t mlineObjectBytes(const Record& record)
{
    // The count comes before the vertices: only the head is looked at.
    std::size_t vertices = 0;
    record.forEach([&vertices](const Group& g) {
        if (g.code != 72)
            return true;
        const std::string_view text = trimmed(g.value);
        std::from_chars(text.data(), text.data() + text.size(), vertices);
        return false;
    });
    return sizeof(KxDbMline) + std::min(vertices, record.size()) * sizeof(KxDbMlineVertex);
}

bool layoutFinite(const Record& record, const KxDbMlineStyle& style)
{
    KxDbMline mline;
    KxDbMlineListStore scratch;
    const auto walk = [&](std::function<void(const KxGePoint3d&)> completed) {
        RecordBasics basics;
        MlineStyleLink link;
        VertexCollector<std::function<void(const KxGePoint3d&)>> vertices(record.size(), scratch, false,
                                                                          std::move(completed));
        readInto(mline, record, basics, [](const Group&) { return false; }, link, vertices);
    };
    // The first and last position first: a closed multiline's ends look at
    // each other.
    std::size_t n = 0;
    KxGePoint3d first, last;
    walk([&](const KxGePoint3d& p) {
        if (n++ == 0)
            first = p;
        last = p;
    });
    // Then each vertex's frame once the vertex after it is known, from the
    // last three positions.
    const kaldo::MlineLayout layout =
        kaldo::mlineLayout(&style, mline.scale(), mline.justification(), mline.normal());
    std::array<KxGePoint3d, 3> recent;
    const auto position = [&](std::size_t i) { return i == 0 ? first : i + 1 == n ? last : recent[i % 3]; };
    const auto finiteFrame = [&](std::size_t v) {
        return kaldo::frameFinite(layout, kaldo::frameAt(layout, position, n, mline.closedMline(), v));
    };
    bool finite = true;
    std::size_t at = 0;
    walk([&](const KxGePoint3d& p) {
        recent[at % 3] = p;
        if (at > 0 && finite)
            finite = finiteFrame(at - 1);
        ++at;
    });
    return n == 0 || (finite && finiteFrame(n - 1));
}

void writeMlineBody(GroupWriter& w, const KxDbDatabase& db, const KxDbMline& mline)
{
    // The reader refuses a style handle that points to no style: such a
    // multiline is not saved either (its style was erased).
    const auto* style = KxDbMlineStyle::cast(db.peekObject(mline.style()));
    if (!style || style->isErased())
        throw DxfError(0, "the multiline has no multiline style (it was erased); give it one before saving.");
    const int n = mline.numVertices();
    const KxDbMlineVertexLists first = mline.parametersAt(0);
    w.text(100, "AcDbMline");
    w.wide(2, style->name());
    w.handle(340, handleOf(db, mline.style()));
    w.real(40, mline.scale());
    w.integer(70, mline.justification());
    w.integer(71, (n > 0 ? kHasVertices : 0) | (mline.closedMline() ? kClosed : 0)
                      | (mline.supressStartCaps() ? kSuppressStart : 0) | (mline.supressEndCaps() ? kSuppressEnd : 0));
    // A style without elements is written with one element that the
    // multiline does not draw: a list with its distance and no runs.
    const bool axisElement = style->numElements() == 0 && first.numElements() == 0;
    w.integer(72, n);
    w.integer(73, axisElement ? 1 : n > 0 ? long(first.numElements()) : style->numElements());
    w.point(10, mline.vertexAt(0));
    w.vector(210, mline.normal());
    for (int i = 0; i < n; ++i) {
        w.point(11, mline.vertexAt(i));
        w.vector(12, mline.axisAt(i));
        w.vector(13, mline.miterAt(i));
        const KxDbMlineVertexLists lists = mline.parametersAt(i);
        if (axisElement) {
            w.integer(74, 1);
            w.real(41, 0.0);
            w.integer(75, 0);
        }
        for (int e = 0; e < lists.numElements(); ++e) {
            w.integer(74, long(lists.element(e).size()));
            for (double value : lists.element(e))
                w.real(41, value);
            w.integer(75, long(lists.areaFill(e).size()));
            for (double value : lists.areaFill(e))
                w.real(42, value);
        }
    }
}

}  // namespace kaldo::dxf
