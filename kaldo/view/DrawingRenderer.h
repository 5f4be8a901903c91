// The renderer: turns a drawing's model space into a scene. Entities on
// layers that are off or frozen are left out. Besides the modelled
// entities it draws records kept as read (RecordShapes.h): texts and
// attributes, solids, faces, hatches, curves, points, leaders, meshes and
// old-form polylines, and INSERT and DIMENSION through their blocks
// (nested, scaled, rotated; the block's base point taken as its origin). Each block is drawn once per picture and its
// drawing placed at every reference; a block that reaches itself is drawn
// without the references inside it that lead back to it. Copies of blocks
// and outlines of letters share the picture's point budget: beyond it a
// reference is drawn as the box of its block, a text line as its box.
#pragma once

#include "kaldo/view/PointBudget.h"
#include "kaldo/view/Scene.h"
#include "kaldo/view/TextShapes.h"

#include <exception>
#include <functional>
#include <set>
#include <string>
#include <vector>

class KxDbDatabase;
class KxDbEntity;

namespace kaldo::view {

// What a picture left out or drew coarsely.
struct RenderNotes {
    std::set<std::string> undrawnKinds;       // kinds of records that could not be drawn
    std::set<std::string> selfReachingBlocks;  // names of blocks that reach themselves
    bool coarse = false;                       // the point budget ran out
};

// points is the budget of points for copies of blocks and outlines of
// letters (smaller ones reach the coarse drawing sooner); styles gives the
// font of each text style (its file's name), as the drawing's file keeps
// them; keepTexts keeps texts as text lines instead of outlines (plots).
// between, when given, is called after every kEntitiesBetween entities of
// model space, with no entity open: it may wait there (the drawing must
// not change meanwhile) or throw to stop the drawing.
Scene renderDrawing(const KxDbDatabase& db, RenderNotes* notes = nullptr,
                    std::size_t points = PointBudget::kPicture, const TextStyleFonts& styles = {},
                    bool keepTexts = false, const std::function<void()>& between = {});
constexpr std::size_t kEntitiesBetween = 1024;

// The same drawn in pieces of about entitiesPerPiece entities each, in the
// drawing's order (an old-form polyline is not cut): piece is called with
// each piece's scene, which is dropped after the call, so that no more
// than a piece is held at a time. Blocks are drawn once for all pieces,
// and the budget is shared by all.
void renderDrawingInPieces(const KxDbDatabase& db, std::size_t entitiesPerPiece,
                           const std::function<void(const Scene&)>& piece, RenderNotes* notes = nullptr,
                           std::size_t points = PointBudget::kPicture, const TextStyleFonts& styles = {},
                           bool keepTexts = false);

// A scene of a few entities (open for read, or in no database yet) with
// the layers, linetypes and styles of db: what a window draws over the
// drawing (highlights, a drag's entity).
Scene renderEntities(const KxDbDatabase& db, const std::vector<const KxDbEntity*>& entities);

// The transcript's lines about notes, each ended by a line feed (empty
// when there is nothing to say); picture names where it was drawn ("the
// window").
std::wstring describeNotes(const RenderNotes& notes, const std::wstring& picture);

// Why drawing or painting stopped, from what it threw: "the memory ran
// out" for std::bad_alloc, an exception's own text otherwise.
std::string failureReason(const std::exception_ptr& failure);

}  // namespace kaldo::view
